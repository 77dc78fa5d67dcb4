#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "model_files/text/SourceText.h"
#include "model_files/text/byteKinds.h"
#include "model_files/text/encodings.h"
#include "model_files/text/firstTags.h"
#include "model_files/text/messages.h"
#include "model_files/text/utf8.h"

namespace umlmm::files {

namespace {

constexpr auto kNone = std::string_view::npos;
/// XMI 1 names its metamodel behind a header, and dumps of tables their tables behind a description.
constexpr std::size_t kMostTags = 200;
/// Characters that tell whether a text is one.
constexpr std::size_t kLooked = 4096;

struct XmlKind {
  /// What the namespace contains; empty for any.
  std::string_view fNamespace;
  /// The tag without its prefix; empty for any.
  std::string_view fTag;
  std::string_view fWhat;
  std::string_view fAdvice;
};

constexpr std::string_view kBeside = "the model is in the .uml file beside it; open that one";
constexpr std::string_view kFromEcore = "convert it to a UML model in Eclipse, and open that file";
constexpr std::string_view kFromOldUml =
    "open it in a tool that reads it, and export it from there as UML 2 in XMI 2.1 or later";
constexpr std::string_view kOpenModel = "open the file of a UML model";
constexpr std::string_view kAnotherLanguage = "it is another language than UML; open the file of a UML model";
constexpr std::string_view kDownload = "if a server gave it in place of a model, download that file again";

/// The first that fits.
constexpr std::array kXml{
    XmlKind{"eclipse.org/emf/2002/Ecore", "", "an Ecore metamodel", kFromEcore},
    XmlKind{"eclipse.org/emf/2002/GenModel", "", "a generator model for an Ecore metamodel", kFromEcore},
    XmlKind{"eclipse.org/gmf/runtime", "", "a file with diagrams of Eclipse (.notation)", kBeside},
    XmlKind{"eclipse.org/papyrus", "", "a file about the diagrams of a Papyrus model (.di)", kBeside},
    XmlKind{"eclipse.org/sirius", "", "a file with diagrams of Sirius (.aird)", kBeside},
    XmlKind{"polarsys.org/capella", "", "a Capella model", kExport},
    XmlKind{"gaphor", "", "a Gaphor model", kExport},
    XmlKind{"", "gaphor", "a Gaphor model", kExport},
    XmlKind{"staruml.com", "", "a project of StarUML 1", kExport},
    XmlKind{"", "argo", "a project of ArgoUML", kExport},
    XmlKind{"", "MDG.Technology", "an MDG technology of Enterprise Architect", kExport},
    XmlKind{"schemas.microsoft.com/dsltools", "", "a model of Visual Studio", kExport},
    XmlKind{"", "ClassDiagram", "a class diagram of Visual Studio (.cd)", kOpenModel},
    XmlKind{"", "Diagram", "a diagram of a development environment", kOpenModel},
    XmlKind{"", "mxfile", "a drawing of draw.io", kExport},
    XmlKind{"", "mxGraphModel", "a drawing of draw.io", kExport},
    XmlKind{"lysator.liu.se", "", "a drawing of Dia", kExport},
    XmlKind{"graphml", "", "a graph (GraphML)", kExport},
    XmlKind{"", "graphml", "a graph (GraphML)", kExport},
    XmlKind{"", "gxl", "a graph (GXL)", kExport},
    XmlKind{"", "gexf", "a graph (GEXF)", kExport},
    XmlKind{"/BPMN/", "", "a BPMN model", kAnotherLanguage},
    XmlKind{"wfmc.org", "", "an XPDL model", kAnotherLanguage},
    XmlKind{"/DMN/", "", "a DMN model", kAnotherLanguage},
    XmlKind{"/CMMN/", "", "a CMMN model", kAnotherLanguage},
    XmlKind{"/ReqIF/", "", "a ReqIF file with requirements", kAnotherLanguage},
    XmlKind{"/SysML/2", "", "a SysML 2 model", kAnotherLanguage},
    XmlKind{"/KerML/", "", "a SysML 2 model", kAnotherLanguage},
    XmlKind{"archimate", "", "an ArchiMate model", kAnotherLanguage},
    XmlKind{"autosar.org", "", "an AUTOSAR model", kAnotherLanguage},
    XmlKind{"/scxml", "", "a state chart (SCXML)", kAnotherLanguage},
    XmlKind{"/spec/CWM", "", "a CWM model", kAnotherLanguage},
    XmlKind{"cmof", "", "a MOF metamodel (CMOF)", kAnotherLanguage},
    XmlKind{"emof", "", "a MOF metamodel (EMOF)", kAnotherLanguage},
    XmlKind{"22-rdf-syntax-ns", "", "RDF", kAnotherLanguage},
    XmlKind{"/2002/07/owl", "", "an OWL ontology", kAnotherLanguage},
    XmlKind{"/XSL/Transform", "", "an XSLT stylesheet", kOpenModel},
    XmlKind{"w3.org/2001/XMLSchema", "schema", "an XML Schema", kOpenModel},
    XmlKind{"schemas.xmlsoap.org/wsdl", "", "a WSDL description", kOpenModel},
    XmlKind{"/xhtml", "", "a web page (HTML)", kDownload},
    XmlKind{"", "html", "a web page (HTML)", kDownload},
    XmlKind{"", "HTML", "a web page (HTML)", kDownload},
    XmlKind{"/2000/svg", "", "a picture (SVG)", kOpenModel},
    XmlKind{"", "svg", "a picture (SVG)", kOpenModel},
    XmlKind{"/2005/Atom", "", "a news feed (Atom)", kDownload},
    XmlKind{"", "rss", "a news feed (RSS)", kDownload},
    XmlKind{"", "plist", "a property list", kOpenModel},
    XmlKind{"maven.apache.org/POM", "", "a project of Maven", kOpenModel},
    XmlKind{"developer/msbuild", "", "a project of MSBuild", kOpenModel},
    XmlKind{"", "projectDescription", "the description of an Eclipse project (.project)", kOpenModel},
    XmlKind{"opendocument", "", "an OpenDocument file", kOpenModel},
    XmlKind{"schemas.microsoft.com/office", "", "an Office document", kOpenModel},
    XmlKind{"schemas.openxmlformats.org", "", "an Office document", kOpenModel},
    XmlKind{"docbook", "", "a DocBook document", kOpenModel},
};

/// Tags of dumps of databases; two of them are enough where no namespace says what it is.
constexpr std::array<std::string_view, 12> kTableTags{
    "column", "data",   "database", "dataroot",   "field",           "record",
    "row",    "rowset", "table",    "table_data", "table_structure", "resultset"};

std::string lowerCase(std::string_view aText) {
  std::string text(aText);
  std::transform(text.begin(), text.end(), text.begin(), [](char aByte) {
    return aByte >= 'A' && aByte <= 'Z' ? static_cast<char>(aByte + 32) : aByte;
  });
  return text;
}

/// "<a> of "http://b""
std::string tagWithNamespace(Tag const& aTag) {
  return '<' + shown(aTag.fName) + '>' +
         (aTag.fNamespace.empty() ? " without a namespace" : " of " + inQuotes(shown(aTag.fNamespace)));
}

XmlKind const* rowOf(Tag const& aTag) {
  auto const row = std::find_if(kXml.begin(), kXml.end(), [&aTag](XmlKind const& aRow) {
    return aTag.fNamespace.find(aRow.fNamespace) != kNone && (aRow.fTag.empty() || aRow.fTag == aTag.local());
  });
  return row == kXml.end() ? nullptr : &*row;
}

/// XMI up to 1.3, which knows UML up to 1.5 and other metamodels of its time.
bool isXmi1(FirstTags const& aFirst) {
  return aFirst.fTags.front().local() == "XMI" && (aFirst.fTags.front().has("xmi.version") ||
                                                   (aFirst.fDoctype == "XMI" && aFirst.fNamespaces.empty()));
}

std::string metamodelOfXmi1(FirstTags const& aFirst) {
  auto const& spaces = aFirst.fNamespaces;
  auto const isOfUml = [](std::string_view aSpace) { return aSpace.find("UML") != kNone; };
  bool const isUml = spaces.empty() || std::any_of(spaces.begin(), spaces.end(), isOfUml);
  std::string metamodel = isUml ? "UML 1" : inQuotes(shown(spaces.front()));
  for (Tag const& tag : aFirst.fTags) {
    if (tag.fName != "XMI.metamodel") continue;
    std::string_view const name = tag.attribute("xmi.name");
    std::string_view const version = tag.attribute("xmi.version");
    if (!name.empty()) metamodel = lowerCase(name) == "uml" ? "UML" : shown(name);
    if (!version.empty()) metamodel = metamodel.substr(0, metamodel.find(' ')) + ' ' + shown(version);
    return metamodel;
  }
  // "omg.org/UML1.3", "href://org.omg/UML/1.4".
  for (std::string_view const space : aFirst.fNamespaces) {
    std::size_t const version = isOfUml(space) ? space.find_first_of("123456789", space.find("UML")) : kNone;
    if (version != kNone) return "UML " + shown(space.substr(version));
  }
  return metamodel;
}

Kind kindOfXmi1(FirstTags const& aFirst) {
  std::string const metamodel = metamodelOfXmi1(aFirst);
  std::string_view const version = aFirst.fTags.front().attribute("xmi.version");
  return {metamodel + " in XMI " + shown(version.empty() ? "1" : version) + ", which is another metamodel",
          std::string(kFromOldUml)};
}

/// A newer XMI may hold a metamodel of its time.
bool isUml1(std::string_view aNamespace) {
  return aNamespace.find("omg.org/") != kNone &&
         (aNamespace.find("UML/1.") != kNone || aNamespace.find("UML1.") != kNone);
}

bool isTables(FirstTags const& aFirst) {
  std::vector<std::string> found;
  for (Tag const& tag : aFirst.fTags) {
    std::string const name = lowerCase(tag.local());
    // Tables of a tool's own go by such names as "t_object".
    bool const isKnown = std::find(kTableTags.begin(), kTableTags.end(), name) != kTableTags.end();
    bool const isOne = tag.fNamespace.empty() && (isKnown || name.starts_with("t_"));
    if (isOne && std::find(found.begin(), found.end(), name) == found.end()) found.push_back(name);
  }
  return found.size() > 1;
}

bool isUml2(std::string_view aNamespace) {
  return aNamespace.find("/spec/UML/2") != kNone || aNamespace.find("eclipse.org/uml2/") != kNone;
}

Kind uml1In(std::string_view aNamespace) {
  return {"UML " + shown(aNamespace.substr(aNamespace.find("1.", aNamespace.find("UML")))) +
              ", which is another metamodel",
          std::string(kFromOldUml)};
}

Kind kindOfRoot(FirstTags const& aFirst) {
  Tag const& root = aFirst.fTags.front();
  bool const hasUml = std::any_of(aFirst.fNamespaces.begin(), aFirst.fNamespaces.end(), isUml2);
  Kind const withoutUml{"XMI without any element of UML in it", std::string(kExport)};
  if (root.local() == "XMI" || root.fNamespace.find("XMI") != kNone) {
    auto const child = std::find_if(aFirst.fTags.begin(), aFirst.fTags.end(), [](Tag const& aTag) {
      return aTag.fDepth == 1 && aTag.local() != "Documentation" && aTag.local() != "Extension";
    });
    if (child != aFirst.fTags.end() && isUml1(child->fNamespace)) return uml1In(child->fNamespace);
    if (hasUml || child == aFirst.fTags.end()) return withoutUml;
    return {"XMI of another metamodel (it holds " + tagWithNamespace(*child) + ")",
            std::string(kAnotherLanguage)};
  }
  if (isUml2(root.fNamespace)) return withoutUml;
  if (isUml1(root.fNamespace)) return uml1In(root.fNamespace);
  bool const isXmi = root.has("xmi:version");
  return {std::string(isXmi ? "XMI of another metamodel" : "XML of another kind") + " (its root is " +
              tagWithNamespace(root) + ")",
          std::string(isXmi ? kAnotherLanguage : kExport)};
}

Kind kindOfXml(std::string_view aText) {
  std::string const again = "get the whole file: copy or export it again";
  FirstTags const first = firstTags(aText, kMostTags);
  if (first.fTags.empty()) return {"XML that breaks off before its first tag ends", again};
  Tag const& root = first.fTags.front();
  if (isXmi1(first)) return kindOfXmi1(first);
  for (Tag const& tag : first.fTags) {
    if (tag.fDepth > (root.local() == "XMI" ? 1U : 0U)) continue;
    if (auto const* row = rowOf(tag)) return {std::string(row->fWhat), std::string(row->fAdvice)};
  }
  if (isTables(first)) {
    return {"XML with tables of a database",
            "open the project in its tool and export the model as XMI 2.1 or later"};
  }
  std::string const end = "</" + std::string(root.fName);
  if (!root.fIsEmpty && aText.rfind(end) == kNone)
    return {"XML that breaks off before " + shown(end) + '>', again};
  return kindOfRoot(first);
}

/// The first two characters that are not blank, of a text in any encoding in which XML may be.
std::array<char, 2> firstCharacters(std::string_view aBytes) noexcept {
  std::string_view const wide = wideUnitsOf(aBytes);
  std::size_t const unit = wide.empty() ? 1 : wide.starts_with("utf-16") ? 2 : 4;
  std::size_t const low = wide.ends_with("be") ? unit - 1 : 0;
  std::array<char, 2> found{};
  std::size_t count = 0;
  std::size_t place = 0;
  // Files that were put together may have several.
  while (aBytes.substr(place).starts_with("\xEF\xBB\xBF")) place += 3;
  if (!wide.empty() && (aBytes[low] & '\x80') != 0) place = unit;
  for (; place < aBytes.size() && aBytes.size() - place >= unit && count < found.size(); place += unit) {
    if (count > 0 || !isBlank(aBytes[place + low])) found[count++] = aBytes[place + low];
  }
  return found;
}

/// Whether much of a text are bytes that its encoding has no characters for.
bool isForeign(std::string_view aText) {
  std::size_t count = 0;
  std::size_t foreign = 0;
  for (std::size_t place = 0; place < aText.size() && count < kLooked; ++count) {
    auto const [code, length] = utf8::at(aText, place);
    if (isEscapedByte(code) || isEscapedSurrogate(code)) ++foreign;
    place += length;
  }
  return foreign > count / 20;
}

Kind kindOfText(SourceText const& aText) {
  std::string_view const text = aText.utf8();
  // What merely looks like a wide encoding tells more as bytes.
  if (isForeign(text)) return kindOfBytes(aText.encoded(text), aText.name());
  return kindOfBytes(text, aText.name());
}

}  // namespace

bool isNoXml(std::string_view aBytes) noexcept {
  if (isEbcdicXml(aBytes)) return false;
  auto const [first, second] = firstCharacters(aBytes);
  auto const next = static_cast<unsigned char>(second);
  bool const beginsName = next >= 0x80 || (next >= 'a' && next <= 'z') || (next >= 'A' && next <= 'Z');
  return first != '<' || !(beginsName || second == '_' || second == ':' || second == '!' || second == '?');
}

std::string whatItIs(SourceText const& aText) {
  std::string_view const text = aText.utf8();
  Kind const kind = isNoXml(text) ? kindOfText(aText) : kindOfXml(text);
  return inQuotes(aText.name()) + " is " + kind.fWhat + ", not a UML 2 model in XMI; " + kind.fAdvice;
}

}  // namespace umlmm::files
