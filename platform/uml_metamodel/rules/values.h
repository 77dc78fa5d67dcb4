#pragma once

#include <ranges>
#include <span>
#include <string_view>

#include "engine/slots.h"
#include "kelm/values.h"

/// Slots read as what they hold, for rules and queries. The element's metaclass must have the root feature;
/// nothing here asks for the variant.
namespace umlmm::values {

using engine::Element;
using engine::FeatureIndex;

/// A required Boolean.
inline bool flag(Element const& aElement, FeatureIndex aRoot) noexcept {
  return engine::flagBits(aElement, aRoot, 1) != 0;
}

/// The number of an enumeration's literal, or -1 when it is unset.
inline int literal(Element const& aElement, FeatureIndex aRoot) noexcept {
  std::uint32_t const bits = engine::flagBits(aElement, aRoot, engine::kEnumerationBits + 1);
  bool const isPresent = bits >> engine::kEnumerationBits != 0;
  return isPresent ? static_cast<int>(bits & ((1U << engine::kEnumerationBits) - 1)) : -1;
}

/// Integers as stored; unlimited naturals have all bits set when unlimited.
inline std::uint32_t number(Element const& aElement, FeatureIndex aRoot) noexcept {
  return engine::integerSlot(aElement, aRoot);
}

/// The text record, or null when it is unset.
inline Kelm::StringObject const* record(Element const& aElement, FeatureIndex aRoot) noexcept {
  return engine::pointerSlot<Kelm::StringObject>(aElement, aRoot);
}

/// The text, empty when it is unset.
inline std::u16string_view text(Element const& aElement, FeatureIndex aRoot) noexcept {
  Kelm::StringObject const* const stored = record(aElement, aRoot);
  return stored == nullptr ? std::u16string_view() : stored->text();
}

/// A single stored reference, or null.
inline Element* reference(Element const& aElement, FeatureIndex aRoot) noexcept {
  return engine::pointerSlot<Element>(aElement, aRoot);
}

/// The entries of a stored list, holes included.
inline std::span<Element* const> entries(Element const& aElement, FeatureIndex aRoot) noexcept {
  auto const* const list = engine::pointerSlot<engine::ElementList>(aElement, aRoot);
  return list == nullptr ? std::span<Element* const>() : std::span(list->begin(), list->end());
}

/// The elements of a stored list.
inline auto elements(Element const& aElement, FeatureIndex aRoot) noexcept {
  return entries(aElement, aRoot) | std::views::filter([](Element* aEntry) { return aEntry != nullptr; });
}

/// An object that takes over a new text's count.
inline Kelm::Object adopt(Kelm::StringObject const* aText) {
  Kelm::Object const object(aText, Kelm::Deviant());
  aText->decRef();
  return object;
}

}  // namespace umlmm::values
