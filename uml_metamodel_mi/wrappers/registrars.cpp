#include "uml_metamodel_mi/wrappers/registrars.h"

#include <vector>

#include "kelm_mi/refClassInfos.h"
#include "vesk/VeskClass.h"

namespace umlmm::mi {

namespace {

// The host keeps the mode and fills each class on first use.
constexpr int kMode = 2;

struct SequenceForm {
  char const* fPrefix;
  char const* fElementPrefix;
  char const* fIteratorSuffix;
  char const* fDescription;
  decltype(&Kelm::mi::createSequenceOfRefClassInfo) fCreate;
};

struct IteratorForm {
  char const* fElementPrefix;
  char const* fSuffix;
  char const* fDescription;
  decltype(&Kelm::mi::createIteratorOfRefClassInfo) fCreate;
};

constexpr char kChangeable[] = "A sequence whose values can be changed";
constexpr char kReadOnly[] = "A sequence whose values cannot be changed";
constexpr SequenceForm kSequences[] = {
    {"SequenceOf", "", "Iterator", kChangeable, &Kelm::mi::createSequenceOfRefClassInfo},
    {"SequenceOf", "Immutable", "Iterator", kChangeable, &Kelm::mi::createSequenceOfImmutableRefClassInfo},
    {"ImmutableSequenceOf", "", "ImmutableIterator", kReadOnly,
     &Kelm::mi::createImmutableSequenceOfRefClassInfo},
    {"ImmutableSequenceOf", "Immutable", "ImmutableIterator", kReadOnly,
     &Kelm::mi::createImmutableSequenceOfImmutableRefClassInfo},
};

// The description goes by the elements, not by the list that is walked.
constexpr char kModifiable[] = "An iterator for traversing a modifiable list";
constexpr char kNonModifiable[] = "An iterator for traversing a non-modifiable list";
constexpr IteratorForm kIterators[] = {
    {"", "Iterator", kModifiable, &Kelm::mi::createIteratorOfRefClassInfo},
    {"Immutable", "Iterator", kNonModifiable, &Kelm::mi::createIteratorOfImmutableRefClassInfo},
    {"", "ImmutableIterator", kModifiable, &Kelm::mi::createImmutableIteratorOfRefClassInfo},
    {"Immutable", "ImmutableIterator", kNonModifiable,
     &Kelm::mi::createImmutableIteratorOfImmutableRefClassInfo},
};

std::string full(std::string const& aShortName) { return "umlmm." + aShortName; }

std::vector<std::string> baseList(ElementClass const& aDescription) {
  if (aDescription.fSupers.empty()) return {"Kelm.ClassObject"};
  std::vector<std::string> bases;
  for (char const* super : aDescription.fSupers) bases.push_back(full(super));
  return bases;
}

void announceSequences(vesk::VeskPackage* aPackage, std::string const& aName,
                       std::vector<std::string> const& aBases) {
  for (SequenceForm const& form : kSequences) {
    std::string const element = form.fElementPrefix + aName;
    std::string const name = form.fPrefix + element;
    announceClass(aPackage,
                  form.fCreate(name.c_str(), form.fDescription, full(name).c_str(), full(element).c_str(),
                               full(element + form.fIteratorSuffix).c_str(), aBases));
  }
}

void announceIterators(vesk::VeskPackage* aPackage, std::string const& aName) {
  for (IteratorForm const& form : kIterators) {
    std::string const element = form.fElementPrefix + aName;
    std::string const name = element + form.fSuffix;
    announceClass(aPackage,
                  form.fCreate(name.c_str(), form.fDescription, full(name).c_str(), full(element).c_str()));
  }
}

}  // namespace

void announceClass(vesk::VeskPackage* aPackage, vesk::VeskClassInfo* aInfo) {
  if (aPackage == nullptr)
    vesk::VeskClass::addGlobalClass(aInfo);
  else
    aPackage->addClass(aInfo, kMode);
}

void announceElementClasses(vesk::VeskPackage* aPackage, ElementClass const& aDescription,
                            MakeClassInfo aImmutable, MakeClassInfo aMutable, MakeClassInfo aMetaProperty) {
  if (aPackage == nullptr) return;
  std::string const name = aDescription.fName;
  announceClass(aPackage, aImmutable("Immutable" + name, ""));
  announceClass(aPackage, aMutable(name, ""));
  announceClass(aPackage, aMetaProperty(name + "MetaProperty",
                                        "This class has static methods to access meta properties"));
  announceSequences(aPackage, name, baseList(aDescription));
  announceIterators(aPackage, name);
}

}  // namespace umlmm::mi
