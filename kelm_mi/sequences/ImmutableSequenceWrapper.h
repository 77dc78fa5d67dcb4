#pragma once

#include "frame/ElementClassInfo.h"
#include "kelm_mi/sequences/valueSequences.h"
#include "vesk/factory/BindingRegistry.h"

namespace Kelm::mi {

/// The read-only face of sequences of values T: "umlmm.ImmutableSequenceOfString". It has no method that
/// writes; what it shows may change all the same, by those who have the other face or, where it is a
/// feature's, by changes of the element.
template <class T>
class ImmutableSequenceWrapper final : public ClassMetaData {
 public:
  using ClassMetaData::ClassMetaData;

  // As a policy of its methods.
  using Value = T;
  using Marshal = TypedMarshal;
  static constexpr std::uint32_t kOverriding = 0;

  /// Scripts count indices from 1.
  UMLMM_API static T at(ImmutableSequence<T>* aSequence, int aIndex) {
    return aSequence->at(kernelIndex(aIndex));
  }

  void initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const*) override;
  vesk::SequenceHook const* getSequenceHook() const override { return valueSequenceHook<T>(); }
  vesk::ClassFamily const* family() const override { return &FamilyOf<T>::get(); }
};

template <class T>
void ImmutableSequenceWrapper<T>::initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const*) {
  vesk::factory::detail::initStringDataTypes();
  addTypedMethods(aClass, readingMethods<ImmutableSequenceWrapper>(
                              valueContainerNames<ImmutableSequence<T>, T, ImmutableIterator<T>>()));
}

}  // namespace Kelm::mi
