#include <array>
#include <string>
#include <utility>

#include "RefClass.h"
#include "RefMethod.h"
#include "kelm/DeviantRegistry.h"
#include "kelm/kernel/containers/iterator/Iterator.h"
#include "kelm_mi/refClassInfos.h"
#include "textClassInfos.h"
#include "uml_metamodel_mi/frame/Boxing.h"
#include "uml_metamodel_mi/frame/ElementClassInfo.h"
#include "uml_metamodel_mi/frame/Unboxing.h"
#include "uml_metamodel_mi/frame/addTypedMethod.h"
#include "vesk/factory/Invoker.h"

namespace Kelm::mi {

namespace {

using vesk::VeskValue;

using Position = ImmutableIterator<Object>;

Position position(RefCall const& aCall, int aArgument = 0) {
  UnboxedInterface const found =
      unboxInterface(aCall.fArguments[aArgument].array(), ScriptClass<Object>::name(),
                     tagPair<Generic::IteratorIntf, VisitationDomain>());
  return {static_cast<Generic::IteratorIntf*>(found.fInterface), found.fDeviant};
}

/// The receiver of what calls into the iterator without looking.
Position present(RefCall const& aCall) {
  Position result = position(aCall);
  vesk::factory::impl::validateSelfPointer(result.get());
  return result;
}

bool areEqual(RefCall const& aCall) { return present(aCall) == position(aCall, 1); }

void clone(RefCall const& aCall) {
  Position const original = position(aCall);
  aCall.give(boxIterator(original.get(), original.getDeviant(), aCall.fClass.fAccess == Access::ReadOnly,
                         aCall.fClass.fName));
}
void eq(RefCall const& aCall) { aCall.give(VeskValue::ofLogical(areEqual(aCall))); }
void ne(RefCall const& aCall) { aCall.give(VeskValue::ofLogical(!areEqual(aCall))); }
void getNext(RefCall const& aCall) { present(aCall).next(); }
void getPrev(RefCall const& aCall) { present(aCall).previous(); }
void item(RefCall const& aCall) {
  Object const current = present(aCall).current();
  aCall.give(aCall.fClass.box(current.get(), current.getDeviant()));
}

using enum RefType;
using enum RefForm;

constexpr std::array kRows{
    RefRow{"clone", SelfFirst, false, Self, {Self}, &clone},
    RefRow{"eq", Member, false, Logical, {Self, Self}, &eq},
    RefRow{"ne", Member, false, Logical, {Self, Self}, &ne},
    RefRow{"getNext", SelfFirst, false, Void, {Self}, &getNext},
    RefRow{"getPrev", SelfFirst, false, Void, {Self}, &getPrev},
    RefRow{"item", Member, false, Element, {Self}, &item},
};

/// One class of iterators over object references.
class RefIteratorInfo final : public ClassMetaData {
 public:
  RefIteratorInfo(char const* aShortName, char const* aDescription, RefClass aClass)
      : ClassMetaData(aShortName, aDescription), fClass(std::move(aClass)) {}

  void initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const*) override {
    vesk::factory::detail::initStringDataTypes();
    if (fClass.fAccess == Access::Changeable)
      addSuperclass(aClass, fClass.fFamily.iterator(Access::ReadOnly, fClass.elementAccess()).c_str());
    for (RefRow const& row : kRows) addRefMethod(aClass, row, fClass);
  }
  vesk::ClassFamily const* family() const override { return &fClass.fFamily; }

 private:
  RefClass const fClass;
};

vesk::VeskClassInfo* createIterator(Access aAccess, Elements aElements, char const* aShortName,
                                    char const* aDescription, char const* aClassName,
                                    char const* aElementClass) {
  return new RefIteratorInfo(aShortName, aDescription,
                             makeRefClass(aAccess, aElements, aClassName, aElementClass));
}

}  // namespace

vesk::VeskClassInfo* createIteratorOfRefClassInfo(char const* aShortName, char const* aDescription,
                                                  char const* aClassName, char const* aElementClass) {
  return createIterator(Access::Changeable, Elements::Changeable, aShortName, aDescription, aClassName,
                        aElementClass);
}

vesk::VeskClassInfo* createIteratorOfImmutableRefClassInfo(char const* aShortName, char const* aDescription,
                                                           char const* aClassName,
                                                           char const* aElementClass) {
  return createIterator(Access::Changeable, Elements::ReadOnly, aShortName, aDescription, aClassName,
                        aElementClass);
}

vesk::VeskClassInfo* createImmutableIteratorOfRefClassInfo(char const* aShortName, char const* aDescription,
                                                           char const* aClassName,
                                                           char const* aElementClass) {
  return createIterator(Access::ReadOnly, Elements::Changeable, aShortName, aDescription, aClassName,
                        aElementClass);
}

vesk::VeskClassInfo* createImmutableIteratorOfImmutableRefClassInfo(char const* aShortName,
                                                                    char const* aDescription,
                                                                    char const* aClassName,
                                                                    char const* aElementClass) {
  return createIterator(Access::ReadOnly, Elements::ReadOnly, aShortName, aDescription, aClassName,
                        aElementClass);
}

vesk::VeskClassInfo* createTextIteratorClassInfo(vesk::ClassFamily const& aFamily, char const* aDescription) {
  vesk::VeskInterned const name = aFamily.iterator(Access::ReadOnly, Access::Changeable);
  return new RefIteratorInfo(aFamily.shortName(name), aDescription, makeTextClass(aFamily, name));
}

}  // namespace Kelm::mi
