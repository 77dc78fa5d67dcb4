#include <array>
#include <span>
#include <string>
#include <utility>

#include "RefClass.h"
#include "RefHook.h"
#include "RefMethod.h"
#include "kelm/DeviantRegistry.h"
#include "kelm/Model.h"
#include "kelm/kernel/containers/sequence/SequenceCreator.h"
#include "kelm_mi/refClassInfos.h"
#include "textClassInfos.h"
#include "uml_metamodel_mi/frame/Boxing.h"
#include "uml_metamodel_mi/frame/ElementClassInfo.h"
#include "uml_metamodel_mi/frame/Unboxing.h"
#include "uml_metamodel_mi/frame/addTypedMethod.h"
#include "vesk/host/Instance.h"

namespace Kelm::mi {

namespace {

using vesk::VeskInterned;
using vesk::VeskValue;

constexpr char kSource[] = "kelm_mi/sequences/RefSequence";

using Values = Sequence<Object>;
using Position = Iterator<Object>;

Values self(RefCall const& aCall) {
  UnboxedInterface const found = unboxInterface(aCall.fArguments[0].array(), aCall.fClass.fName,
                                                tagPair<Generic::SequenceIntf, VisitationDomain>());
  return {static_cast<Generic::SequenceIntf*>(found.fInterface), found.fDeviant};
}

Position position(RefCall const& aCall, int aArgument) {
  UnboxedInterface const found =
      unboxInterface(aCall.fArguments[aArgument].array(), ScriptClass<Object>::name(),
                     tagPair<Generic::IteratorIntf, VisitationDomain>());
  return {static_cast<Generic::IteratorIntf*>(found.fInterface), found.fDeviant};
}

int index(RefCall const& aCall) { return kernelIndex(aCall.fArguments[1].int32()); }

/// The receiver's own class decides what goes in: the method may be that of a class further up.
RefClass const& receiverClass(RefCall const& aCall) {
  auto const* const receiver = vesk::host::Instance::fromArray(aCall.fArguments[0].array());
  if (receiver == nullptr || receiver->classRecord().fName == aCall.fClass.fName) return aCall.fClass;
  auto const* const hook = dynamic_cast<RefHook const*>(receiver->classRecord().info().getSequenceHook());
  return hook == nullptr ? aCall.fClass : hook->refClass();
}
Object element(RefCall const& aCall, int aArgument) {
  return receiverClass(aCall).unboxElement(aCall.fArguments[aArgument]);
}

/// The list of a feature holds an element once. Raises when the element stands in it already, but outside of
/// the indices from `aFirst` to `aLast`: that it stays there would go unnoticed.
void checkStands(Values const& aValues, int aFirst, int aLast, Object const& aElement) {
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

void giveElement(RefCall const& aCall, Object const& aElement) {
  aCall.give(aCall.fClass.box(aElement.get(), aElement.getDeviant()));
}
void givePosition(RefCall const& aCall, IteratorRef const& aPosition) {
  aCall.give(announceObject(aPosition.get(), aPosition.getDeviant(), aCall.fClass.fAccess == Access::ReadOnly,
                            aCall.fClass.fIterator));
}

template <bool Unique>
void make(RefCall const& aCall) {
  // A changeable model is a read-only one too, and nothing but its deviant is wanted.
  auto const model = ArgumentUnboxer<ImmutableModel>::unbox(aCall.fArguments[0]).fValue;
  Values const made = SequenceCreator::create<Object>(
      {.aDeviant = model.getDeviant(), .aImpl = MULTI_INDEX, .aIsUnique = Unique});
  aCall.give(announceObject(made.get(), made.getDeviant(), false, aCall.fClass.fName));
}

void pushBack(RefCall const& aCall) {
  Values const values = self(aCall);
  values.push_back(element(aCall, 1));
}
void pushFront(RefCall const& aCall) {
  Values const values = self(aCall);
  values.push_front(element(aCall, 1));
}
void removeAll(RefCall const& aCall) {
  Values const values = self(aCall);
  aCall.give(VeskValue::ofInt32(values.removeAll(aCall.fClass.unboxObject(aCall.fArguments[1]))));
}
void clear(RefCall const& aCall) { self(aCall).clear(); }
void popBack(RefCall const& aCall) { self(aCall).pop_back(); }
void popFront(RefCall const& aCall) { self(aCall).pop_front(); }
void begin(RefCall const& aCall) { givePosition(aCall, self(aCall).begin()); }
void end(RefCall const& aCall) { givePosition(aCall, self(aCall).end()); }
void erasePosition(RefCall const& aCall) { givePosition(aCall, self(aCall).erase(position(aCall, 1))); }
void eraseRange(RefCall const& aCall) {
  givePosition(aCall, self(aCall).erase(position(aCall, 1), position(aCall, 2)));
}
void eraseIndex(RefCall const& aCall) { self(aCall).erase(index(aCall)); }
void insertPosition(RefCall const& aCall) {
  Values const values = self(aCall);
  givePosition(aCall, values.insert(position(aCall, 1), element(aCall, 2)));
}
void insertIndex(RefCall const& aCall) {
  Values const values = self(aCall);
  Object const value = element(aCall, 2);
  int const at = index(aCall);
  if (at >= 0 && at <= values.size()) checkStands(values, at - 1, at, value);
  values.insert(at, value);
}
void replaceIndex(RefCall const& aCall) {
  Values const values = self(aCall);
  Object const value = element(aCall, 2);
  int const at = index(aCall);
  if (at >= 0 && at < values.size()) checkStands(values, at, at, value);
  values.replace(at, value);
}
void back(RefCall const& aCall) { giveElement(aCall, self(aCall).back()); }
void front(RefCall const& aCall) { giveElement(aCall, self(aCall).front()); }
void at(RefCall const& aCall) { giveElement(aCall, self(aCall).at(index(aCall))); }
void isEmpty(RefCall const& aCall) { aCall.give(VeskValue::ofLogical(self(aCall).empty())); }
void size(RefCall const& aCall) { aCall.give(VeskValue::ofInt32(self(aCall).size())); }

using enum RefType;
using enum RefForm;

// A sequence class inherits from the sequences of more general elements. What takes or gives an element or a
// position stands for all inherited methods of its name, so that nothing of a more general type gets in.
constexpr std::array kChanging{
    RefRow{"append", Member, true, Void, {Self, Element}, &pushBack},
    RefRow{"clear", Member, true, Void, {Self}, &clear},
    RefRow{"pop_back", Member, true, Void, {Self}, &popBack},
    RefRow{"pop_front", Member, true, Void, {Self}, &popFront},
    RefRow{"push_back", Member, true, Void, {Self, Element}, &pushBack},
    RefRow{"push_front", Member, true, Void, {Self, Element}, &pushFront},
    RefRow{"removeAll", Member, true, Int32, {Self, Element}, &removeAll},
    RefRow{"begin", Member, true, RefType::Iterator, {Self}, &begin},
    RefRow{"end", Member, true, RefType::Iterator, {Self}, &end},
    RefRow{"erase", Member, true, RefType::Iterator, {Self, RefType::Iterator}, &erasePosition},
    RefRow{
        "erase", Member, true, RefType::Iterator, {Self, RefType::Iterator, RefType::Iterator}, &eraseRange},
    RefRow{"erase", SelfFirst, true, Void, {Self, Int32}, &eraseIndex},
    RefRow{"insert", Member, true, RefType::Iterator, {Self, RefType::Iterator, Element}, &insertPosition},
    RefRow{"insert", SelfFirst, true, Void, {Self, Int32, Element}, &insertIndex},
    RefRow{"replace", SelfFirst, true, Void, {Self, Int32, Element}, &replaceIndex},
    RefRow{"back", Member, true, Element, {Self}, &back},
    RefRow{"isEmpty", Member, false, Logical, {Self}, &isEmpty},
    RefRow{"front", Member, true, Element, {Self}, &front},
    RefRow{"size", Member, false, Int32, {Self}, &size},
    RefRow{"at", SelfFirst, true, Element, {Self, Int32}, &at},
    RefRow{"make", Static, true, Self, {RefType::ImmutableModel}, &make<false>},
    RefRow{"make", Static, true, Self, {RefType::Model}, &make<false>},
    RefRow{"makeUnique", Static, true, Self, {RefType::ImmutableModel}, &make<true>},
    RefRow{"makeUnique", Static, true, Self, {RefType::Model}, &make<true>},
};

constexpr std::array kReading{
    RefRow{"begin", Member, true, RefType::Iterator, {Self}, &begin},
    RefRow{"end", Member, true, RefType::Iterator, {Self}, &end},
    RefRow{"back", Member, true, Element, {Self}, &back},
    RefRow{"isEmpty", Member, false, Logical, {Self}, &isEmpty},
    RefRow{"front", Member, true, Element, {Self}, &front},
    RefRow{"size", Member, false, Int32, {Self}, &size},
    RefRow{"at", SelfFirst, true, Element, {Self, Int32}, &at},
};

/// One class of sequences of object references.
class RefSequenceInfo final : public ClassMetaData {
 public:
  RefSequenceInfo(char const* aShortName, char const* aDescription, RefClass aClass)
      : ClassMetaData(aShortName, aDescription), fClass(std::move(aClass)), fHook(fClass) {}

  void initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const*) override {
    vesk::factory::detail::initStringDataTypes();
    addSuperclasses(aClass);
    std::span<RefRow const> const rows = fClass.fAccess == Access::ReadOnly
                                             ? std::span<RefRow const>(kReading)
                                             : std::span<RefRow const>(kChanging);
    for (RefRow const& row : rows) addRefMethod(aClass, row, fClass);
  }
  vesk::SequenceHook const* getSequenceHook() const override { return &fHook; }
  vesk::ClassFamily const* family() const override { return &fClass.fFamily; }

 private:
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
