#pragma once

#include <span>

#include "engine/slots.h"

namespace umlmm::engine {

/// The manager of references to elements in sequences: as for any object, without a virtual call.
inline void countElement(void* aHolder, bool aIncrement) {
  auto const* const element =
      static_cast<Element const*>(static_cast<Kelm::NSInterface::ObjectIntf*>(aHolder));
  if (aIncrement)
    element->incRef();
  else
    element->decRef();
}

/// An element as a value of a sequence of references.
inline Kelm::Generic::Ref refTo(Element& aElement, Deviant const& aDeviant) {
  return Kelm::Generic::Ref(static_cast<Kelm::NSInterface::ObjectIntf*>(&aElement), aDeviant.word(),
                            &countElement,
                            [](void const* aLeft, void const* aRight) { return aLeft == aRight; });
}

/// How far ahead of a walk over many elements memory is asked for.
inline constexpr std::size_t kLookAhead = 16;

inline void prefetch(std::span<Element* const> aElements, std::size_t aPosition) noexcept {
  if (aPosition + kLookAhead < aElements.size()) __builtin_prefetch(aElements[aPosition + kLookAhead], 1);
}

/// Asks for an element and its slots, as far as most elements reach.
inline void prefetchSlots(Element const& aElement) noexcept {
  constexpr std::size_t kLine = 64;
  for (std::size_t line = 0; line < 3; ++line)
    __builtin_prefetch(reinterpret_cast<char const*>(&aElement) + line * kLine, 1);
}

/// Lends the first `aCount` of the elements, whose memory will be wanted next.
inline void lend(std::span<Element* const> aElements, int aCount, Deviant const& aDeviant,
                 Kelm::Generic::Loan* aOut) {
  for (std::size_t at = 0; at < static_cast<std::size_t>(aCount); ++at) {
    prefetch(aElements, at);
    aOut[at] = {static_cast<Kelm::NSInterface::ObjectIntf*>(aElements[at]), aDeviant.word()};
  }
}

}  // namespace umlmm::engine
