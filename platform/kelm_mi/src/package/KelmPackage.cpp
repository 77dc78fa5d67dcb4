#include <string>
#include <vector>

#include "KelmClass.h"
#include "dynamicValues.h"
#include "kelm/Asserter.h"
#include "kelm/Model.h"
#include "kelm/failureWords.h"
#include "kelm_mi/VeskExtensionsRegistry.h"
#include "kelm_mi/refClassInfos.h"
#include "textClassInfos.h"
#include "vesk/VeskError.h"
#include "vesk/VeskPackage.h"
#include "vesk/VeskPackageInfo.h"
#include "vesk/host/Extensions.h"
#include "vesk/host/PackageRecord.h"
#include "vesk/host/Type.h"

/// The script package "Kelm": what every metamodel's classes stand on.
namespace Kelm::mi {

namespace {

class KelmClassInfo final : public ClassMetaData {
 public:
  explicit KelmClassInfo(KelmClass const& aClass)
      : ClassMetaData(aClass.family().shortName(aClass.family().reference(aClass.fAccess)),
                      aClass.fDescription),
        fClass(aClass) {}

  void initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const* aClient) override {
    for (char const* const super : fClass.fSuperclasses) addSuperclass(aClass, super);
    vesk::factory::detail::initStringDataTypes();
    addTypedMethods(aClass, fClass.fMethods);
    for (ComputedProperty const& property : fClass.fProperties) addComputedProperty(aClass, property);
    if (fClass.fAddMore != nullptr) fClass.fAddMore(aClass);
    VeskExtensionsRegistry::instance().executeNonConstCallbacks(std::string("Kelm.") + getName(), aClass,
                                                                aClient);
  }
  vesk::ClassFamily const* family() const override { return &fClass.family(); }

 private:
  KelmClass const& fClass;
};

void addForm(vesk::VeskPackage* aPackage, RefSequenceForm const& aForm, char const* aKind,
             std::vector<std::string> const& aBases) {
  vesk::ClassFamily const& family = classFamily("Kelm", aKind);
  announceClass(aPackage, aForm.sequenceInfo(family, aBases));
  announceClass(aPackage, aForm.iteratorInfo(family));
}

/// The four sequences and four iterators of references to elements.
void addElementSequences(vesk::VeskPackage* aPackage) {
  for (RefSequenceForm const& form : kRefSequenceForms) addForm(aPackage, form, "ClassObject", {});
}

/// The read-only sequences of the metamodel's own objects. `aBases` has the changeable name of the type
/// above.
void addMetaSequences(vesk::VeskPackage* aPackage, char const* aType,
                      std::vector<std::string> const& aBases) {
  addForm(aPackage, kRefSequenceForms.back(), aType, aBases);
}

void addTextSequences(vesk::VeskPackage* aPackage) {
  vesk::ClassFamily const& family = classFamily("Kelm", "String");
  announceClass(aPackage, createTextSequenceClassInfo(family, "A sequence whose values cannot be changed"));
  announceClass(aPackage,
                createTextIteratorClassInfo(family, "An iterator for traversing a non-modifiable list"));
}

class KelmPackageInfo final : public vesk::VeskPackageInfo {
 public:
  char const* getName() const override { return "Kelm"; }
  char const* getDescription() const override { return "Models, elements and the metamodel about itself"; }

  void initializePackage(vesk::VeskPackage* aPackage) override {
    for (auto const classes : {objectClasses(), modelClasses(), metaClasses()})
      for (KelmClass const& kelmClass : classes) announceClass(aPackage, new KelmClassInfo(kelmClass));
    addElementSequences(aPackage);
    addMetaSequences(aPackage, "Type", {});
    addMetaSequences(aPackage, "Class", {"Kelm.Type"});
    addMetaSequences(aPackage, "DataType", {"Kelm.Type"});
    addMetaSequences(aPackage, "Property", {});
    addTextSequences(aPackage);
  }
};

bool isKelmFailure(std::exception const& aFailure) {
  return dynamic_cast<Exception const*>(&aFailure) != nullptr;
}

vesk::host::FailureKind kindOfFailure(std::exception const& aFailure) {
  using vesk::host::FailureKind;
  auto const& failure = static_cast<Exception const&>(aFailure);
  for (char const* refusal : {words::kReadOnlySet, words::kImmutableObject, words::kReadOnlyVariant})
    if (says(failure, refusal)) return FailureKind::ReadOnly;
  if (says(failure, words::kIncorrectType)) return FailureKind::WrongValue;
  return says(failure, words::kNullReference) ? FailureKind::NoReference : FailureKind::General;
}

void addExtension(char const* aClassName, vesk::host::ClassExtension aExtension) {
  using State = vesk::host::ClassRecord::State;
  VeskExtensionsRegistry& registry = VeskExtensionsRegistry::instance();
  vesk::VeskClass* const ran = registry.executedOn(aClassName);
  auto const* const record = dynamic_cast<vesk::host::ClassRecord const*>(ran);
  // A class in use can be extended as far as its host can do that; the extension itself finds out.
  if (ran != nullptr && (record == nullptr || record->state() == State::Filled))
    return aExtension(ran, vesk::host::client());
  if (ran == nullptr && vesk::host::classOf(vesk::internal::intern(aClassName)).state() == State::Filled)
    throw vesk::VeskError(std::string("Class '") + aClassName +
                              "' takes no extensions; the changeable classes of elements do, such as "
                              "'umlmm.Comment', and through them the read-only ones",
                          vesk::VeskError::Kind::Match);
  registry.addNonConstCallback(aClassName, std::move(aExtension));
}

void registerWithHost() {
  using vesk::host::Carrier;
  vesk::host::registerDataType("kelmlogical", Carrier::OptionalLogical);
  vesk::host::registerDataType("kelmint32", Carrier::OptionalInt32);
  vesk::host::registerDataType("kelmunlimitedNatural", Carrier::NaturalText);
  vesk::host::registerDataType(kAnyValue, Carrier::Front);
  vesk::host::nameFailures("Kelm.Error", &isKelmFailure, &kindOfFailure);
  vesk::host::setExtensionRegistrar("Kelm", &addExtension);
  vesk::VeskPackage::addPackage(new KelmPackageInfo);
}

/// The kernel knows nothing of hosts: the library makes itself known to it when it is loaded.
[[maybe_unused]] bool const sAnnounced = (addStartupCallback(&registerWithHost), true);

}  // namespace

}  // namespace Kelm::mi
