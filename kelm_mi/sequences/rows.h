#pragma once

#include <array>
#include <cstddef>
#include <type_traits>

#include "kelm/Asserter.h"
#include "kelm/kernel/containers/Ref.h"
#include "uml_metamodel_mi/datatypes/values.h"
#include "uml_metamodel_mi/frame/KernelSequenceHook.h"
#include "uml_metamodel_mi/frame/addTypedMethod.h"

/// What the classes of value sequences and iterators share.
namespace Kelm::mi {

/// A row of their method tables: no argument names, the first type is the receiver's.
inline MethodRow memberRow(char const* aName, char const* aResult, char const* aReceiver,
                           std::array<char const*, SignatureTexts::kMostArguments> aArguments, Bind aBind) {
  return {aName, 0, Form::MemberFunction, {"", aResult, aReceiver, aArguments}, aBind};
}
/// A function that takes the receiver as an ordinary first argument.
inline MethodRow selfFirstRow(char const* aName, char const* aResult,
                              std::array<char const*, SignatureTexts::kMostArguments> aArguments,
                              Bind aBind) {
  return {aName,
          vesk::factory::MethodFirstArgumentIsSelf,
          Form::FreeFunction,
          {"", aResult, nullptr, aArguments},
          aBind};
}
inline MethodRow staticRow(char const* aName, char const* aResult, char const* aArgument, Bind aBind) {
  return {aName, 0, Form::FreeFunction, {"", aResult, nullptr, {aArgument}}, aBind};
}

/// Lets the host walk and search a sequence of values.
template <class T>
class ValueSequenceHook final : public KernelSequenceHook {
 public:
  char const* elementType() const override { return ValueType<T>::element(); }
  static ValueSequenceHook const* instance() {
    static ValueSequenceHook const hook;
    return &hook;
  }

 protected:
  void box(Generic::Loan const* aLoans, std::size_t aCount, vesk::VeskValue* aValues) const override {
    if constexpr (std::is_trivially_copyable_v<T>) {
      // Boxing the first literal of an enumeration may fill its class, which can run anything.
      std::array<T, kBlock> copies;
      for (std::size_t i = 0; i < aCount; ++i) copies[i] = Generic::RefAccess<T>::get(aLoans[i]);
      boxEach(aCount, aValues, [&](std::size_t aAt) { return Boxer<T>::box(copies[aAt]); });
    } else {
      boxEach(aCount, aValues,
              [&](std::size_t aAt) { return Boxer<T>::box(Generic::RefAccess<T>::get(aLoans[aAt])); });
    }
  }
  int search(Generic::SequenceIntf const& aSequence, Deviant const& aDeviant, vesk::VeskValue aValue,
             int aFirst) const override {
    Generic::Ref wanted;
    try {
      wanted = Generic::RefAccess<T>::make(ArgumentUnboxer<T>::unbox(aValue).fValue);
    } catch (Exception const&) {
      return -1;  // such as a text that is no number: no sequence holds it
    }
    return aSequence.indexOf(aDeviant, wanted, aFirst);
  }
  Generic::Ref element(vesk::VeskValue aValue) const override {
    return Generic::RefAccess<T>::make(ArgumentUnboxer<T>::unbox(aValue).fValue);
  }
};

}  // namespace Kelm::mi
