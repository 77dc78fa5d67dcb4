#include "uml_metamodel_mi/wrappers/elementClasses.h"

#include <vector>

#include "kelm_mi/refClassInfos.h"
#include "uml_metamodel_mi/wrappers/doors.h"
#include "uml_metamodel_mi/wrappers/metaclasses.h"

namespace umlmm::mi {

using Kelm::mi::Access;
using Kelm::mi::announceClass;

namespace {

std::vector<std::string> baseList(ElementDescription const& aDescription) {
  if (aDescription.fSupers.empty()) return {"Kelm.ClassObject"};
  std::vector<std::string> bases;
  for (char const* super : aDescription.fSupers)
    bases.emplace_back(Kelm::mi::classFamily(kPackage, super).reference(Access::Changeable).view());
  return bases;
}

}  // namespace

void announceElementClasses(vesk::VeskPackage* aPackage, ElementDescription const& aDescription,
                            MakeClassInfo aImmutable, MakeClassInfo aMutable, MakeClassInfo aMetaProperty) {
  if (aPackage == nullptr) return;
  offerDoors(aDescription);
  vesk::ClassFamily const& family = aDescription.family();
  announceClass(aPackage, aImmutable(family.shortName(family.reference(Access::ReadOnly)), ""));
  announceClass(aPackage, aMutable(family.shortName(family.reference(Access::Changeable)), ""));
  announceClass(aPackage, aMetaProperty(family.shortName(metaPropertyClassName(aDescription.fName)),
                                        "This class has static methods to access meta properties"));
  std::vector<std::string> const bases = baseList(aDescription);
  for (Kelm::mi::RefSequenceForm const& form : Kelm::mi::kRefSequenceForms)
    announceClass(aPackage, form.sequenceInfo(family, bases));
  for (Kelm::mi::RefSequenceForm const& form : Kelm::mi::kRefSequenceForms)
    announceClass(aPackage, form.iteratorInfo(family));
}

}  // namespace umlmm::mi
