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

constexpr char kChangeableSequence[] = "A sequence whose values can be changed";
constexpr char kReadOnlySequence[] = "A sequence whose values cannot be changed";
constexpr char kChangeableIterator[] = "An iterator for traversing a modifiable list";
constexpr char kReadOnlyIterator[] = "An iterator for traversing a non-modifiable list";

constexpr int kFillOnFirstUse = 2;

class KelmClassInfo final : public ClassMetaData {
 public:
  explicit KelmClassInfo(KelmClass const& aClass)
      : ClassMetaData(aClass.fShortName, aClass.fDescription), fClass(aClass) {}

  void initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const* aClient) override {
    for (char const* const super : fClass.fSuperclasses) addSuperclass(aClass, super);
    vesk::factory::detail::initStringDataTypes();
    addTypedMethods(aClass, fClass.fMethods);
    for (ComputedProperty const& property : fClass.fProperties) addComputedProperty(aClass, property);
    if (fClass.fAddMore != nullptr) fClass.fAddMore(aClass);
    VeskExtensionsRegistry::instance().executeNonConstCallbacks(std::string("Kelm.") + getName(), aClass,
                                                                aClient);
  }

 private:
  KelmClass const& fClass;
};

/// The four sequences and four iterators of references to elements.
void addElementSequences(vesk::VeskPackage* aPackage) {
  struct Row {
    decltype(&createSequenceOfRefClassInfo) fCreate;
    decltype(&createIteratorOfRefClassInfo) fCreateIterator;
    std::string fSequence, fElement, fIterator;
    char const* fDescription;
    char const* fIteratorDescription;
  };
  Row const rows[] = {
      {&createSequenceOfRefClassInfo, &createIteratorOfRefClassInfo, "SequenceOfClassObject", "ClassObject",
       "ClassObjectIterator", kChangeableSequence, kChangeableIterator},
      {&createSequenceOfImmutableRefClassInfo, &createIteratorOfImmutableRefClassInfo,
       "SequenceOfImmutableClassObject", "ImmutableClassObject", "ImmutableClassObjectIterator",
       kChangeableSequence, kReadOnlyIterator},
      {&createImmutableSequenceOfRefClassInfo, &createImmutableIteratorOfRefClassInfo,
       "ImmutableSequenceOfClassObject", "ClassObject", "ClassObjectImmutableIterator", kReadOnlySequence,
       kChangeableIterator},
      {&createImmutableSequenceOfImmutableRefClassInfo, &createImmutableIteratorOfImmutableRefClassInfo,
       "ImmutableSequenceOfImmutableClassObject", "ImmutableClassObject",
       "ImmutableClassObjectImmutableIterator", kReadOnlySequence, kReadOnlyIterator},
  };
  std::string const kelm = "Kelm.";
  for (Row const& row : rows) {
    aPackage->addClass(row.fCreate(row.fSequence.c_str(), row.fDescription, (kelm + row.fSequence).c_str(),
                                   (kelm + row.fElement).c_str(), (kelm + row.fIterator).c_str(), {}),
                       kFillOnFirstUse);
    aPackage->addClass(row.fCreateIterator(row.fIterator.c_str(), row.fIteratorDescription,
                                           (kelm + row.fIterator).c_str(), (kelm + row.fElement).c_str()),
                       kFillOnFirstUse);
  }
}

/// The read-only sequences of the metamodel's own objects. `aBase` is the changeable name of the type above.
void addMetaSequences(vesk::VeskPackage* aPackage, std::string const& aType,
                      std::vector<std::string> const& aBases) {
  std::string const sequence = "ImmutableSequenceOfImmutable" + aType;
  std::string const element = "Kelm.Immutable" + aType;
  std::string const iterator = "Immutable" + aType + "ImmutableIterator";
  aPackage->addClass(createImmutableSequenceOfImmutableRefClassInfo(
                         sequence.c_str(), kReadOnlySequence, ("Kelm." + sequence).c_str(), element.c_str(),
                         ("Kelm." + iterator).c_str(), aBases),
                     kFillOnFirstUse);
  aPackage->addClass(createImmutableIteratorOfImmutableRefClassInfo(
                         iterator.c_str(), kReadOnlyIterator, ("Kelm." + iterator).c_str(), element.c_str()),
                     kFillOnFirstUse);
}

void addTextSequences(vesk::VeskPackage* aPackage) {
  aPackage->addClass(
      createTextSequenceClassInfo("ImmutableSequenceOfString", kReadOnlySequence,
                                  "Kelm.ImmutableSequenceOfString", "Kelm.StringImmutableIterator"),
      kFillOnFirstUse);
  aPackage->addClass(createTextIteratorClassInfo("StringImmutableIterator", kReadOnlyIterator,
                                                 "Kelm.StringImmutableIterator"),
                     kFillOnFirstUse);
}

class KelmPackageInfo final : public vesk::VeskPackageInfo {
 public:
  char const* getName() const override { return "Kelm"; }
  char const* getDescription() const override { return "Models, elements and the metamodel about itself"; }

  void initializePackage(vesk::VeskPackage* aPackage) override {
    for (auto const classes : {objectClasses(), modelClasses(), metaClasses()})
      for (KelmClass const& kelmClass : classes)
        aPackage->addClass(new KelmClassInfo(kelmClass), kFillOnFirstUse);
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
