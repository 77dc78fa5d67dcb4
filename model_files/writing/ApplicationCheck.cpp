#include "model_files/writing/ApplicationCheck.h"

#include <algorithm>

#include "model_files/dialect/values.h"
#include "model_files/store/applications.h"

namespace umlmm::files {

ApplicationCheck::ApplicationCheck(Kelm::Model const& aModel, ModelFiles& aFiles, ModelFiles& aRead)
    : fFiles(aFiles), fRead(aRead), fDeviant(aModel.getDeviant()), fReadRows(aRead.fFiles.size()) {
  auto const add = [&](Application& aRow) {
    if (aRow.fElement->deviant_isValid(fDeviant)) fRows[aRow.fNumber].push_back(&aRow);
  };
  std::ranges::for_each(aFiles.fApplications, add);
  std::ranges::for_each(aFiles.fAdded, add);
  for (Application& row : aRead.fApplications) fReadRows[row.fSpot.fFile].push_back(&row);
  for (Rows& rows : fReadRows)
    std::ranges::stable_sort(rows, {}, [](Application const* aRow) { return aRow->fSpot.fOffset; });
}

void ApplicationCheck::check(std::uint32_t aFile, std::span<std::uint32_t const> aWritten) {
  auto written = aWritten.begin();
  Rows& rows = fReadRows[aFile];
  for (auto first = rows.begin(); first != rows.end();) {
    auto const last =
        std::find_if(first, rows.end(), [&](Application* aRow) { return aRow->fSpot != (*first)->fSpot; });
    std::span<Application* const> const read(first, last);
    // What named nothing in the old text may name something in the new one.
    bool const isKnown = written != aWritten.end() && isSame(*fRows.at(*written).front(), read);
    std::uint32_t const number = isKnown ? *written++ : fFiles.fApplicationCount++;
    for (Application* const row : read) row->fNumber = number;
    first = last;
  }
  if (written == aWritten.end()) return;
  Application const& lost = *fRows.at(*written).front();
  throw Error("The model was not saved: stereotype " + std::string(lost.fName) + " of " +
              pathOf(*lost.fElement, fDeviant) + " can't be written as it is");
}

bool ApplicationCheck::isSame(Application& aWritten, std::span<Application* const> aRead) const {
  auto const element = [](Application const* aRow) { return aRow->fElement; };
  // One that is named by a child of the tag now comes behind those that its attributes name.
  if (!std::ranges::is_permutation(fRows.at(aWritten.fNumber), aRead, {}, element, element)) return false;
  if (fFiles.changeOf(aWritten) == nullptr) return true;
  auto expected = told(fFiles, aWritten);
  auto found = told(fRead, *aRead.front());
  // Attributes come before children, and values of one tag stay as they are.
  auto const byTag = [](auto const& aValue) -> std::string const& { return aValue.first; };
  std::ranges::stable_sort(expected.fValues, {}, byTag);
  std::ranges::stable_sort(found.fValues, {}, byTag);
  return expected.fName == found.fName && expected.fProfileUri == found.fProfileUri &&
         expected.fValues == found.fValues;
}

}  // namespace umlmm::files
