#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model_files/text/SourceText.h"

namespace {

using namespace std::string_literals;
using umlmm::files::isNoXml;
using umlmm::files::SourceText;
using umlmm::files::whatItIs;

struct Row {
  std::string fBytes;
  std::vector<std::string> fWords;
};

std::string zip(std::vector<std::string> const& aMembers) {
  auto const number = [](std::size_t aNumber, int aSize) {
    std::string bytes;
    for (int i = 0; i < aSize; ++i) bytes += static_cast<char>(aNumber >> 8 * i);
    return bytes;
  };
  std::string const local = "PK\3\4"s + std::string(26, '\0');
  std::string list;
  for (std::string const& name : aMembers) {
    list += "PK\1\2" + std::string(24, '\0') + number(name.size(), 2) + std::string(16, '\0') + name;
  }
  return local + list + "PK\5\6" + std::string(12, '\0') + number(local.size(), 4) + "\0\0"s;
}

void expectWords(std::vector<Row> const& aRows, bool aIsXml) {
  for (Row const& row : aRows) {
    SCOPED_TRACE(row.fBytes.substr(0, 80));
    std::string const sentence = whatItIs(SourceText::fromBytes(row.fBytes, "dir/a.uml"));
    EXPECT_TRUE(sentence.starts_with("\"dir/a.uml\" is ")) << sentence;
    EXPECT_NE(sentence.find(", not a UML 2 model in XMI; "), std::string::npos) << sentence;
    for (std::string const& word : row.fWords)
      EXPECT_NE(sentence.find(word), std::string::npos) << word << sentence;
    EXPECT_EQ(isNoXml(row.fBytes), !aIsXml);
  }
}

TEST(WhatItIs, NoXml) {
  expectWords(
      {{"", {"empty"}},
       {" \r\n\t", {"blanks"}},
       {"PK\3\4 and so on", {"zip", "breaks off"}},
       {zip({"a/b.txt"}), {"zip", "unpack"}},
       {zip({"x.png", "models/b.uml"}), {"zip", "\"models/b.uml\""}},
       {zip({"mimetype", "com.nomagic.magicdraw.uml_model.model"}), {"MagicDraw", ".mdzip", "export"}},
       {zip({"a.argo", "a.xmi"}), {"ArgoUML"}},
       {zip({"[Content_Types].xml", "xl/workbook.xml"}), {"Excel", ".xlsx"}},
       {zip({"META-INF/MANIFEST.MF", "model/c.uml"}), {"Java archive", "\"model/c.uml\""}},
       {"SQLite format 3\0...CREATE TABLE t_object"s, {"SQLite", "Enterprise Architect", ".qea"}},
       {"SQLite format 3\0"s, {"SQLite"}},
       {"\0\1\0\0Standard Jet DB\0"s, {"Access", ".eap"}},
       {"\x1F\x8B\x08", {"gzip", "unpack"}},
       {"7z\xBC\xAF\x27\x1C", {"7z"}},
       {std::string(257, 'a') + "ustar", {"tar"}},
       {"%PDF-1.7", {"PDF"}},
       {"\x89PNG\r\n\x1A\n", {"picture"}},
       {"\1\2\3\0"s, {"binary", "01 02 03 00"}},
       {"{\"_type\": \"Project\", \"_id\": \"AAA\"}", {"StarUML", ".mdj"}},
       {"[\n {\"@type\": \"x\", \"@id\": 1}]", {"JSON", "SysML 2"}},
       {"\xEF\xBB\xBF{}", {"JSON"}},
       {"[true]", {"JSON"}},
       {"[ null, 1]", {"JSON"}},
       {"[nullable]", {"text", "[nullable]"}},
       {"\0\0\0\x20"
        "ftypisom\0\0\2\0"s,
        {"binary", "00 00 00 20"}},
       {"{ no json", {"text", "{ no json"}},
       {"version https://git-lfs.github.com/spec/v1\n", {"git lfs pull"}},
       {"<<<<<<< HEAD\n<a/>", {"conflict"}},
       {"@startuml\n", {"PlantUML"}},
       {"(object Petal", {"Rational Rose"}},
       {"package P {\n  part def Q;\n}", {"SysML 2"}},
       {"---\na: 1", {"YAML"}},
       {"model:\n  - a", {"YAML"}},
       {"class A:\n  pass", {"text", "class A:"}},
       {"\xFF\xFEH\0i\0"s, {"text", "\"Hi\""}},
       {"caf\xE9 \xE2\x82\xAC " + std::string(99, 'x'), {"caf? €", "..."}}},
      false);
}

TEST(WhatItIs, Xml) {
  std::string const xmi = "<xmi:XMI xmlns:xmi='http://www.omg.org/XMI' xmlns:e='";
  expectWords(
      {{"<!DOCTYPE XMI SYSTEM 'uml13.dtd' [<!ENTITY a '>'>]><XMI "
        "xmi.version='1.1'><XMI.header><XMI.metamodel "
        "xmi.name='UML' xmi.version='1.3'/></XMI.header></XMI>",
        {"UML 1.3 in XMI 1.1", "export"}},
       {"<?xml version='1.0'?><XMI xmi.version = \"1.2\" xmlns:UML='org.omg.xmi.namespace.UML'>",
        {"UML 1 in XMI 1.2"}},
       {"<XMI xmi.version='1.1' xmlns:UML='omg.org/UML1.3'>", {"UML 1.3 in XMI 1.1"}},
       {"<XMI xmi.version='1.1' xmlns:UML='omg.org/UML2.0'>", {"UML 2.0 in XMI 1.1"}},
       {"<XMI xmi.version='1.1' xmlns:Model='omg.org.mof.Model/1.3'>",
        {"\"omg.org.mof.Model/1.3\" in XMI 1.1"}},
       {xmi + "http://www.omg.org/UML/1.4'><e:Model/></xmi:XMI>", {"UML 1.4", "export"}},
       {"\xEF\xBB\xBF\xEF\xBB\xBF<e:A xmlns:e='http://e' xmi:version='2.0'/>",
        {"XMI of another metamodel", "<e:A>"}},
       {"<uml:Odd xmi:version='2.1' xmlns:uml='http://www.omg.org/spec/UML/20131001'/>",
        {"without any element of UML"}},
       {"<a\xE4\n/>", {"root is <a?>"}},
       {"<?xml version='1.0' encoding='windows-12", {"breaks off"}},
       {"<XMI xmi.version='1.1'><XMI.header><XMI.metamodel xmi.name='CWM' xmi.version='1.0'/>",
        {"CWM 1.0 in XMI 1.1"}},
       {"<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'/>", {"RDF"}},
       {"<!-- <a> --><?b <c>?><ecore:EPackage xmlns:ecore='http://www.eclipse.org/emf/2002/Ecore'/>",
        {"Ecore"}},
       {xmi + "http://www.eclipse.org/emf/2002/Ecore'><e:EPackage/></xmi:XMI>", {"Ecore"}},
       {xmi + "http://www.eclipse.org/gmf/runtime/1.0.2/notation'><e:Diagram/>", {".notation", "beside"}},
       {xmi + "http://x.org/y'><e:Thing/></xmi:XMI>",
        {"XMI of another metamodel", "<e:Thing>", "http://x.org/y"}},
       {xmi + "http://x'><b xmlns:e='http://www.w3.org/2002/07/owl#'/><e:A/></xmi:XMI>",
        {"<b> without a namespace"}},
       {xmi + "http://schema.omg.org/spec/UML/2.1'><a/></xmi:XMI>", {"XMI without any element of UML"}},
       {xmi + "http://www.eclipse.org/uml2/5.0.0/UML'><e:Mod",
        {"breaks off before </xmi:XMI>", "whole file"}},
       {"<!-- endless", {"breaks off before its first tag"}},
       {"<definitions xmlns='http://www.omg.org/spec/BPMN/20100524/MODEL'/>", {"BPMN"}},
       {"<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'/>", {"XML Schema"}},
       {"<!doctype html>\n<html lang=en><body>", {"HTML", "server"}},
       {"<svg xmlns=\"http://www.w3.org/2000/svg\"/>", {"SVG"}},
       {"<gaphor xmlns='http://gaphor.sourceforge.net/model' version='3.0'/>", {"Gaphor"}},
       {"<XPD:PROJECT xmlns:XPD='http://www.staruml.com' version='1'/>", {"StarUML"}},
       {"<Package name='M'><Table name='t_package'><Row><Column name='a'/></Row></Table></Package>",
        {"tables"}},
       {"<dataroot><t_object><a/></t_object></dataroot>", {"tables"}},
       {"<a b=c d e='f'><h/></a>", {"root is <a> without a namespace"}},
       {"\xFE\xFF\0<\0p\0l\0i\0s\0t\0/\0>"s, {"property list"}}},
      true);
}

TEST(WhatItIs, NamesOfFilesTellWhatBytesDont) {
  for (auto const& [name, word] :
       {std::pair{"a.feap", "Firebird"}, {"a.sysml", "SysML 2"}, {"a.txt", "without any XML"}}) {
    EXPECT_NE(whatItIs(SourceText::fromBytes("package P;", name)).find(word), std::string::npos) << name;
  }
}

/// A text that breaks off anywhere gets a sentence.
TEST(WhatItIs, AnswersForAnyBeginning) {
  std::string const text =
      "<?xml version='1.0'?><!DOCTYPE a [<!ENTITY b 'c'>]><xmi:XMI xmlns:xmi='http://www.omg.org/XMI' d = "
      "'e'>"
      "<![CDATA[<f>]]><g:h xmlns:g='i'/></xmi:XMI>";
  for (std::size_t i = 0; i < text.size(); ++i) {
    EXPECT_FALSE(whatItIs(SourceText::fromBytes(text.substr(0, i), "a")).empty());
    std::string changed = text;
    changed[i] = '<';
    EXPECT_FALSE(whatItIs(SourceText::fromBytes(changed, "a")).empty());
  }
}

}  // namespace
