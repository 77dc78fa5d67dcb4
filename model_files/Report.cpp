#include <cstdio>
#include <sstream>

#include "model_files/files.h"

namespace umlmm::files {

namespace {

std::string quoted(std::string_view aText) {
  std::string text = "\"";
  for (char const character : aText) {
    if (character == '"' || character == '\\') text += '\\';
    if (static_cast<unsigned char>(character) < 0x20) {
      char code[8];
      std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned>(character));
      text += code;
    } else {
      text += character;
    }
  }
  return text += '"';
}

std::string textOf(Place const& aPlace) { return aPlace.fFile + ":" + std::to_string(aPlace.fLine); }

/// Writes lists of JSON with commas between.
template <class Items, class Write>
void writeList(std::ostream& aOut, Items const& aItems, char aOpen, char aClose, Write aWrite) {
  aOut << aOpen;
  char const* comma = "";
  for (auto const& item : aItems) {
    aOut << comma;
    aWrite(item);
    comma = ", ";
  }
  aOut << aClose;
}

void writePlace(std::ostream& aOut, Place const& aPlace) {
  aOut << "\"file\": " << quoted(aPlace.fFile) << ", \"line\": " << aPlace.fLine
       << ", \"column\": " << aPlace.fColumn;
}

}  // namespace

std::string Report::page() const {
  std::ostringstream out;
  for (File const& file : fFiles) {
    out << file.fPath << "\n  " << file.fDialect << ", " << file.fEncoding << ", " << file.fBytes << " bytes";
    if (!file.fTool.empty()) out << ", written by " << file.fTool << ' ' << file.fToolVersion;
    out << '\n';
  }
  out << '\n' << fElementCount << " elements\n";
  for (auto const& [name, count] : fElements) out << "  " << count << ' ' << name << '\n';
  if (fStereotypeCount != 0) out << fStereotypeCount << " stereotype applications\n";
  if (fUnresolvedCount != 0) out << fUnresolvedCount << " references that lead nowhere\n";
  if (!fFindings.empty()) out << "\nRead, and not as UML:\n";
  for (Finding const& finding : fFindings)
    out << "  " << finding.fCount << " x " << finding.fKind << ": " << finding.fWhat << " ("
        << finding.fOutcome << "; first " << textOf(finding.fFirst) << ")\n";
  if (!fDuplicateIds.empty()) out << "\nIds that are there twice; the first is meant:\n";
  for (auto const& [id, place] : fDuplicateIds) out << "  " << id << " (" << textOf(place) << ")\n";
  char times[80];
  std::snprintf(times, sizeof times, "\nParsed in %.3f s, built in %.3f s\n", fParseTime, fBuildTime);
  out << times;
  return out.str();
}

std::string Report::json() const {
  std::ostringstream out;
  out << "{\"files\": ";
  writeList(out, fFiles, '[', ']', [&](File const& aFile) {
    out << "{\"path\": " << quoted(aFile.fPath) << ", \"dialect\": " << quoted(aFile.fDialect)
        << ", \"tool\": " << quoted(aFile.fTool) << ", \"tool_version\": " << quoted(aFile.fToolVersion)
        << ", \"encoding\": " << quoted(aFile.fEncoding) << ", \"bytes\": " << aFile.fBytes << '}';
  });
  out << ", \"elements\": ";
  writeList(out, fElements, '{', '}',
            [&](auto const& aRow) { out << quoted(aRow.first) << ": " << aRow.second; });
  out << ", \"element_count\": " << fElementCount << ", \"stereotype_count\": " << fStereotypeCount
      << ", \"unresolved_count\": " << fUnresolvedCount << ", \"findings\": ";
  writeList(out, fFindings, '[', ']', [&](Finding const& aFinding) {
    out << "{\"kind\": " << quoted(aFinding.fKind) << ", \"what\": " << quoted(aFinding.fWhat)
        << ", \"outcome\": " << quoted(aFinding.fOutcome) << ", \"count\": " << aFinding.fCount << ", ";
    writePlace(out, aFinding.fFirst);
    out << '}';
  });
  out << ", \"duplicate_ids\": ";
  writeList(out, fDuplicateIds, '[', ']', [&](auto const& aRow) {
    out << "{\"id\": " << quoted(aRow.first) << ", ";
    writePlace(out, aRow.second);
    out << '}';
  });
  out << ", \"parse_time\": " << fParseTime << ", \"build_time\": " << fBuildTime << '}';
  return out.str();
}

}  // namespace umlmm::files
