#include "model_files/writing/Edits.h"

#include <algorithm>
#include <tuple>

namespace umlmm::files {

void Edits::sort() {
  // What comes in before something that goes stays.
  std::ranges::sort(fEdits, {}, [](Edit const& aEdit) {
    return std::tuple(aEdit.fFrom, aEdit.fTo != aEdit.fFrom, aEdit.fNumber);
  });
}

void Edits::write(std::size_t aFrom, std::size_t aTo, bool aIsAll, std::string& aOut,
                  Copied const& aCopied) const {
  std::size_t at = aFrom;
  auto const copy = [&](std::size_t aEnd) {
    aCopied(at, aEnd);
    aOut += fText.substr(at, aEnd - at);
  };
  auto edit = std::ranges::lower_bound(fEdits, aFrom, {}, &Edit::fFrom);
  for (; edit != fEdits.end() && (edit->fFrom < aTo || aIsAll); ++edit) {
    if (edit->fFrom < at || edit->fTo > aTo) continue;
    // In a text without lines what comes in before or behind a part touches it.
    bool const isAround = edit->fFrom <= aFrom && edit->fTo >= aTo;
    if (!aIsAll && (isAround || edit->fTo == aFrom)) continue;
    copy(edit->fFrom);
    if (edit->fWrite)
      edit->fWrite(aOut);
    else
      aOut += edit->fText;
    at = edit->fTo;
  }
  copy(aTo);
}

}  // namespace umlmm::files
