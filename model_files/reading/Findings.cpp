#include "model_files/reading/Findings.h"

namespace umlmm::files {

void Findings::add(std::string_view aKind, std::string_view aWhat, std::string_view aOutcome, Spot aSpot) {
  fKey.assign(aKind);
  fKey += '\n';
  fKey += aWhat;
  auto& findings = fFiles.fReport.fFindings;
  auto const [at, isNew] = fByKey.try_emplace(fKey, findings.size());
  if (isNew)
    findings.push_back(
        {std::string(aKind), std::string(aWhat), std::string(aOutcome), 0, fFiles.place(aSpot)});
  ++findings[at->second].fCount;
}

void Findings::raise(std::string_view aKind, std::string_view aWhat, Spot aSpot, std::string aPath) const {
  throw ReadError("not understood: " + std::string(aKind) + " " + std::string(aWhat), fFiles.place(aSpot),
                  std::move(aPath));
}

}  // namespace umlmm::files
