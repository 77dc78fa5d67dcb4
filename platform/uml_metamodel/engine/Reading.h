#pragma once

#include <ranges>
#include <span>
#include <string_view>
#include <vector>

#include "engine/words.h"
#include "kelm/values.h"

namespace umlmm::engine {

struct Reference;

/// An element as somebody sees it: what queries and derivations take, and the only way by which they read.
/// Going on to another element keeps the variant, so that one question is answered in one variant throughout.
/// There is one store for all variants now; one of its own would come in here.
///
/// Two words, to be passed by value. It counts nothing, and may stand for no element, which must not be read.
/// A feature that is read must be a root with a slot on the element's metaclass, unless it says otherwise.
class Reading {
 public:
  Reading() noexcept = default;
  Reading(Element const& aElement, Deviant const& aDeviant) noexcept
      : fElement(const_cast<Element*>(&aElement)), fDeviant(aDeviant) {}

  explicit operator bool() const noexcept { return fElement != nullptr; }
  Element* element() const noexcept { return fElement; }
  Element& operator*() const noexcept { return *fElement; }
  Deviant const& deviant() const noexcept { return fDeviant; }
  Kelm::Object object() const { return Kelm::Object(fElement, fDeviant); }
  Kelm::ModelObject& model() const noexcept { return *fElement->model(); }
  /// Whether both are of one element.
  bool operator==(Reading const& aOther) const noexcept { return fElement == aOther.fElement; }

  /// Another element, or none, in the same variant.
  Reading on(Element const& aOther) const noexcept { return {aOther, fDeviant}; }
  Reading on(Element const* aOther) const noexcept { return {aOther, fDeviant}; }
  Reading none() const noexcept { return {nullptr, fDeviant}; }

  int metaclass() const noexcept { return metaclassOf(*fElement); }
  bool isA(int aMetaclass) const noexcept { return engine::isA(*fElement, aMetaclass); }

  // Values.

  /// A required Boolean.
  bool flag(FeatureIndex aRoot) const noexcept { return flagBits(*fElement, aRoot, 1) != 0; }
  /// The number of an enumeration's literal, or -1 when it is unset.
  int literal(FeatureIndex aRoot) const noexcept {
    std::uint32_t const bits = flagBits(*fElement, aRoot, kEnumerationBits + 1);
    bool const isPresent = bits >> kEnumerationBits != 0;
    return isPresent ? static_cast<int>(bits & ((1U << kEnumerationBits) - 1)) : -1;
  }
  /// Integers as stored; unlimited naturals have all bits set when unlimited.
  std::uint32_t number(FeatureIndex aRoot) const noexcept { return integerSlot(*fElement, aRoot); }
  /// The text record, or null when it is unset.
  Kelm::StringObject const* record(FeatureIndex aRoot) const noexcept {
    return pointerSlot<Kelm::StringObject>(*fElement, aRoot);
  }
  /// The text, empty when it is unset.
  std::u16string_view text(FeatureIndex aRoot) const noexcept {
    Kelm::StringObject const* const stored = record(aRoot);
    return stored == nullptr ? std::u16string_view() : stored->text();
  }

  // References.

  /// A single reference with a slot.
  Reading reference(FeatureIndex aRoot) const noexcept {
    return {pointerSlot<Element>(*fElement, aRoot), fDeviant};
  }
  /// The entries of a list, nulls among them. They stay until the list changes.
  std::span<Element* const> entries(FeatureIndex aRoot) const noexcept {
    auto const* const list = pointerSlot<ElementList>(*fElement, aRoot);
    return list == nullptr ? std::span<Element* const>() : std::span(list->begin(), list->end());
  }
  /// The elements of a list.
  auto list(FeatureIndex aRoot) const noexcept {
    return entries(aRoot) | std::views::filter([](Element* aEntry) { return aEntry != nullptr; }) |
           std::views::transform([deviant = fDeviant](Element* aEntry) { return Reading(*aEntry, deviant); });
  }
  /// By position in a list; none behind its end.
  Reading at(FeatureIndex aRoot, std::uint32_t aPosition) const noexcept {
    auto* const list = pointerSlot<ElementList>(*fElement, aRoot);
    return on(aPosition < ElementList::size(list) ? list->at(aPosition) : nullptr);
  }
  /// Where an element stands in a list that holds it.
  std::uint32_t positionOf(FeatureIndex aRoot, Element const& aValue) const noexcept {
    return withList(*fElement, feature(aRoot), [&](auto& aList) { return aList.positionOf(&aValue); });
  }
  /// Appends the values of a stored feature, or of the view of a container.
  void collect(FeatureIndex aRoot, std::vector<Element*>& aOut) const;
  bool holds(FeatureIndex aRoot, Element const& aValue) const;
  /// Appends the values of any feature of elements, computed ones included.
  void collectAny(FeatureIndex aFeature, std::vector<Element*>& aOut) const;
  std::vector<Element*> values(FeatureIndex aFeature) const {
    std::vector<Element*> values;
    collectAny(aFeature, values);
    return values;
  }

  // Whole and parts.

  /// The container; none at the top level.
  Reading owner() const noexcept { return on(fElement->container()); }
  /// The stored containment that holds the element; only for one with an owner.
  FeatureIndex containment() const noexcept { return fElement->containerFeature(); }
  /// False for elements that never contained anything: most of a model.
  bool hadParts() const noexcept { return hadContents(*fElement); }
  /// Appends what the element contains, in the order of its features.
  void collectParts(std::vector<Element*>& aOut) const { collectContents(*fElement, aOut); }

  // Who refers to the element through features without a far end.

  bool isReferred() const noexcept { return fElement->hasReferrers(); }
  std::vector<Reference> referrers() const;

 private:
  Reading(Element const* aElement, Deviant const& aDeviant) noexcept
      : fElement(const_cast<Element*>(aElement)), fDeviant(aDeviant) {}

  Element* fElement = nullptr;
  Deviant fDeviant;
};

static_assert(sizeof(Reading) == 2 * sizeof(void*) && std::is_trivially_copyable_v<Reading>);

/// The element as it is seen in a variant; raises when it does not exist there.
inline Reading readable(Element const& aElement, Deviant const& aDeviant, Place aPlace) {
  checkReadable(aElement, aDeviant, aPlace);
  return {aElement, aDeviant};
}

}  // namespace umlmm::engine
