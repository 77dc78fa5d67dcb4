#pragma once

#include <string>
#include <utility>

#include "platform/vesk/support/Arguments.h"
#include "uml_metamodel_mi/package.h"
#include "vesk/VeskClassInfo.h"
#include "vesk/host/Call.h"
#include "vesk/host/PackageRecord.h"

/// What a script does, in C++: classes by name, methods and properties by name, on the host alone.
namespace umlmm::testing {

using vesk::testing::Argument;
using vesk::testing::Empty;

inline vesk::host::ClassRecord& classNamed(std::string const& name) {
  SarnInitialize_uml_metamodel_mi();
  return vesk::host::classOf(vesk::internal::intern(name));
}

/// The result of an expression of a script: an instance that is held, a number, a text or nothing.
class Value {
 public:
  explicit Value(vesk::host::OwnedValue value) : fValue(std::move(value)) {}
  /// Takes over one reference.
  explicit Value(vesk::host::Instance* instance)
      : fValue(instance->classRecord(), vesk::VeskValue(instance->array())) {}

  vesk::host::Instance* instance() const { return vesk::host::Instance::fromArray(fValue.value().array()); }
  std::string className() const {
    auto const& cls = instance()->classRecord();
    return std::string(cls.package()->name().view()) + "." +
           const_cast<vesk::host::ClassRecord&>(cls).info().getName();
  }
  int number() const { return fValue.value().int32(); }
  bool isTrue() const { return fValue.value().logical(); }
  std::u16string text() const { return tarn::get_ustring(fValue.value().array()); }
  tarnArray const* array() const { return fValue.value().array(); }

  operator Argument() const { return instance(); }

  template <class... Arguments>
  Value call(char const* name, Arguments const&... arguments) const {
    return callOn(instance()->classRecord(), vesk::host::CallForm::OnInstance, instance(), name,
                  {Argument(arguments)...});
  }
  Value get(char const* name) const {
    auto const& property = *member(instance()->classRecord(), name).fProperty;
    vesk::VeskValue const value = property.fInfo->getValue(instance());
    return Value(vesk::host::OwnedValue(property.type(), value));
  }
  template <class T>
  void set(char const* name, T const& value) const {
    vesk::testing::Arguments arguments{Argument(value)};
    vesk::host::setProperty(*member(instance()->classRecord(), name).fProperty, *instance(), arguments, 0);
  }

  static Value callOn(vesk::host::ClassRecord& cls, vesk::host::CallForm form, vesk::host::Instance* receiver,
                      char const* name, std::initializer_list<Argument> given) {
    vesk::testing::Arguments arguments(given);
    int const count = arguments.size();
    auto const& method = vesk::host::resolveMethod(member(cls, name), form, arguments, count);
    return Value(vesk::host::callMethod(method, form, receiver, arguments, count));
  }

 private:
  static vesk::host::Member const& member(vesk::host::ClassRecord& cls, char const* name) {
    vesk::host::Member const* const found = cls.findMember(vesk::internal::intern(name));
    if (found == nullptr) throw std::runtime_error(std::string("there is no member ") + name);
    return *found;
  }

  vesk::host::OwnedValue fValue;
};

/// `Class(arguments...)`
template <class... Arguments>
Value make(std::string const& className, Arguments const&... given) {
  vesk::testing::Arguments arguments{Argument(given)...};
  return Value(vesk::host::newInstance(classNamed(className), arguments, arguments.size()));
}

/// `Class.method(arguments...)`
template <class... Arguments>
Value call(std::string const& className, char const* name, Arguments const&... given) {
  return Value::callOn(classNamed(className), vesk::host::CallForm::OnClass, nullptr, name,
                       {Argument(given)...});
}

}  // namespace umlmm::testing
