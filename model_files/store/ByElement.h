#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "kelm/ClassObject.h"

namespace umlmm::files {

/// Finds the entries of a list by their `fElement`. It goes through the list when it is first asked, and
/// again when the list has become another one.
template <class Entry>
class ByElement {
  using Element = Kelm::NSInterface::ClassObjectIntf;

 public:
  /// The entries of the element, in the order of the list.
  std::vector<Entry const*> rows(std::vector<Entry> const& aList, Element const* aElement) {
    if (fFirst != aList.data() || fPlaces.size() != aList.size()) index(aList);
    std::vector<Entry const*> rows;
    auto at = std::ranges::lower_bound(fPlaces, std::pair(aElement, std::size_t{0}));
    for (; at != fPlaces.end() && at->first == aElement; ++at) rows.push_back(&aList[at->second]);
    return rows;
  }

 private:
  void index(std::vector<Entry> const& aList) {
    fFirst = nullptr;
    fPlaces.clear();
    fPlaces.reserve(aList.size());
    for (Entry const& entry : aList)
      fPlaces.emplace_back(entry.fElement.get(), static_cast<std::size_t>(&entry - aList.data()));
    std::ranges::sort(fPlaces);
    fFirst = aList.data();
  }

  Entry const* fFirst = nullptr;
  std::vector<std::pair<Element const*, std::size_t>> fPlaces;
};

}  // namespace umlmm::files
