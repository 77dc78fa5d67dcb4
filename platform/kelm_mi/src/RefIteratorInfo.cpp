#include <utility>

#include "RefClass.h"
#include "RefMethod.h"
#include "frame/ElementClassInfo.h"
#include "frame/sequenceMethods.h"
#include "kelm/kernel/containers/iterator/Iterator.h"
#include "kelm_mi/refClassInfos.h"
#include "textClassInfos.h"

namespace Kelm::mi {

namespace {

/// What the methods of iterators over objects differ in from others. One type serves all classes.
struct RefPositions {
  using Marshal = RefMarshal;
  using Position = ImmutableIterator<Object>;

  static Position clone(Position* aPosition) { return *aPosition; }
  static void getNext(Position* aPosition) { aPosition->next(); }
  static void getPrev(Position* aPosition) { aPosition->previous(); }
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
    addRefMethods(aClass, iteratorMethods<RefPositions>({fClass.fName.c_str(), fClass.fElement.c_str()}),
                  fClass);
  }
  vesk::ClassFamily const* family() const override { return &fClass.fFamily; }

 private:
  RefClass const fClass;
};

vesk::VeskClassInfo* createIterator(Access aAccess, Elements aElements, char const* aShortName,
                                    char const* aDescription, char const* aClassName,
                                    char const* aElementClass) {
  return new RefIteratorInfo(aShortName, aDescription,
                             makeRefClass(aAccess, aElements, aClassName, aElementClass, aClassName));
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
