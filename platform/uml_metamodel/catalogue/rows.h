#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <span>

#include "engine/Feature.h"
#include "engine/ids.h"

/// The rows of the catalogue as C++ reads them: what the tables say and nothing that follows from it. The
/// rows of a metaclass stand in a header of their own; derive.h works out the rest.
namespace umlmm::catalogue {

using engine::FeatureIndex;
using engine::kNoFeature;
using engine::ValueType;
namespace metaclass = ids::metaclass;
namespace enumeration = ids::enumeration;

/// The upper bound of a feature without one.
inline constexpr int kUnlimited = -1;

/// What an element's owner can be to it. A union with a role asks the container.
enum class Role : std::uint8_t { None, Owner, Namespace, Featuring, Redefining };

/// The type of a feature: a metaclass, an enumeration or a primitive type.
struct TypeRow {
  ValueType fKind = ValueType::Reference;
  std::uint16_t fIndex = 0;

  constexpr TypeRow(int aMetaclass) noexcept : fIndex(static_cast<std::uint16_t>(aMetaclass)) {}
  constexpr TypeRow(ids::EnumerationIndex aEnumeration) noexcept
      : fKind(ValueType::Enumeration), fIndex(static_cast<std::uint16_t>(aEnumeration)) {}
  constexpr TypeRow(ValueType aPrimitive) noexcept : fKind(aPrimitive) {}
};

/// Features or metaclasses that a row names: a handful.
class Few {
 public:
  constexpr Few() noexcept = default;
  constexpr Few(std::initializer_list<int> aIndices) {
    for (int const index : aIndices) add(index);
  }
  constexpr void add(int aIndex) { fItems.at(fCount++) = static_cast<std::uint16_t>(aIndex); }
  constexpr bool empty() const noexcept { return fCount == 0; }
  constexpr std::uint16_t front() const noexcept { return fItems.front(); }
  constexpr auto begin() const noexcept { return fItems.begin(); }
  constexpr auto end() const noexcept { return fItems.begin() + fCount; }

 private:
  std::array<std::uint16_t, 8> fItems{};
  std::uint8_t fCount = 0;
};

/// A row of features.txt; its id is its place among those of its metaclass. What is left out is as below.
struct FeatureRow {
  char const* fName;
  TypeRow fType;
  int fLower = 0;
  int fUpper = 1;
  bool fComposite = false;
  bool fOrdered = false;
  bool fUnique = true;
  bool fDerived = false;
  bool fUnion = false;
  bool fReadOnly = false;
  bool fContext =
      false;  ///< The owner is the redefinition context of the parts, although their end has no name.
  bool fNames = false;  ///< Failures call an element by this text.
  Role fRole = Role::None;
  char const* fDefault = "";
  FeatureIndex fOpposite = kNoFeature;
  Few fSubsets = {};
  Few fRedefines = {};
  FeatureIndex fForgets =
      kNoFeature;  ///< The computed feature whose default goes for good with a part of this one.
};

/// A feature that an extension declares for a metaclass.
struct AddedFeature {
  std::uint16_t fOwner;
  FeatureRow fRow;
};

/// A row of metaclasses.txt with those of its features.
struct MetaclassRow {
  char const* fName;
  bool fAbstract = false;
  Few fSupers = {};
  std::span<FeatureRow const> fFeatures = {};
};

}  // namespace umlmm::catalogue
