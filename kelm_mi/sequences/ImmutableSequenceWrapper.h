#pragma once

#include "kelm_mi/sequences/rows.h"
#include "uml_metamodel_mi/frame/ElementClassInfo.h"
#include "vesk/factory/BindingRegistry.h"

namespace Kelm::mi {

/// The read-only face of sequences of values T: "umlmm.ImmutableSequenceOfString". It has no method that
/// writes.
template <class T>
class ImmutableSequenceWrapper final : public ClassMetaData {
 public:
  using ClassMetaData::ClassMetaData;

  /// Scripts count indices from 1.
  UMLMM_API static T at(ImmutableSequence<T>* aSequence, int aIndex) {
    return aSequence->at(kernelIndex(aIndex));
  }

  void initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const*) override;
  vesk::SequenceHook const* getSequenceHook() const override { return ValueSequenceHook<T>::instance(); }
  vesk::ClassFamily const* family() const override { return &FamilyOf<T>::get(); }
};

template <class T>
void ImmutableSequenceWrapper<T>::initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const*) {
  using S = ImmutableSequence<T>;
  char const* const self = ScriptClass<S>::name().c_str();
  char const* const iterator = ScriptClass<ImmutableIterator<T>>::name().c_str();
  char const* const element = ValueType<T>::element();

  vesk::factory::detail::initStringDataTypes();
  MethodRow const rows[] = {
      memberRow("begin", iterator, self, {}, &bindMember<&S::begin, S>),
      memberRow("end", iterator, self, {}, &bindMember<&S::end, S>),
      memberRow("back", element, self, {}, &bindMember<&S::back, S>),
      memberRow("isEmpty", "logical scalar", self, {}, &bindMember<&S::empty, S>),
      memberRow("front", element, self, {}, &bindMember<&S::front, S>),
      memberRow("size", "int32 scalar", self, {}, &bindMember<&S::size, S>),
      selfFirstRow("at", element, {self, "int32 scalar"}, &bindFunction<&ImmutableSequenceWrapper::at>),
  };
  addTypedMethods(aClass, rows);
}

}  // namespace Kelm::mi
