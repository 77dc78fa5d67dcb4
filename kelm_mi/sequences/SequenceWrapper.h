#pragma once

#include "kelm/kernel/containers/sequence/SequenceCreator.h"
#include "kelm_mi/sequences/rows.h"
#include "uml_metamodel_mi/frame/ElementClassInfo.h"
#include "vesk/factory/BindingRegistry.h"

namespace Kelm::mi {

/// The class of sequences of values T that can be changed: "umlmm.SequenceOfString". Scripts count indices
/// from 1.
template <class T>
class SequenceWrapper final : public ClassMetaData {
 public:
  using ClassMetaData::ClassMetaData;

  UMLMM_API static T at(Sequence<T>* aSequence, int aIndex) { return aSequence->at(kernelIndex(aIndex)); }
  UMLMM_API static void erase(Sequence<T>* aSequence, int aIndex) { aSequence->erase(kernelIndex(aIndex)); }
  UMLMM_API static void insert(Sequence<T>* aSequence, int aIndex, T const& aValue) {
    aSequence->insert(kernelIndex(aIndex), aValue);
  }
  UMLMM_API static void replace(Sequence<T>* aSequence, int aIndex, T const& aValue) {
    aSequence->replace(kernelIndex(aIndex), aValue);
  }
  /// New sequences belong to no model: they take the deviant of the given one alone, which may be null.
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
  vesk::SequenceHook const* getSequenceHook() const override { return ValueSequenceHook<T>::instance(); }
  vesk::ClassFamily const* family() const override { return &FamilyOf<T>::get(); }

 private:
  static Sequence<T> make(Deviant const& aDeviant, bool aIsUnique) {
    return SequenceCreator::create<T>({aDeviant, MULTI_INDEX, aIsUnique, true});
  }
};

template <class T>
void SequenceWrapper<T>::initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const*) {
  using S = Sequence<T>;
  using I = Iterator<T>;
  char const* const self = ScriptClass<S>::name().c_str();
  char const* const iterator = ScriptClass<I>::name().c_str();
  char const* const element = ValueType<T>::element();
  constexpr auto insertAt = static_cast<I (S::*)(I const&, T const&) const>(&S::insert);
  constexpr auto eraseAt = static_cast<I (S::*)(I const&) const>(&S::erase);
  constexpr auto eraseRange = static_cast<I (S::*)(I const&, I const&) const>(&S::erase);

  vesk::factory::detail::initStringDataTypes();
  addSuperclass(aClass, ScriptClass<ImmutableSequence<T>>::name().c_str());
  MethodRow const rows[] = {
      memberRow("append", "void", self, {element}, &bindMember<&S::push_back, S>),
      memberRow("clear", "void", self, {}, &bindMember<&S::clear, S>),
      memberRow("pop_back", "void", self, {}, &bindMember<&S::pop_back, S>),
      memberRow("pop_front", "void", self, {}, &bindMember<&S::pop_front, S>),
      memberRow("push_back", "void", self, {element}, &bindMember<&S::push_back, S>),
      memberRow("push_front", "void", self, {element}, &bindMember<&S::push_front, S>),
      memberRow("removeAll", "int32 scalar", self, {element}, &bindMember<&S::removeAll, S>),
      memberRow("begin", iterator, self, {}, &bindMember<&S::begin, S>),
      memberRow("end", iterator, self, {}, &bindMember<&S::end, S>),
      memberRow("erase", iterator, self, {iterator}, &bindMember<eraseAt, S>),
      memberRow("erase", iterator, self, {iterator, iterator}, &bindMember<eraseRange, S>),
      selfFirstRow("erase", "void", {self, "int32 scalar"}, &bindFunction<&SequenceWrapper::erase>),
      memberRow("insert", iterator, self, {iterator, element}, &bindMember<insertAt, S>),
      selfFirstRow("insert", "void", {self, "int32 scalar", element},
                   &bindFunction<&SequenceWrapper::insert>),
      selfFirstRow("replace", "void", {self, "int32 scalar", element},
                   &bindFunction<&SequenceWrapper::replace>),
      memberRow("back", element, self, {}, &bindMember<&S::back, S>),
      memberRow("isEmpty", "logical scalar", self, {}, &bindMember<&S::empty, S>),
      memberRow("front", element, self, {}, &bindMember<&S::front, S>),
      memberRow("size", "int32 scalar", self, {}, &bindMember<&S::size, S>),
      selfFirstRow("at", element, {self, "int32 scalar"}, &bindFunction<&SequenceWrapper::at>),
      staticRow("make", self, "Kelm.ImmutableModel", &bindFunction<&SequenceWrapper::makeWithImmutableModel>),
      staticRow("make", self, "Kelm.Model", &bindFunction<&SequenceWrapper::makeWithModel>),
      staticRow("makeUnique", self, "Kelm.ImmutableModel",
                &bindFunction<&SequenceWrapper::makeUniqueWithImmutableModel>),
      staticRow("makeUnique", self, "Kelm.Model", &bindFunction<&SequenceWrapper::makeUniqueWithModel>),
  };
  addTypedMethods(aClass, rows);
}

}  // namespace Kelm::mi
