#pragma once

#include <cstdint>
#include <unordered_set>
#include <vector>

#include "engine/slots.h"

namespace umlmm::queries {

using engine::Element;

/// A set of elements for the length of one walk. Members carry a mark bit of their own, so that asking costs
/// a read of the element that is at hand anyway; the marks go with the set. There are five bits; walks nested
/// deeper fall back to hashing.
class Visited {
 public:
  Visited() noexcept : fMark(static_cast<std::uint8_t>(sFree & -sFree)) {
    sFree = static_cast<std::uint8_t>(sFree & ~fMark);
  }
  Visited(Visited const&) = delete;
  Visited& operator=(Visited const&) = delete;
  ~Visited() {
    for (Element* const element : fMarked)
      element->fMarks = static_cast<std::uint8_t>(element->fMarks & ~fMark);
    sFree = static_cast<std::uint8_t>(sFree | fMark);
  }

  /// Whether the element is new to the set.
  bool insert(Element const& aElement) {
    auto& element = const_cast<Element&>(aElement);
    if (fMark == 0) return fHashed.insert(&element).second;
    if ((element.fMarks & fMark) != 0) return false;
    fMarked.push_back(&element);
    element.fMarks = static_cast<std::uint8_t>(element.fMarks | fMark);
    return true;
  }
  bool contains(Element const& aElement) const {
    if (fMark == 0) return fHashed.contains(&const_cast<Element&>(aElement));
    return (aElement.fMarks & fMark) != 0;
  }

 private:
  /// Bits of Element::fMarks that no walk uses; those below are the kernel's.
  static inline std::uint8_t sFree = 0xF8;

  std::uint8_t fMark;
  std::vector<Element*> fMarked;
  std::unordered_set<Element*> fHashed;
};

}  // namespace umlmm::queries
