#pragma once

#include <cstdint>
#include <initializer_list>

#include "uml_metamodel_mi/datatypes/values.h"
#include "uml_metamodel_mi/frame/addTypedMethod.h"
#include "vesk/VeskClassInfo.h"

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

/// Lets the host walk a sequence of values in blocks.
class ValueSequenceHook : public vesk::SequenceHook {
 public:
  std::size_t size(vesk::VeskInterface* aSequence) const override;
  std::size_t readBlock(vesk::VeskInterface* aSequence, std::size_t aFirst, std::size_t aCount,
                        vesk::VeskValue* aValues) const override;

 protected:
  /// Boxes one value of the sequence.
  virtual vesk::VeskValue box(Generic::Ref const& aValue) const = 0;
};

template <class T>
class ValueSequenceHookOf final : public ValueSequenceHook {
 public:
  char const* elementType() const override { return ValueType<T>::element(); }
  static ValueSequenceHookOf const* instance() {
    static ValueSequenceHookOf const hook;
    return &hook;
  }

 protected:
  vesk::VeskValue box(Generic::Ref const& aValue) const override {
    return Boxer<T>::box(Generic::RefAccess<T>::get(aValue));
  }
};

}  // namespace Kelm::mi
