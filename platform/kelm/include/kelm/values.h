#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <typeinfo>

#include "kelm/Object.h"
#include "kelm/String.h"
#include "kelm/meta.h"

/// How values of data types travel as objects without allocation: Boolean, Integer and UnlimitedNatural are
/// one immortal object each with the value in the deviant word; an enumeration literal is one immortal
/// object; a string is its counted record.
namespace Kelm {

enum class PrimitiveKind : std::uint8_t { Boolean, Integer, UnlimitedNatural };

/// By kind, the immortal object of its values.
UMLMM_API extern NSInterface::ObjectIntf const* const primitiveObjects[3];
inline NSInterface::ObjectIntf const* primitiveObject(PrimitiveKind aKind) noexcept {
  return primitiveObjects[static_cast<std::size_t>(aKind)];
}
inline Object makePrimitive(PrimitiveKind aKind, std::uint32_t aBits) {
  return Object(primitiveObject(aKind), Deviant::ofValue(aBits));
}
inline bool isPrimitive(ImmutableObject const& aObject, PrimitiveKind aKind) noexcept {
  return aObject.get() == primitiveObject(aKind);
}

/// The record of `aObject` if it is a string, else null. Not counted for the caller.
inline StringObject const* asString(ImmutableObject const& aObject) noexcept {
  NSInterface::ObjectIntf const* const object = aObject.get();
  if (object == nullptr || typeid(*object) != typeid(StringObject)) return nullptr;
  return static_cast<StringObject const*>(object);
}

class EnumerationLiteralObject;

/// What one enumeration is: names and immortal literal objects, numbered from 0. Any thread may ask.
class UMLMM_API EnumerationType {
 public:
  /// Both texts and the table must live as long as the process; "AggregationKind", "umlmm.AggregationKind".
  EnumerationType(char const* aName, char const* aVeskName, std::span<std::string_view const> aLiterals);

  char const* name() const noexcept { return fName; }
  char const* veskName() const noexcept { return fVeskName; }
  std::span<std::string_view const> literals() const noexcept { return fLiterals; }
  /// The one object of a number; a number without a literal has an immortal object of its own too.
  EnumerationLiteralObject const* object(int aNumber) const;
  /// The number of a literal's name, also with a lower-case first letter; raises the incorrect-type failure
  /// for anything else, digits included.
  int parse(std::string_view aText) const;
  /// The literal as spelled, or the digits of a number without a literal.
  std::string text(int aNumber) const;
  /// Set by the metamodel: the data type that `getMetaType` of the literals answers.
  NSInterface::DataTypeIntf const* fMetaType = nullptr;

 private:
  char const* fName;
  char const* fVeskName;
  std::span<std::string_view const> fLiterals;
  mutable EnumerationLiteralObject* fObjects;
};

class UMLMM_API EnumerationLiteralObject final : public NSInterface::ObjectIntf {
 public:
  EnumerationLiteralObject(EnumerationType const& aType, int aNumber) noexcept
      : fType(&aType), fNumber(aNumber) {}
  ~EnumerationLiteralObject() override;

  int incRef() const override { return 1; }
  int decRef() const override { return 1; }
  int numRef() const override { return 1; }
  char const* getVeskName(bool) const override { return fType->veskName(); }
  bool deviant_isValid(Deviant) const override { return true; }
  ImmutableType getMetaType(Deviant const& aDeviant) const override;
  void* cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const override;

  EnumerationType const& type() const noexcept { return *fType; }
  int number() const noexcept { return fNumber; }
  EnumerationLiteralObject const* fNext = nullptr;

 private:
  EnumerationType const* fType;
  int fNumber;
};

/// The number of `aObject` as a literal of `aType`; raises the incorrect-type failure for anything else, null
/// included. It may be a number without a literal.
UMLMM_API int literalNumber(ImmutableObject const& aObject, EnumerationType const& aType);

}  // namespace Kelm
