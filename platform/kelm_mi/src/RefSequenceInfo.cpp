#include <string>
#include <utility>

#include "RefClass.h"
#include "RefHook.h"
#include "RefMethod.h"
#include "frame/ElementClassInfo.h"
#include "frame/sequenceMethods.h"
#include "kelm/Model.h"
#include "kelm/kernel/containers/sequence/SequenceCreator.h"
#include "kelm_mi/refClassInfos.h"
#include "textClassInfos.h"

namespace Kelm::mi {

namespace {

constexpr char kSource[] = "kelm_mi/sequences/RefSequence";

/// The list of a feature holds an element once. Raises when the element stands in it already, but outside of
/// the indices from `aFirst` to `aLast`: that it stays there would go unnoticed.
void checkStands(Sequence<Object> const& aValues, int aFirst, int aLast, Object const& aElement) {
  if (aValues.isNull() || !aValues.get()->isLive()) return;
  int const found =
      aValues.get()->indexOf(aValues.getDeviant(), Generic::RefAccess<Object>::make(aElement), 0);
  if (found < 0 || (found >= aFirst && found <= aLast)) return;
  raiseFailure(("The element stands at " + std::to_string(found + 1) +
                " of the list, which holds each once. move(from, to), swap(i, j) and an assignment of the "
                "whole order, list[:] = order, give it another place; they count from 0")
                   .c_str(),
               kSource);
}

/// What the methods of sequences of objects differ in from those of values.
struct RefSequences {
  using Value = Object;
  using Marshal = RefMarshal;
  // A sequence class inherits from the sequences of more general elements. What takes or gives an element or
  // a position stands for all inherited methods of its name, so that nothing of a more general type gets in.
  static constexpr std::uint32_t kOverriding = vesk::factory::MethodOverridesAllSignatures;

  static int removeAll(Sequence<Object> const& aValues, SoughtObject const& aSought) {
    return aValues.removeAll(aSought.fObject);
  }
  static constexpr Bind kRemoveAll = &bindFunction<&removeAll, SelfCheck::Reference, RefMarshal>;

  static Object at(ImmutableSequence<Object>* aValues, int aIndex) {
    return aValues->at(kernelIndex(aIndex));
  }
  static void erase(Sequence<Object>* aValues, int aIndex) { aValues->erase(kernelIndex(aIndex)); }
  static void insert(Sequence<Object>* aValues, int aIndex, Object const& aValue) {
    int const index = kernelIndex(aIndex);
    if (index >= 0 && index <= aValues->size()) checkStands(*aValues, index - 1, index, aValue);
    aValues->insert(index, aValue);
  }
  static void replace(Sequence<Object>* aValues, int aIndex, Object const& aValue) {
    int const index = kernelIndex(aIndex);
    if (index >= 0 && index < aValues->size()) checkStands(*aValues, index, index, aValue);
    aValues->replace(index, aValue);
  }

  /// New sequences belong to no model: they take the deviant of the given one alone, which may be null.
  static Sequence<Object> makeWithModel(Model const& aModel) { return make(aModel.getDeviant(), false); }
  static Sequence<Object> makeWithImmutableModel(ImmutableModel const& aModel) {
    return make(aModel.getDeviant(), false);
  }
  static Sequence<Object> makeUniqueWithModel(Model const& aModel) { return make(aModel.getDeviant(), true); }
  static Sequence<Object> makeUniqueWithImmutableModel(ImmutableModel const& aModel) {
    return make(aModel.getDeviant(), true);
  }

 private:
  static Sequence<Object> make(Deviant const& aDeviant, bool aIsUnique) {
    return SequenceCreator::create<Object>({aDeviant, MULTI_INDEX, aIsUnique, true});
  }
};

/// One class of sequences of object references.
class RefSequenceInfo final : public ClassMetaData {
 public:
  RefSequenceInfo(char const* aShortName, char const* aDescription, RefClass aClass)
      : ClassMetaData(aShortName, aDescription), fClass(std::move(aClass)), fHook(RefElements(fClass)) {}

  void initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const*) override {
    vesk::factory::detail::initStringDataTypes();
    addSuperclasses(aClass);
    withMethods([&](std::span<MethodRow const> aRows) { addRefMethods(aClass, aRows, fClass); });
  }
  bool visitMemberNames(std::function<void(char const*)> const& aVisit) const override {
    withMethods([&](std::span<MethodRow const> aRows) {
      for (MethodRow const& row : aRows) aVisit(row.fName);
    });
    return true;
  }
  vesk::SequenceHook const* getSequenceHook() const override { return &fHook; }
  vesk::ClassFamily const* family() const override { return &fClass.fFamily; }

 private:
  template <class Use>
  void withMethods(Use aUse) const {
    ContainerNames const names{fClass.fName.c_str(), fClass.fElement.c_str(), fClass.fIterator.c_str()};
    if (fClass.fAccess == Access::ReadOnly)
      aUse(readingMethods<RefSequences>(names));
    else
      aUse(changingMethods<RefSequences>(names));
  }
  /// The read-only form of what can be changed, sequence before elements, then the same form of the sequences
  /// of the element's superclasses.
  void addSuperclasses(vesk::VeskClass* aClass) const {
    Access const elements = fClass.elementAccess();
    if (fClass.fAccess == Access::Changeable)
      addSuperclass(aClass, fClass.fFamily.sequence(Access::ReadOnly, elements).c_str());
    else if (fClass.fElements == Elements::Changeable)
      addSuperclass(aClass, fClass.fFamily.sequence(Access::ReadOnly, Access::ReadOnly).c_str());
    for (vesk::ClassFamily const* const base : fClass.fBases)
      addSuperclass(aClass, base->sequence(fClass.fAccess, elements).c_str());
  }

  RefClass const fClass;
  RefHook const fHook;
};

vesk::VeskClassInfo* createSequence(Access aAccess, Elements aElements, char const* aShortName,
                                    char const* aDescription, char const* aClassName,
                                    char const* aElementClass, char const* aIteratorClass,
                                    std::vector<std::string> const& aBases) {
  return new RefSequenceInfo(
      aShortName, aDescription,
      makeRefClass(aAccess, aElements, aClassName, aElementClass, aIteratorClass, aBases));
}

}  // namespace

vesk::VeskClassInfo* createSequenceOfRefClassInfo(char const* aShortName, char const* aDescription,
                                                  char const* aClassName, char const* aElementClass,
                                                  char const* aIteratorClass,
                                                  std::vector<std::string> const& aBases) {
  return createSequence(Access::Changeable, Elements::Changeable, aShortName, aDescription, aClassName,
                        aElementClass, aIteratorClass, aBases);
}

vesk::VeskClassInfo* createSequenceOfImmutableRefClassInfo(char const* aShortName, char const* aDescription,
                                                           char const* aClassName, char const* aElementClass,
                                                           char const* aIteratorClass,
                                                           std::vector<std::string> const& aBases) {
  return createSequence(Access::Changeable, Elements::ReadOnly, aShortName, aDescription, aClassName,
                        aElementClass, aIteratorClass, aBases);
}

vesk::VeskClassInfo* createImmutableSequenceOfRefClassInfo(char const* aShortName, char const* aDescription,
                                                           char const* aClassName, char const* aElementClass,
                                                           char const* aIteratorClass,
                                                           std::vector<std::string> const& aBases) {
  return createSequence(Access::ReadOnly, Elements::Changeable, aShortName, aDescription, aClassName,
                        aElementClass, aIteratorClass, aBases);
}

vesk::VeskClassInfo* createImmutableSequenceOfImmutableRefClassInfo(
    char const* aShortName, char const* aDescription, char const* aClassName, char const* aElementClass,
    char const* aIteratorClass, std::vector<std::string> const& aBases) {
  return createSequence(Access::ReadOnly, Elements::ReadOnly, aShortName, aDescription, aClassName,
                        aElementClass, aIteratorClass, aBases);
}

vesk::VeskClassInfo* createTextSequenceClassInfo(vesk::ClassFamily const& aFamily, char const* aDescription) {
  vesk::VeskInterned const name = aFamily.sequence(Access::ReadOnly, Access::Changeable);
  return new RefSequenceInfo(aFamily.shortName(name), aDescription, makeTextClass(aFamily, name));
}

}  // namespace Kelm::mi
