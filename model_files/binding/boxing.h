#pragma once

#include <span>

#include "frame/Boxing.h"
#include "kelm/ClassObject.h"
#include "kelm/kernel/containers/sequence/SequenceCreator.h"
#include "vesk/factory/BindingRegistry.h"

namespace umlmm::files::mi {

/// Elements as a list of its own, in the order given.
class Elements {
 public:
  explicit Elements(std::span<Kelm::ClassObject const> aElements, Kelm::Deviant aDeviant)
      : fSequence(
            Kelm::SequenceCreator::create<Kelm::Object>({.aDeviant = aDeviant, .aImpl = Kelm::STD_VECTOR})) {
    for (Kelm::ClassObject const& element : aElements)
      fSequence.push_back(Kelm::Object(element.get(), element.getDeviant()));
  }
  Kelm::Sequence<Kelm::Object> const& sequence() const noexcept { return fSequence; }

 private:
  Kelm::Sequence<Kelm::Object> fSequence;
};

/// An element that may be missing.
struct FoundElement {
  Kelm::ClassObject fElement;
};

}  // namespace umlmm::files::mi

template <>
struct Kelm::mi::Boxer<umlmm::files::mi::Elements> {
  static vesk::VeskValue box(umlmm::files::mi::Elements const& aElements) {
    auto const& sequence = aElements.sequence();
    return announceObject(sequence.get(), sequence.getDeviant(), false,
                          vesk::internal::interned<"Kelm.ImmutableSequenceOfClassObject">());
  }
};

template <>
struct Kelm::mi::Boxer<umlmm::files::mi::FoundElement> {
  static vesk::VeskValue box(umlmm::files::mi::FoundElement const& aFound) {
    if (!aFound.fElement.isNull()) return Boxer<ClassObject>::box(aFound.fElement);
    return vesk::factory::basic::BindingRegistry::announce(static_cast<void*>(nullptr),
                                                           ScriptClass<ClassObject>::name());
  }
};
