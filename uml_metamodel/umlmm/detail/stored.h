#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "kelm/ModelElementIntf.h"
#include "kelm/String.h"

/// How the typed accessors find the value of a feature without asking its record: what the tables say of its
/// place is a constant of each metaclass's interface, so a read is the check of the variant and one or two
/// loads. Everybody else reads through the accessor tables.
namespace umlmm::detail {

/// Where a feature's value comes from.
enum class Storage : std::uint8_t {
  Flag,           ///< One bit, and a presence bit behind it if optional.
  Enumeration,    ///< Four bits and a presence bit.
  Integer,        ///< Half a word.
  String,         ///< A text record, null when unset.
  Reference,      ///< An element, null when unset.
  List,           ///< A list of elements, null when none was ever made.
  PrimitiveList,  ///< A sequence of values, null when none was ever made.
  Container,      ///< No slot: the container, if the far end holds the element.
  Computed        ///< No slot: a derivation.
};

/// Bits of an enumeration's number; its presence bit follows.
inline constexpr unsigned kEnumerationBits = 4;

/// A feature as its metaclass declares it.
struct StoredFeature {
  /// The number of the feature that has the slot; of a computed one its own.
  std::uint16_t fNumber = 0;
  Storage fStorage = Storage::Computed;
  /// Computed, as the container of the element.
  bool fIsOwner = false;
};

using ModelElement = Kelm::NSInterface::ModelElementIntf;

/// Raises, telling what the element is or was, when it does not exist in the variant.
[[noreturn]] UMLMM_API void raiseNotReadable(ModelElement const& aElement);

inline void checkReadable(ModelElement const& aElement, Kelm::Deviant const& aDeviant) {
  if (!aElement.existsIn(aDeviant)) [[unlikely]]
    raiseNotReadable(aElement);
}

/// The slot of a feature that the element's metaclass has and keeps there.
template <StoredFeature Feature, class T>
T const* pointerIn(ModelElement const& aElement) noexcept {
  return reinterpret_cast<T const* const*>(
      aElement.slots())[aElement.classTable()->fSlotOfFeature[Feature.fNumber]];
}
template <StoredFeature Feature>
std::uint32_t integerIn(ModelElement const& aElement) noexcept {
  return reinterpret_cast<std::uint32_t const*>(
      aElement.slots())[aElement.classTable()->fSlotOfFeature[Feature.fNumber]];
}
/// From the position of its slot on.
template <StoredFeature Feature>
std::uint32_t flagsIn(ModelElement const& aElement) noexcept {
  return aElement.flags() >> aElement.classTable()->fSlotOfFeature[Feature.fNumber];
}

/// The container if a feature of this number shows it, else null.
UMLMM_API ModelElement const* containerIn(ModelElement const& aElement, std::uint16_t aNumber) noexcept;

/// The one value of a reference that is kept in the element, or none.
template <StoredFeature Feature>
ModelElement const* targetIn(ModelElement const& aElement) noexcept {
  if constexpr (Feature.fIsOwner) return aElement.container();
  if constexpr (Feature.fStorage == Storage::Container) return containerIn(aElement, Feature.fNumber);
  return pointerIn<Feature, ModelElement>(aElement);
}

/// The value of a single reference that is none of these, or null.
UMLMM_API ModelElement const* computedIn(ModelElement const& aElement, Kelm::Deviant const& aDeviant,
                                         std::uint16_t aNumber);
/// The elements of a list that is derived.
UMLMM_API std::vector<ModelElement*> computedListIn(ModelElement const& aElement,
                                                    Kelm::Deviant const& aDeviant, std::uint16_t aNumber);

constexpr bool isKeptReference(StoredFeature aFeature) noexcept {
  return aFeature.fIsOwner || aFeature.fStorage == Storage::Container ||
         aFeature.fStorage == Storage::Reference;
}
constexpr bool isKeptValue(StoredFeature aFeature) noexcept { return aFeature.fStorage <= Storage::Integer; }

/// A Boolean, number or literal that is kept in the element; `T` may be optional.
template <StoredFeature Feature, class T>
T valueIn(ModelElement const& aElement) noexcept {
  constexpr bool kIsOptional = requires { typename T::value_type; };
  if constexpr (kIsOptional) {
    using Value = typename T::value_type;
    constexpr unsigned kPresence = Feature.fStorage == Storage::Flag ? 1 : kEnumerationBits;
    if constexpr (Feature.fStorage != Storage::Integer)
      if ((flagsIn<Feature>(aElement) >> kPresence & 1) == 0) return std::nullopt;
    return valueIn<Feature, Value>(aElement);
  } else if constexpr (Feature.fStorage == Storage::Flag) {
    return T((flagsIn<Feature>(aElement) & 1) != 0);
  } else if constexpr (Feature.fStorage == Storage::Enumeration) {
    return T(static_cast<int>(flagsIn<Feature>(aElement) & ((1U << kEnumerationBits) - 1)));
  } else {
    using Number = decltype(std::declval<T>().value());
    return T(static_cast<Number>(integerIn<Feature>(aElement)));
  }
}

/// Sets a text, or unsets it by null, with all the checks of a write through the accessor tables.
UMLMM_API void setText(ModelElement& aElement, Kelm::Deviant const& aDeviant, std::uint16_t aNumber,
                       Kelm::StringObject const* aText);

}  // namespace umlmm::detail
