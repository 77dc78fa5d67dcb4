#pragma once

#include "frame/ElementClassInfo.h"
#include "kelm_mi/sequences/valueSequences.h"
#include "vesk/factory/BindingRegistry.h"

namespace Kelm::mi {

/// The class of iterators over sequences of values T that can be changed: "umlmm.StringIterator". An instance
/// has a position of its own and keeps the sequence alive; what moves it, and what ends it, stands with
/// Kelm::Generic::IteratorIntf.
template <class T>
class IteratorWrapper final : public ClassMetaData {
 public:
  using ClassMetaData::ClassMetaData;

  // As a policy of its methods.
  using Marshal = TypedMarshal;
  using Position = Iterator<T>;

  /// A new iterator object at the same position; null for null.
  UMLMM_API static Iterator<T> clone(Iterator<T>* aIterator) { return *aIterator; }
  UMLMM_API static void getNext(Iterator<T>* aIterator) { aIterator->get()->next(aIterator->getDeviant()); }
  UMLMM_API static void getPrev(Iterator<T>* aIterator) {
    aIterator->get()->previous(aIterator->getDeviant());
  }

  void initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const*) override {
    vesk::factory::detail::initStringDataTypes();
    addSuperclass(aClass, ScriptClass<ImmutableIterator<T>>::name().c_str());
    addTypedMethods(aClass, iteratorMethods<IteratorWrapper>(valueContainerNames<Iterator<T>, T>()));
  }
  vesk::ClassFamily const* family() const override { return &FamilyOf<T>::get(); }
};

/// The class of iterators over read-only sequences of values T: "umlmm.StringImmutableIterator". The other
/// one is one of these.
template <class T>
class ImmutableIteratorWrapper final : public ClassMetaData {
 public:
  using ClassMetaData::ClassMetaData;

  // As a policy of its methods.
  using Marshal = TypedMarshal;
  using Position = ImmutableIterator<T>;

  /// A new iterator object at the same position; null for null.
  UMLMM_API static ImmutableIterator<T> clone(ImmutableIterator<T>* aIterator) { return *aIterator; }
  UMLMM_API static void getNext(ImmutableIterator<T>* aIterator) {
    aIterator->get()->next(aIterator->getDeviant());
  }
  UMLMM_API static void getPrev(ImmutableIterator<T>* aIterator) {
    aIterator->get()->previous(aIterator->getDeviant());
  }

  void initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const*) override {
    vesk::factory::detail::initStringDataTypes();
    addTypedMethods(
        aClass, iteratorMethods<ImmutableIteratorWrapper>(valueContainerNames<ImmutableIterator<T>, T>()));
  }
  vesk::ClassFamily const* family() const override { return &FamilyOf<T>::get(); }
};

}  // namespace Kelm::mi
