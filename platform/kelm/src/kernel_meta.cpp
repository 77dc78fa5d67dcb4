#include "kernel_meta.h"

#include <array>
#include <string_view>

#include "Immortal.h"
#include "kelm/ClassObject.h"
#include "kelm/meta.h"

/// The kernel's part of the metamodel: the class of all elements and the types of its features.
namespace Kelm::NSInterface {

namespace {

/// What the kernel's types have in common; the qualified name ends in the name.
template <class Base>
class KernelType : public Base {
 public:
  explicit KernelType(std::string_view aQualifiedName) : fQualifiedName(aQualifiedName) {}
  std::string_view getName() const override { return fQualifiedName.substr(fQualifiedName.rfind(':') + 1); }
  std::string_view getQualifiedName() const override { return fQualifiedName; }
  bool conformsTo(TypeIntf const& aOther) const override { return &aOther == this; }

 private:
  std::string_view fQualifiedName;
};

class KernelClass final : public KernelType<ClassIntf> {
 public:
  using Properties = std::span<PropertyIntf const* const>;

  KernelClass(std::string_view aQualifiedName, bool aIsAbstract, Properties aProperties)
      : KernelType(aQualifiedName), fIsAbstract(aIsAbstract), fProperties(aProperties) {}
  bool isAbstract() const override { return fIsAbstract; }
  std::span<ClassIntf const* const> superClasses() const override { return {}; }
  Properties ownedProperties() const override { return fProperties; }
  Properties allProperties() const override { return fProperties; }

 private:
  bool fIsAbstract;
  Properties fProperties;
};

class KernelDataType final : public KernelType<DataTypeIntf> {
 public:
  using KernelType::KernelType;
  std::span<std::string_view const> literals() const override { return {}; }
};

enum Form : unsigned { kSettable = 0, kReadOnly = 1, kMany = 2, kDerived = 4, kComposite = 8 };

class KernelProperty final : public PropertyIntf {
 public:
  KernelProperty(std::string_view aName, unsigned aId, TypeIntf const& aType, unsigned aForm,
                 PropertyIntf const* aOpposite = nullptr)
      : fName(aName), fId(aId), fForm(aForm), fType(aType), fOpposite(aOpposite) {}

  std::string_view getName() const override { return fName; }
  unsigned getId() const override { return fId; }
  ClassIntf const& getOwner() const override { return *kernelClassObject; }
  TypeIntf const& getType() const override { return fType; }
  int getLower() const override { return 0; }
  int getUpper() const override { return has(kMany) ? kUnlimited : 1; }
  std::string_view getDefault() const override { return {}; }
  bool isReadOnly() const override { return has(kReadOnly); }
  bool isComposite() const override { return has(kComposite); }
  bool isDerived() const override { return has(kDerived); }
  bool isOrdered() const override { return false; }
  bool isUnique() const override { return true; }
  PropertyIntf const* getOpposite() const override { return fOpposite; }
  std::span<PropertyIntf const* const> subsetted() const override { return {}; }
  std::span<PropertyIntf const* const> redefined() const override { return {}; }
  IntrospectiveMethods const& accessors() const override { return ClassObjectIntf::sIntrospectiveMethods; }

 private:
  bool has(Form aForm) const noexcept { return (fForm & aForm) != 0; }

  std::string_view fName;
  unsigned fId;
  unsigned fForm;
  TypeIntf const& fType;
  PropertyIntf const* fOpposite;
};

using Property = Immortal<KernelProperty>;
using F = ClassObjectIntf::KernelFeature;

extern std::array<PropertyIntf const* const, ClassObjectIntf::kKernelFeatureCount> const allProperties;
extern Property containeeKelm;

Immortal<KernelClass> classObject("Kelm::ClassObject", true, KernelClass::Properties(allProperties));
Immortal<KernelClass> model("Kelm::Model", false, KernelClass::Properties());
Immortal<KernelDataType> string("Kelm::String");

Property appliedStereotypeInstance("appliedStereotypeInstance", F::AppliedStereotypeInstance,
                                   classObject.fObject, kReadOnly | kMany | kDerived);
Property modelKelm("modelKelm", F::ModelKelm, model.fObject, kReadOnly | kDerived);
Property containerKelm("containerKelm", F::ContainerKelm, classObject.fObject, kReadOnly | kDerived,
                       &containeeKelm.fObject);
Property containeeKelm("containeeKelm", F::ContaineeKelm, classObject.fObject,
                       kReadOnly | kMany | kDerived | kComposite, &containerKelm.fObject);
Property rootModel("rootModel", F::RootModel, classObject.fObject, kReadOnly | kDerived);
Property externalId("externalId", F::ExternalId, string.fObject, kSettable);
Property externalToolInfo("externalToolInfo", F::ExternalToolInfo, string.fObject, kSettable);
Property uri("uri", F::Uri, string.fObject, kReadOnly | kDerived);

constinit std::array<PropertyIntf const* const, ClassObjectIntf::kKernelFeatureCount> const allProperties = {
    &appliedStereotypeInstance.fObject,
    &modelKelm.fObject,
    &containerKelm.fObject,
    &containeeKelm.fObject,
    &rootModel.fObject,
    &externalId.fObject,
    &externalToolInfo.fObject,
    &uri.fObject};

}  // namespace

constinit ClassIntf const* const kernelClassObject = &classObject.fObject;

constinit MetaPropertyRecord const kernelPropertyTable[] = {
    {nullptr},
    {&appliedStereotypeInstance.fObject},
    {&modelKelm.fObject},
    {&containerKelm.fObject},
    {&containeeKelm.fObject},
    {&rootModel.fObject},
    {&externalId.fObject},
    {&externalToolInfo.fObject},
    {&uri.fObject},
};

}  // namespace Kelm::NSInterface
