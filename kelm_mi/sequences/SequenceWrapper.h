#pragma once

#include "frame/ElementClassInfo.h"
#include "kelm/kernel/containers/sequence/SequenceCreator.h"
#include "kelm_mi/sequences/valueSequences.h"
#include "vesk/factory/BindingRegistry.h"

namespace Kelm::mi {

/// The class of sequences of values T that can be changed: "umlmm.SequenceOfString". Instances are bound to
/// free-standing sequences, which scripts make here, and to the live ones of features. The functions raise
/// what Kelm::Generic::SequenceIntf tells, by indices that scripts count from 1.
template <class T>
class SequenceWrapper final : public ClassMetaData {
 public:
  using ClassMetaData::ClassMetaData;

  // As a policy of its methods.
  using Value = T;
  using Marshal = TypedMarshal;
  static constexpr std::uint32_t kOverriding = 0;
  static constexpr Bind kRemoveAll = &bindMember<&Sequence<T>::removeAll, Sequence<T>>;

  UMLMM_API static T at(Sequence<T>* aSequence, int aIndex) { return aSequence->at(kernelIndex(aIndex)); }
  UMLMM_API static void erase(Sequence<T>* aSequence, int aIndex) { aSequence->erase(kernelIndex(aIndex)); }
  UMLMM_API static void insert(Sequence<T>* aSequence, int aIndex, T const& aValue) {
    aSequence->insert(kernelIndex(aIndex), aValue);
  }
  UMLMM_API static void replace(Sequence<T>* aSequence, int aIndex, T const& aValue) {
    aSequence->replace(kernelIndex(aIndex), aValue);
  }
  /// New, empty and counted by the host's instance. They belong to no model: they take the deviant of the
  /// given one alone, which may be null, and outlive it.
  UMLMM_API static Sequence<T> makeWithModel(Model const& aModel) { return make(aModel.getDeviant(), false); }
  UMLMM_API static Sequence<T> makeWithImmutableModel(ImmutableModel const& aModel) {
    return make(aModel.getDeviant(), false);
  }
  UMLMM_API static Sequence<T> makeUniqueWithModel(Model const& aModel) {
    return make(aModel.getDeviant(), true);
  }
  UMLMM_API static Sequence<T> makeUniqueWithImmutableModel(ImmutableModel const& aModel) {
    return make(aModel.getDeviant(), true);
  }

  void initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const*) override;
  vesk::SequenceHook const* getSequenceHook() const override { return valueSequenceHook<T>(); }
  vesk::ClassFamily const* family() const override { return &FamilyOf<T>::get(); }

 private:
  static Sequence<T> make(Deviant const& aDeviant, bool aIsUnique) {
    return SequenceCreator::create<T>({aDeviant, MULTI_INDEX, aIsUnique, true});
  }
};

template <class T>
void SequenceWrapper<T>::initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const*) {
  vesk::factory::detail::initStringDataTypes();
  addSuperclass(aClass, ScriptClass<ImmutableSequence<T>>::name().c_str());
  addTypedMethods(aClass,
                  changingMethods<SequenceWrapper>(valueContainerNames<Sequence<T>, T, Iterator<T>>()));
}

}  // namespace Kelm::mi
