#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "model_files/text/byteKinds.h"
#include "model_files/text/messages.h"

namespace umlmm::files {

namespace {

using namespace std::string_view_literals;

struct MemberKind {
  std::string_view fStart;
  std::string_view fEnd;
  std::string_view fWhat;
  std::string_view fAdvice;
};

constexpr std::string_view kDocument = "open the file of a UML model";

/// By names of members that tell what an archive is.
constexpr std::array kMembers{
    MemberKind{"com.nomagic.", "", "a project of MagicDraw or Cameo (a zip archive, .mdzip)", kExport},
    MemberKind{"", ".argo", "a project of ArgoUML (a zip archive, .zargo)", kExport},
    MemberKind{"word/document.xml", "", "a Word document (a zip archive, .docx)", kDocument},
    MemberKind{"xl/workbook.", "", "an Excel workbook (a zip archive, .xlsx)", kDocument},
    MemberKind{"ppt/presentation.xml", "", "a PowerPoint presentation (a zip archive, .pptx)", kDocument},
    MemberKind{"visio/document.xml", "", "a Visio drawing (a zip archive, .vsdx)", kDocument},
    MemberKind{"META-INF/container.xml", "", "a book (a zip archive, .epub)", kDocument},
    MemberKind{"content.xml", "", "an OpenDocument file (a zip archive)", kDocument},
    MemberKind{"META-INF/MANIFEST.MF", "", "a Java archive (a zip archive, .jar)", kUnpack},
};

constexpr std::array kModelSuffixes{".uml"sv, ".xmi"sv, ".mdxml"sv, ".emx"sv, ".xml"sv};

constexpr std::size_t kMostMembers = 10000;

std::size_t numberAt(std::string_view aBytes, std::size_t aPlace, std::size_t aSize) {
  std::size_t number = 0;
  for (std::size_t i = aSize; i-- > 0;) number = number << 8 | static_cast<unsigned char>(aBytes[aPlace + i]);
  return number;
}

/// From the list at the end of an archive; nothing, if that is missing.
std::vector<std::string_view> members(std::string_view aBytes) {
  constexpr std::size_t kEndSize = 22;
  constexpr std::size_t kRowSize = 46;
  std::vector<std::string_view> names;
  std::size_t const end = aBytes.rfind("PK\5\6");
  if (end == std::string_view::npos || aBytes.size() - end < kEndSize) return names;
  std::size_t place = numberAt(aBytes, end + 16, 4);
  while (place < end && end - place > kRowSize && aBytes.substr(place, 4) == "PK\1\2" &&
         names.size() < kMostMembers) {
    std::size_t const length = numberAt(aBytes, place + 28, 2);
    names.push_back(aBytes.substr(place + kRowSize, length));
    place += kRowSize + length + numberAt(aBytes, place + 30, 2) + numberAt(aBytes, place + 32, 2);
  }
  return names;
}

}  // namespace

Kind kindOfZip(std::string_view aBytes) {
  std::vector<std::string_view> const names = members(aBytes);
  if (names.empty())
    return {"a zip archive that breaks off or is empty", "get it whole, unpack it and open the model"};
  Kind kind{"a zip archive", std::string(kUnpack)};
  for (MemberKind const& row : kMembers) {
    if (std::any_of(names.begin(), names.end(), [&row](std::string_view aName) {
          return aName.starts_with(row.fStart) && aName.ends_with(row.fEnd);
        })) {
      kind = {std::string(row.fWhat), std::string(row.fAdvice)};
      break;
    }
  }
  if (kind.fAdvice != kUnpack) return kind;
  for (std::string_view const suffix : kModelSuffixes) {
    auto const model =
        std::find_if(names.begin(), names.end(), [suffix](auto aName) { return aName.ends_with(suffix); });
    if (model == names.end()) continue;
    kind.fAdvice = "unpack it and open " + inQuotes(*model) + " in it";
    break;
  }
  return kind;
}

}  // namespace umlmm::files
