#pragma once

#include "kelm_mi/sequences/rows.h"
#include "uml_metamodel_mi/frame/ElementClassInfo.h"
#include "vesk/factory/BindingRegistry.h"

namespace Kelm::mi {

namespace detail {

/// Positions are compared; deviants take no part.
template <class I>
bool areEqual(I const& aLeft, I const& aRight) {
  return aLeft.get()->equal(aRight.get());
}
template <class I>
bool areUnequal(I const& aLeft, I const& aRight) {
  return !areEqual(aLeft, aRight);
}

/// The methods that both kinds of iterators have; `I` is the iterator handle, `Wrapper` the class with its
/// static operations. All but `clone` go straight to the iterator object, so it must be there.
template <class Wrapper, class I>
void addIteratorMethods(vesk::VeskClass* aClass) {
  constexpr SelfCheck check = SelfCheck::Implementation;
  char const* const self = ScriptClass<I>::name().c_str();
  char const* const element = ValueType<typename I::Value>::element();
  MethodRow const rows[] = {
      selfFirstRow("clone", self, {self}, &bindFunction<&Wrapper::clone>),
      memberRow("eq", "logical scalar", self, {self}, &bindFunction<&areEqual<I>, check>),
      memberRow("ne", "logical scalar", self, {self}, &bindFunction<&areUnequal<I>, check>),
      selfFirstRow("getNext", "void", {self}, &bindFunction<&Wrapper::getNext, check>),
      selfFirstRow("getPrev", "void", {self}, &bindFunction<&Wrapper::getPrev, check>),
      memberRow("item", element, self, {}, &bindMember<&I::current, I, check>),
  };
  addTypedMethods(aClass, rows);
}

}  // namespace detail

/// The class of iterators over sequences of values T that can be changed: "umlmm.StringIterator".
template <class T>
class IteratorWrapper final : public ClassMetaData {
 public:
  using ClassMetaData::ClassMetaData;

  /// A new iterator object at the same position; null for null.
  UMLMM_API static Iterator<T> clone(Iterator<T>* aIterator) { return *aIterator; }
  UMLMM_API static void getNext(Iterator<T>* aIterator) { aIterator->get()->next(aIterator->getDeviant()); }
  UMLMM_API static void getPrev(Iterator<T>* aIterator) {
    aIterator->get()->previous(aIterator->getDeviant());
  }

  void initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const*) override {
    vesk::factory::detail::initStringDataTypes();
    addSuperclass(aClass, ScriptClass<ImmutableIterator<T>>::name().c_str());
    detail::addIteratorMethods<IteratorWrapper, Iterator<T>>(aClass);
  }
  vesk::ClassFamily const* family() const override { return &FamilyOf<T>::get(); }
};

/// The class of iterators over read-only sequences of values T: "umlmm.StringImmutableIterator".
template <class T>
class ImmutableIteratorWrapper final : public ClassMetaData {
 public:
  using ClassMetaData::ClassMetaData;

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
    detail::addIteratorMethods<ImmutableIteratorWrapper, ImmutableIterator<T>>(aClass);
  }
  vesk::ClassFamily const* family() const override { return &FamilyOf<T>::get(); }
};

}  // namespace Kelm::mi
