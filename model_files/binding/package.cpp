#include "package.h"

#include "Loadings.h"
#include "answers.h"
#include "boxing.h"
#include "descriptors.h"
#include "failures.h"
#include "frame/addTypedMethod.h"
#include "vesk/VeskPackageInfo.h"
#include "vesk/factory/BindingRegistry.h"
#include "vesk/host/Extensions.h"

namespace umlmm::files::mi {

Failure::Failure(Error const& aError) : std::runtime_error(toJson(aError)) {}
Failure::~Failure() = default;

namespace {

using Kelm::ClassObject;
using Kelm::ImmutableClassObject;
using Kelm::ImmutableModel;
using Kelm::Model;
using Kelm::String;
using Kelm::mi::bindFunction;
using Kelm::mi::MethodRow;

String text(std::string const& aText) { return String(Kelm::toUtf16(aText)); }

SaveOptions saveOptions(String const& aDialect, bool aForce) { return {aDialect.to_string(), aForce}; }

// What gives no elements takes read-only references too.

bool isFromFiles(ImmutableModel const& aModel) { return isLoaded(Model(aModel)); }
String reportPage(ImmutableModel const& aModel) { return text(report(Model(aModel)).page()); }
String reportJson(ImmutableModel const& aModel) { return text(report(Model(aModel)).json()); }

String unresolvedJson(Model const& aModel) { return text(toJson(unresolved(aModel))); }
Elements unresolvedElements(Model const& aModel) {
  std::vector<ClassObject> elements;
  for (Unresolved const& reference : unresolved(aModel)) elements.push_back(reference.fElement);
  return Elements(elements, aModel.getDeviant());
}

FoundElement elementById(Model const& aModel, String const& aId, String const& aFile) {
  return {byId(aModel, aId.to_string(), aFile.to_string())};
}

String unknownJson(ImmutableClassObject const& aElement) {
  return text(toJson(unknown(ClassObject(aElement))));
}
String stereotypesJson(ImmutableClassObject const& aElement) {
  return text(toJson(stereotypes(ClassObject(aElement))));
}
String stereotypeJson(ImmutableClassObject const& aElement, int aNumber) {
  return text(toJson({stereotype(ClassObject(aElement), static_cast<std::uint32_t>(aNumber))}));
}
/// Each value has a separator in front, which no XML can hold.
void setValues(ClassObject const& aElement, int aNumber, String const& aTag, String const& aValues) {
  constexpr char kSeparator = '\x1f';
  std::string const all = aValues.to_string();
  std::vector<std::string> values;
  for (std::size_t at = 0; at < all.size(); at += values.back().size() + 1)
    values.push_back(all.substr(at + 1, all.find(kSeparator, at + 1) - at - 1));
  setTaggedValues(aElement, static_cast<std::uint32_t>(aNumber), aTag.to_string(), values);
}
void removeOne(ClassObject const& aElement, int aNumber) {
  removeStereotype(aElement, static_cast<std::uint32_t>(aNumber));
}
int applyOne(ClassObject const& aElement, String const& aName, String const& aProfile) {
  return static_cast<int>(applyStereotype(aElement, aName.to_string(), aProfile.to_string()));
}
Elements stereotypedElements(Model const& aModel, String const& aName) {
  return Elements(stereotyped(aModel, aName.to_string()), aModel.getDeviant());
}

void copyAll(ImmutableModel const& aModel, Model const& aCopy) { copyFiles(Model(aModel), aCopy); }

void saveFiles(ImmutableModel const& aModel, String const& aDialect, bool aForce) {
  save(Model(aModel), saveOptions(aDialect, aForce));
}
void saveTo(ImmutableModel const& aModel, String const& aPath, String const& aDialect, bool aForce) {
  save(Model(aModel), aPath.to_string(), saveOptions(aDialect, aForce));
}
void writeText(ImmutableModel const& aModel, String const& aFile, String const& aDialect, int aDescriptor) {
  writeAll(aDescriptor, textOf(Model(aModel), saveOptions(aDialect, false), aFile.to_string()));
}

constexpr char kText[] = "char vector";
constexpr char kNumber[] = "int32 scalar";
constexpr char kTruth[] = "logical scalar";
constexpr char kNothing[] = "void";
constexpr char kModel[] = "Kelm.Model";
constexpr char kElement[] = "Kelm.ClassObject";
constexpr char kAnyModel[] = "Kelm.ImmutableModel";
constexpr char kAnyElement[] = "Kelm.ImmutableClassObject";
constexpr char kElements[] = "Kelm.ImmutableSequenceOfClassObject";

template <auto Function>
constexpr MethodRow function(char const* aName, char const* aArgumentNames, char const* aResult,
                             std::array<char const*, 4> aArguments) {
  return {aName,
          0,
          Kelm::mi::Form::FreeFunction,
          {aArgumentNames, aResult, nullptr, aArguments},
          &bindFunction<&Told<Function>::call>};
}

constexpr MethodRow kFunctions[] = {
    function<&beginLoading>("begin", "strict", kNumber, {kTruth}),
    function<&addFile>("addFile", "number, path", kNothing, {kNumber, kText}),
    function<&addBytes>("addBytes", "number, name, descriptor", kNothing, {kNumber, kText, kNumber}),
    function<&addPath>("addPath", "number, prefix, place", kNothing, {kNumber, kText, kText}),
    function<&stepLoading>("step", "number, milliseconds", kTruth, {kNumber, kNumber}),
    function<&progressOfLoading>("progress", "number", kNumber, {kNumber}),
    function<&takeModel>("take", "number", kModel, {kNumber}),
    function<&dropLoading>("drop", "number", kNothing, {kNumber}),

    function<&isFromFiles>("isLoaded", "model", kTruth, {kAnyModel}),
    function<&reportPage>("reportPage", "model", kText, {kAnyModel}),
    function<&reportJson>("report", "model", kText, {kAnyModel}),
    function<&unresolvedJson>("unresolved", "model", kText, {kModel}),
    function<&unresolvedElements>("unresolvedElements", "model", kElements, {kModel}),
    function<&elementById>("byId", "model, id, file", kElement, {kModel, kText, kText}),
    function<&unknownJson>("unknown", "element", kText, {kAnyElement}),
    function<&stereotypesJson>("stereotypes", "element", kText, {kAnyElement}),
    function<&stereotypeJson>("stereotype", "element, number", kText, {kAnyElement, kNumber}),
    function<&setValues>("setTaggedValues", "element, number, tag, values", kNothing,
                         {kElement, kNumber, kText, kText}),
    function<&removeOne>("removeStereotype", "element, number", kNothing, {kElement, kNumber}),
    function<&applyOne>("applyStereotype", "element, name, profile", kNumber, {kElement, kText, kText}),
    function<&stereotypedElements>("stereotyped", "model, name", kElements, {kModel, kText}),

    function<&copyAll>("copyFiles", "model, copy", kNothing, {kAnyModel, kModel}),
    function<&saveFiles>("save", "model, dialect, force", kNothing, {kAnyModel, kText, kTruth}),
    function<&saveTo>("saveTo", "model, path, dialect, force", kNothing, {kAnyModel, kText, kText, kTruth}),
    function<&writeText>("text", "model, file, dialect, descriptor", kNothing,
                         {kAnyModel, kText, kText, kNumber}),
};

bool isFailure(std::exception const& aFailure) { return dynamic_cast<Failure const*>(&aFailure) != nullptr; }

class PackageInfo final : public vesk::VeskPackageInfo {
 public:
  char const* getName() const override { return "umlmm_files"; }
  char const* getDescription() const override { return "Model files, for the module umlmm.files"; }
  void initializePackage(vesk::VeskPackage* aPackage) override {
    vesk::factory::detail::initStringDataTypes();
    for (MethodRow const& row : kFunctions) Kelm::mi::addPackageFunction(aPackage, row);
  }
};

}  // namespace

}  // namespace umlmm::files::mi

void SarnInitialize_uml_model_files_mi() {
  static bool sIsInitialized = false;
  if (std::exchange(sIsInitialized, true)) return;
  Kelm::initialize();
  vesk::host::nameFailures("umlmm_files.Failure", &umlmm::files::mi::isFailure);
  vesk::VeskPackage::addPackage(new umlmm::files::mi::PackageInfo);
}
