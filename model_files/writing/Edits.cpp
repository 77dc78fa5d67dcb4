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

void Edits::write(std::size_t aFrom, std::size_t aTo, std::string& aOut, Copied const& aCopied) const {
  std::size_t at = aFrom;
  auto const copy = [&](std::size_t aEnd) {
    aCopied(at, aEnd);
    aOut += fText.substr(at, aEnd - at);
  };
  auto edit = std::ranges::lower_bound(fEdits, aFrom, {}, &Edit::fFrom);
  for (; edit != fEdits.end() && edit->fFrom < aTo; ++edit) {
    if (edit->fFrom < at || edit->fTo > aTo) continue;
    if (edit->fFrom <= aFrom && edit->fTo >= aTo) continue;
    copy(edit->fFrom);
    write(*edit, aOut);
    at = edit->fTo;
  }
  copy(aTo);
}

void Edits::writeEnd(std::string& aOut) const {
  auto const first = std::ranges::lower_bound(fEdits, fText.size(), {}, &Edit::fFrom);
  for (auto edit = first; edit != fEdits.end(); ++edit) write(*edit, aOut);
}

void Edits::write(Edit const& aEdit, std::string& aOut) {
  if (aEdit.fWrite)
    aEdit.fWrite(aOut);
  else
    aOut += aEdit.fText;
}

}  // namespace umlmm::files
