#include "package.h"

#include <utility>

#include "finding/NameIndex.h"
#include "frame/Boxing.h"
#include "frame/addTypedMethod.h"
#include "vesk/VeskPackageInfo.h"
#include "vesk/factory/BindingRegistry.h"

namespace umlmm::finding::mi {

/// An element that may be missing.
struct Found {
  Kelm::ClassObject fElement;
};

}  // namespace umlmm::finding::mi

template <>
struct Kelm::mi::Boxer<umlmm::finding::mi::Found> {
  static vesk::VeskValue box(umlmm::finding::mi::Found const& aFound) {
    if (!aFound.fElement.isNull()) return Boxer<ClassObject>::box(aFound.fElement);
    return vesk::factory::basic::BindingRegistry::announce(static_cast<void*>(nullptr),
                                                           ScriptClass<ClassObject>::name());
  }
};

namespace umlmm::finding::mi {

namespace {

using Kelm::ClassObject;
using Kelm::Model;
using Kelm::mi::bindFunction;
using Kelm::mi::MethodRow;

Found found(NameIndex::Element* aElement, Kelm::Deviant const& aDeviant) {
  return {aElement == nullptr ? ClassObject() : ClassObject(aElement, aDeviant)};
}

Found findInModel(Model const& aModel, Kelm::String const& aPath) {
  return found(NameIndex::of(aModel).find(nullptr, aPath.to_string()), aModel.getDeviant());
}

Found findInOwner(Model const& aModel, ClassObject const& aOwner, Kelm::String const& aPath) {
  return found(NameIndex::of(aModel).find(aOwner.get(), aPath.to_string()), aOwner.getDeviant());
}

constexpr char kText[] = "char vector";
constexpr char kModel[] = "Kelm.Model";
constexpr char kElement[] = "Kelm.ClassObject";

constexpr MethodRow kFunctions[] = {
    {"find",
     0,
     Kelm::mi::Form::FreeFunction,
     {"model, path", kElement, nullptr, {kModel, kText}},
     &bindFunction<&findInModel>},
    {"findIn",
     0,
     Kelm::mi::Form::FreeFunction,
     {"model, owner, path", kElement, nullptr, {kModel, kElement, kText}},
     &bindFunction<&findInOwner>},
};

class PackageInfo final : public vesk::VeskPackageInfo {
 public:
  char const* getName() const override { return "umlmm_finding"; }
  char const* getDescription() const override { return "Elements by name, for the module umlmm._finding"; }
  void initializePackage(vesk::VeskPackage* aPackage) override {
    vesk::factory::detail::initStringDataTypes();
    for (MethodRow const& row : kFunctions) Kelm::mi::addPackageFunction(aPackage, row);
  }
};

}  // namespace

}  // namespace umlmm::finding::mi

void SarnInitialize_uml_finding_mi() {
  static bool sIsInitialized = false;
  if (std::exchange(sIsInitialized, true)) return;
  Kelm::initialize();
  vesk::VeskPackage::addPackage(new umlmm::finding::mi::PackageInfo);
}
