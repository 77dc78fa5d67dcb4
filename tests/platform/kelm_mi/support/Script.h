#pragma once

#include <string>

#include "kelm/DeviantRegistry.h"
#include "platform/vesk/support/Arguments.h"
#include "uml_metamodel_mi/frame/Boxing.h"
#include "vesk/host/ClassRecord.h"
#include "vesk/host/Instance.h"

/// What a script does, in C++: calls, reads and writes through the host.
namespace kelm_mi_test {

using vesk::VeskValue;
using vesk::host::CallForm;
using vesk::host::Instance;
using vesk::host::OwnedValue;
using vesk::testing::Arguments;
using vesk::testing::Empty;

/// Holds the value of a call or a property with its type.
class Value {
 public:
  explicit Value(OwnedValue aValue) : fValue(std::move(aValue)) {}

  /// Null for an absent object.
  Instance* object() const { return Instance::fromArray(fValue.value().array()); }
  std::string className() const { return object() == nullptr ? "" : object()->classRecord().fName.c_str(); }
  Kelm::ReferenceCountingIntf* native() const {
    return object() == nullptr ? nullptr : Kelm::DeviantRegistry::getVariantInfo(object()->nativeId()).first;
  }
  bool isImmutable() const { return Kelm::DeviantRegistry::isImmutable(object()->nativeId()); }
  bool isEmpty() const { return tarn::numberOfElements(fValue.value().array()) == 0; }
  bool logical() const { return fValue.value().logical(); }
  int int32() const { return fValue.value().int32(); }
  std::uintptr_t word() const { return fValue.value().word(); }
  std::string text() const { return Kelm::String(tarn::get_ustring(fValue.value().array())).to_string(); }
  tarnArray* array() const { return fValue.value().array(); }

 private:
  OwnedValue fValue;
};

inline vesk::host::ClassRecord& classNamed(char const* aName) {
  return vesk::host::classOf(vesk::internal::intern(aName));
}

inline vesk::host::Member const& member(vesk::host::ClassRecord& aClass, char const* aName) {
  auto const* const found = aClass.findMember(vesk::internal::intern(aName));
  if (found == nullptr) throw vesk::VeskError(std::string("no member ") + aName);
  return *found;
}

inline Value call(Instance* aReceiver, char const* aName, Arguments aArguments = {}) {
  int const count = aArguments.size();
  auto const& method = vesk::host::resolveMethod(member(aReceiver->classRecord(), aName),
                                                 CallForm::OnInstance, aArguments, count);
  return Value(vesk::host::callMethod(method, CallForm::OnInstance, aReceiver, aArguments, count));
}
inline Value call(Value const& aReceiver, char const* aName, Arguments aArguments = {}) {
  return call(aReceiver.object(), aName, std::move(aArguments));
}
inline Value callOn(char const* aClass, char const* aName, Arguments aArguments = {}) {
  int const count = aArguments.size();
  auto const& method =
      vesk::host::resolveMethod(member(classNamed(aClass), aName), CallForm::OnClass, aArguments, count);
  return Value(vesk::host::callMethod(method, CallForm::OnClass, nullptr, aArguments, count));
}

inline Value get(Value const& aInstance, char const* aName) {
  auto const& property = *member(aInstance.object()->classRecord(), aName).fProperty;
  return Value(OwnedValue(property.type(), property.fInfo->getValue(aInstance.object())));
}
inline void set(Value const& aInstance, char const* aName, VeskValue aValue) {
  member(aInstance.object()->classRecord(), aName).fProperty->fInfo->setValue(aInstance.object(), aValue);
}
inline void set(Value const& aInstance, char const* aName, Value const& aValue) {
  set(aInstance, aName, aValue.array());
}
inline void setEmpty(Value const& aInstance, char const* aName) {
  auto const& property = *member(aInstance.object()->classRecord(), aName).fProperty;
  OwnedValue const empty(property.type(), vesk::host::makeEmpty(property.type()));
  set(aInstance, aName, empty.value());
}

/// The host object of a reference.
inline Value show(Kelm::ImmutableObject const& aObject, bool aImmutable) {
  auto const name = vesk::internal::intern(aObject.get()->getVeskName(aImmutable));
  return Value(
      OwnedValue(vesk::host::classOf(name), Kelm::mi::ReferenceBoxer::box(aObject, aImmutable, name)));
}

}  // namespace kelm_mi_test
