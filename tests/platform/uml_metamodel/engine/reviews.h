#pragma once

#include "models.h"
#include "uml_metamodel/umlmm/MetamodelExtension.h"

inline Kelm::ImmutableDataType dataType(std::string_view aName) {
  for (auto const* const type : umlmm::MetaPackage().get()->dataTypes())
    if (type->getName() == aName) return Kelm::ImmutableDataType(type, Kelm::metaDeviant());
  throw std::logic_error("no data type " + std::string(aName));
}

/// Reviews of classes with findings: metaclasses, features of `Class`, a pair, parts, and one of each kind of
/// value. They join when first asked for.
inline Kelm::ImmutablePackage const& reviews() {
  static Kelm::ImmutablePackage const package = [] {
    using umlmm::MetamodelExtension;
    MetamodelExtension extension("reviews");
    auto const review = extension.addMetaclass("Review", {umlmm::ImmutableNamedElement::MetaClass()});
    auto const finding = extension.addMetaclass("Finding", {umlmm::ImmutableElement::MetaClass()});
    MetamodelExtension::Metaclass const clazz = umlmm::ImmutableClass::MetaClass();
    auto const subject =
        extension.addFeature(review, {.fName = "subject", .fType = clazz, .fUpper = 2, .fOrdered = true});
    auto const reviews = extension.addFeature(
        clazz, {.fName = "review", .fType = review, .fUpper = MetamodelExtension::kUnlimited});
    extension.setOpposites(subject, reviews);
    auto const parts = extension.addFeature(review, {.fName = "finding",
                                                     .fType = finding,
                                                     .fUpper = MetamodelExtension::kUnlimited,
                                                     .fComposite = true,
                                                     .fOrdered = true});
    auto const whole = extension.addFeature(finding, {.fName = "review", .fType = review});
    extension.setOpposites(parts, whole);
    extension.addFeature(clazz, {.fName = "owner of record",
                                 .fType = MetamodelExtension::Metaclass(umlmm::ImmutableActor::MetaClass())});
    extension.addFeature(clazz, {.fName = "annex", .fType = finding, .fComposite = true});
    extension.addFeature(clazz, {.fName = "note", .fType = dataType("String")});
    extension.addFeature(
        clazz, {.fName = "remark", .fType = dataType("String"), .fUpper = MetamodelExtension::kUnlimited});
    extension.addFeature(clazz, {.fName = "effort", .fType = dataType("Integer"), .fLower = 1});
    extension.addFeature(clazz,
                         {.fName = "isDone", .fType = dataType("Boolean"), .fLower = 1, .fDefault = "true"});
    extension.addFeature(clazz, {.fName = "secrecy", .fType = dataType("VisibilityKind")});
    return extension.commit();
  }();
  return package;
}
