#include "model_files/text/byteKinds.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <utility>

#include "model_files/text/encodings.h"
#include "model_files/text/messages.h"

namespace umlmm::files {

namespace {

using namespace std::string_view_literals;

struct ByteKind {
  std::size_t fPlace;
  std::string_view fBytes;
  std::string_view fWhat;
  std::string_view fAdvice;
};

constexpr std::string_view kOpenModel = "open the file of a UML model";
constexpr std::string_view kFetch = "fetch the file itself with \"git lfs pull\", and open it then";
constexpr std::string_view kFromDatabase =
    "open the project in its tool and export the model as XMI 2.1 or later";

/// What cannot be taken for a text.
constexpr std::array kBinaries{
    ByteKind{4, "Standard Jet DB"sv, "an Access database (Enterprise Architect keeps projects so, as .eap)",
             kFromDatabase},
    ByteKind{4, "Standard ACE DB"sv, "an Access database (Enterprise Architect keeps projects so, as .eap)",
             kFromDatabase},
    ByteKind{0, "\x1F\x8B"sv, "compressed by gzip", kUnpack},
    ByteKind{0, "BZh"sv, "compressed by bzip2", kUnpack},
    ByteKind{0,
             "\xFD"
             "7zXZ\0"sv,
             "compressed by xz", kUnpack},
    ByteKind{0, "\x28\xB5\x2F\xFD"sv, "compressed by zstd", kUnpack},
    ByteKind{0, "\x1F\x9D"sv, "compressed by compress", kUnpack},
    ByteKind{0, "7z\xBC\xAF\x27\x1C"sv, "a 7z archive", kUnpack},
    ByteKind{0, "Rar!\x1A\x07"sv, "a rar archive", kUnpack},
    ByteKind{257, "ustar"sv, "a tar archive", kUnpack},
    ByteKind{0, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv, "a compound document (as of older Office programs)",
             kExport},
    ByteKind{0, "%PDF"sv, "a PDF document", kOpenModel},
    ByteKind{0, "%!PS"sv, "a PostScript document", kOpenModel},
    ByteKind{0, "\x89PNG"sv, "a picture (PNG)", kOpenModel},
    ByteKind{0, "\xFF\xD8\xFF"sv, "a picture (JPEG)", kOpenModel},
    ByteKind{0, "GIF8"sv, "a picture (GIF)", kOpenModel},
    ByteKind{8, "WEBP"sv, "a picture (WebP)", kOpenModel},
    ByteKind{0, "II*\0"sv, "a picture (TIFF)", kOpenModel},
    ByteKind{0, "MM\0*"sv, "a picture (TIFF)", kOpenModel},
    ByteKind{0,
             "\x7F"
             "ELF"sv,
             "a program or library (ELF)", kOpenModel},
    ByteKind{0, "MZ\x90\0"sv, "a program (.exe)", kOpenModel},
    ByteKind{0, "\xCA\xFE\xBA\xBE"sv, "compiled Java (.class)", kOpenModel},
    ByteKind{0, "\xAC\xED\0\5"sv, "objects of Java", kExport},
};

/// What texts begin with.
constexpr std::array kTexts{
    ByteKind{0, "version https://git-lfs", "a pointer of git LFS", kFetch},
    ByteKind{0, "<<<<<<<", "a file with a conflict of versions in it",
             "resolve the conflict, and open it then"},
    ByteKind{0, "@startuml", "PlantUML", kExport},
    ByteKind{0, "{\\rtf", "a document (RTF)", kOpenModel},
    ByteKind{0, "(object Petal", "a model of Rational Rose (.mdl)", kExport},
    ByteKind{0, "ISO-10303-21", "a STEP file", kOpenModel},
    ByteKind{0, "%YAML", "YAML", kExport},
    ByteKind{0, "---", "YAML", kExport},
    ByteKind{0, "@prefix", "RDF as Turtle", kExport},
    ByteKind{0, "digraph", "a graph of Graphviz", kExport},
    ByteKind{0, "classDiagram", "Mermaid", kExport},
    ByteKind{0, "library package", "SysML 2 as text", kExport},
    ByteKind{0, "standard library package", "SysML 2 as text", kExport},
    ByteKind{0, "#!", "a script", kOpenModel},
    ByteKind{0, "diff --git", "a patch", kOpenModel},
};

/// Whose bytes have nothing that others lack.
constexpr std::array<std::pair<std::string_view, std::string_view>, 10> kSuffixes{{
    {".feap", "a Firebird database (Enterprise Architect keeps projects so)"},
    {".asta", "a project of astah"},
    {".jude", "a project of astah"},
    {".sysml", "SysML 2 as text"},
    {".kerml", "KerML as text"},
    {".mmd", "Mermaid"},
    {".ump", "Umple"},
    {".puml", "PlantUML"},
    {".yaml", "YAML"},
    {".yml", "YAML"},
}};

constexpr std::size_t kLooked = 4096;

template <std::size_t N>
ByteKind const* rowOf(std::array<ByteKind, N> const& aRows, std::string_view aBytes) {
  auto const row = std::find_if(aRows.begin(), aRows.end(), [aBytes](ByteKind const& aRow) {
    return aBytes.size() >= aRow.fPlace && aBytes.substr(aRow.fPlace).starts_with(aRow.fBytes);
  });
  return row == aRows.end() ? nullptr : &*row;
}

bool isBinary(std::string_view aBytes) {
  std::string_view const head = aBytes.substr(0, kLooked);
  auto const isControl = [](char aByte) {
    return static_cast<unsigned char>(aByte) < ' ' && !isBlank(aByte) && aByte != '\f' && aByte != '\x1B';
  };
  auto const controls = static_cast<std::size_t>(std::count_if(head.begin(), head.end(), isControl));
  return head.find('\0') != std::string_view::npos || controls > head.size() / 20;
}

std::string firstBytes(std::string_view aBytes) {
  std::string text;
  for (char const byte : aBytes.substr(0, 8)) {
    std::array<char, 4> digits;
    std::snprintf(digits.data(), digits.size(), "%02X",
                  static_cast<unsigned>(static_cast<unsigned char>(byte)));
    text += (text.empty() ? "" : " ") + std::string(digits.data());
  }
  return text;
}

Kind kindOfJson(std::string_view aText) {
  std::string_view const head = aText.substr(0, kLooked);
  auto const has = [head](std::string_view aPart) { return head.find(aPart) != std::string_view::npos; };
  if (has("\"_type\"") && has("\"_id\""))
    return {"JSON, as StarUML keeps its projects (.mdj)", std::string(kExport)};
  if (has("\"@type\"") && has("\"@id\""))
    return {"JSON, as models of SysML 2 are exchanged", std::string(kExport)};
  return {"JSON", std::string(kExport)};
}

bool isJson(std::string_view aText) {
  std::size_t const next = aText.find_first_not_of(" \t\r\n", 1);
  if (next == std::string_view::npos) return aText == "{" || aText == "[";
  std::string_view const follow = aText[0] == '{' ? "\"}"sv : aText[0] == '[' ? "{[]\"-0123456789"sv : ""sv;
  if (follow.find(aText[next]) != std::string_view::npos) return true;
  std::string_view const word = aText.substr(next, aText.find_first_of(" \t\r\n,]", next) - next);
  return aText[0] == '[' && (word == "true" || word == "false" || word == "null");
}

bool isYaml(std::string_view aText) {
  std::string_view const line = aText.substr(0, aText.find_first_of("\r\n"));
  std::size_t const colon = line.find(':');
  auto const isOfKey = [](char aByte) {
    return (aByte >= 'a' && aByte <= 'z') || (aByte >= 'A' && aByte <= 'Z') || aByte == '_' || aByte == '-';
  };
  return colon != std::string_view::npos && colon > 0 &&
         std::all_of(line.begin(), line.begin() + colon, isOfKey) &&
         (colon + 1 == line.size() || line[colon + 1] == ' ');
}

Kind kindOfDatabase(std::string_view aBytes) {
  std::string_view const head = aBytes.substr(0, 1U << 20);
  bool const isKnown = head.find("t_object") != std::string_view::npos;
  return {isKnown ? "a SQLite database with a project of Enterprise Architect (.qea)"
                  : "a SQLite database (tools keep projects so, as .qea or .vpp)",
          std::string(kFromDatabase)};
}

}  // namespace

Kind kindOfBytes(std::string_view aText, std::string_view aName) {
  if (aText.empty()) return {"empty", std::string(kExport)};
  if (aText.starts_with("PK\3\4") || aText.starts_with("PK\5\6")) return kindOfZip(aText);
  if (aText.starts_with("SQLite format 3")) return kindOfDatabase(aText);
  if (auto const* row = rowOf(kBinaries, aText)) return {std::string(row->fWhat), std::string(row->fAdvice)};
  for (auto const& [suffix, what] : kSuffixes) {
    if (aName.ends_with(suffix)) return {std::string(what), std::string(kExport)};
  }
  if (isBinary(aText)) return {"binary data (" + firstBytes(aText) + ")", std::string(kExport)};
  std::size_t const start = aText.find_first_not_of(" \t\r\n");
  if (start == std::string_view::npos) return {"a text of nothing but blanks", std::string(kExport)};
  std::string_view const text = aText.substr(start);
  if (auto const* row = rowOf(kTexts, text)) return {std::string(row->fWhat), std::string(row->fAdvice)};
  if (isJson(text)) return kindOfJson(text);
  std::string_view const head = text.substr(0, kLooked);
  if (head.find("part def ") != std::string_view::npos ||
      head.find("attribute def ") != std::string_view::npos) {
    return {"SysML 2 as text", std::string(kExport)};
  }
  if (isYaml(text)) return {"a text that looks like YAML", std::string(kExport)};
  return {"a text without any XML (it begins with \"" +
              shown(text.substr(0, text.find_first_of("\r\n")), 40) + "\")",
          std::string(kExport)};
}

}  // namespace umlmm::files
