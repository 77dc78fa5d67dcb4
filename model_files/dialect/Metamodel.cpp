#include "model_files/dialect/Metamodel.h"

#include "kelm/ClassObject.h"
#include "kelm/Model.h"
#include "uml_metamodel/umlmm/detail/metamodel.h"

namespace umlmm::files {

namespace {

using Kelm::NSInterface::ClassIntf;
using Kelm::NSInterface::DataTypeIntf;
using Kelm::NSInterface::PropertyIntf;

Kind kindOf(DataTypeIntf const& aType) {
  if (!aType.literals().empty()) return Kind::Enumeration;
  static constexpr std::pair<std::string_view, Kind> kPrimitives[] = {
      {"Boolean", Kind::Boolean}, {"Integer", Kind::Integer}, {"UnlimitedNatural", Kind::UnlimitedNatural}};
  for (auto const& [name, kind] : kPrimitives)
    if (aType.getName() == name) return kind;
  return Kind::String;
}

}  // namespace

Metamodel const& Metamodel::instance() {
  static Metamodel const sMetamodel;
  return sMetamodel;
}

Metamodel::Metamodel() {
  Kelm::ImmutablePackage const package = MetaPackage();
  auto const classes = package.get()->classes();
  for (ClassIntf const* const type : classes) {
    Metaclass& added = fMetaclasses.emplace_back();
    added.fNumber = fMetaclasses.size() - 1;
    added.fName = type->getName();
    added.fClass = type;
    added.fAbstract = type->isAbstract();
    fByName.emplace(added.fName, &added);
    fByClass.emplace(type, &added);
  }
  for (Metaclass& metaclass : fMetaclasses)
    for (PropertyIntf const* const property : metaclass.fClass->allProperties()) {
      // The kernel has some of its own, which are no features of UML.
      if (!fByClass.contains(&property->getOwner())) continue;
      Feature const& feature = featureOf(*property);
      metaclass.fFeatures.emplace(feature.fName, &feature);
      metaclass.fOrder.push_back(&feature);
      if (feature.fName == "isReentrant") metaclass.fReentrant = &feature;
    }
  for (Feature& feature : fFeatures)
    if (PropertyIntf const* const opposite = feature.fProperty->getOpposite())
      if (auto const found = fByProperty.find(opposite); found != fByProperty.end())
        feature.fOpposite = found->second;
}

Feature const& Metamodel::featureOf(PropertyIntf const& aProperty) {
  Feature*& known = fByProperty[&aProperty];
  if (known != nullptr) return *known;
  Feature& feature = fFeatures.emplace_back();
  known = &feature;
  feature.fName = aProperty.getName();
  feature.fProperty = &aProperty;
  feature.fMethods = &aProperty.accessors();
  feature.fId = aProperty.getId();
  feature.fMany = aProperty.isMultivalued();
  feature.fComposite = aProperty.isComposite();
  feature.fOrdered = aProperty.isOrdered();
  feature.fDerived = aProperty.isDerived();
  feature.fReadOnly = aProperty.isReadOnly();
  feature.fStored = umlmm::detail::storedFeature(aProperty);
  Kelm::NSInterface::TypeIntf const& type = aProperty.getType();
  if (auto const* const dataType = dynamic_cast<DataTypeIntf const*>(&type)) {
    feature.fKind = kindOf(*dataType);
    if (feature.fKind == Kind::Enumeration) feature.fEnumeration = detail::enumerationType(*dataType);
  } else {
    auto const found = fByClass.find(dynamic_cast<ClassIntf const*>(&type));
    feature.fType = found == fByClass.end() ? nullptr : found->second;
  }
  return feature;
}

Metaclass const& Metamodel::metaclassOf(Kelm::NSInterface::ClassObjectIntf const& aElement) const {
  return *fByClass.at(aElement.getMetaClass().get());
}

}  // namespace umlmm::files
