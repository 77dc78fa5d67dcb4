#include <array>

#include "KelmClass.h"
#include "commonMethods.h"
#include "descriptors.h"
#include "dynamicValues.h"
#include "kelm/ElementQueries.h"
#include "kelm/ModelElementIntf.h"
#include "kelm_mi/KelmmiPropertyFactory.h"
#include "snapshots.h"

namespace Kelm::mi {

namespace {

using NSInterface::ClassObjectIntf;

// The queries of the metamodel know elements as the kernel's own class of elements.
template <class T>
ImmutableSequence<T> referencedBy(T const& aElement) {
  if (aElement.isNull()) raiseNullReference("kelm/Kelm/ClassObject_h");
  Deviant const deviant = aElement.getDeviant();
  auto const* const element = dynamic_cast<NSInterface::ModelElementIntf const*>(aElement.get());
  if (element == nullptr || elementQueries().referencedBy == nullptr)
    return snapshot<T>(std::array<ClassObjectIntf const*, 0>(), deviant);
  return ImmutableSequence<T>::adopt(elementQueries().referencedBy(*element, deviant), deviant);
}

AnyValue getProperty(ElementInstance const& aElement, String const& aName) {
  return readProperty(aElement, propertyOf(aElement.fElement, aName));
}
void setProperty(ElementInstance const& aElement, String const& aName, AnyValue const& aValue) {
  writeProperty(aElement, propertyOf(aElement.fElement, aName), aValue);
}
String getPropertyText(ImmutableClassObject const& aElement, String const& aName) {
  return textOfProperty(aElement, propertyOf(aElement, aName));
}
bool isSet(ImmutableClassObject const& aElement, String const& aName) {
  return isPropertySet(aElement, propertyOf(aElement, aName));
}
void unset(ClassObject const& aElement, String const& aName) {
  unsetProperty(aElement, propertyOf(aElement, aName));
}

constexpr char kImmutableObject[] = "Kelm.ImmutableObject";
constexpr char kObject[] = "Kelm.Object";
constexpr char kImmutableElement[] = "Kelm.ImmutableClassObject";
constexpr char kElement[] = "Kelm.ClassObject";
constexpr char kReadOnlyElements[] = "Kelm.ImmutableSequenceOfImmutableClassObject";

constexpr std::array kImmutableObjectMethods{
    isvalidRow<ImmutableObject>(kImmutableObject),
    asDeviantRow<ImmutableObject>(kImmutableObject, 0),
    getMetaTypeRow<ImmutableObject>(kImmutableObject),
    castRow<ImmutableObject, ImmutableObject>(kImmutableObject),
    asImmutableRow<ImmutableObject, ImmutableObject>(kImmutableObject, kImmutableObject),
    asMutableRow<ImmutableObject, Object>(kObject, kImmutableObject),
};

constexpr std::array kObjectMethods{
    MethodRow{
        "destroy", 0, Form::MemberFunction, {"", "void", kObject}, &bindMember<&Object::destroy, Object>},
    asDeviantRow<Object>(kObject, kOverrides),
    getMetaTypeRow<Object>(kObject),
    castRow<Object, Object>(kObject),
    asImmutableRow<ImmutableObject, Object>(kImmutableObject, kObject),
};

constexpr std::array kImmutableElementMethods{
    isvalidRow<ImmutableClassObject>(kImmutableElement),
    asDeviantRow<ImmutableClassObject>(kImmutableElement, 0),
    getMetaTypeRow<ImmutableObject>(kImmutableObject),
    castRow<ImmutableClassObject, ImmutableObject>(kImmutableObject),
    asImmutableRow<ImmutableClassObject, ImmutableClassObject>(kImmutableElement, kImmutableElement),
    asMutableRow<ImmutableClassObject, ClassObject>(kElement, kImmutableElement),
    MethodRow{"MetaClass",
              0,
              Form::FreeFunction,
              {"", "Kelm.ImmutableClass", nullptr},
              &bindFunction<&ImmutableClassObject::MetaClass>},
    MethodRow{"getProperty",
              0,
              Form::MemberFunction,
              {"name", kAnyValue, kImmutableElement, {"char vector"}},
              &bindFunction<&getProperty>},
    MethodRow{"getPropertyText",
              0,
              Form::MemberFunction,
              {"name", "char vector", kImmutableElement, {"char vector"}},
              &bindFunction<&getPropertyText>},
    MethodRow{"isSet",
              0,
              Form::MemberFunction,
              {"name", "logical scalar", kImmutableElement, {"char vector"}},
              &bindFunction<&isSet>},
    MethodRow{"referencedBy",
              0,
              Form::MemberFunction,
              {"", kReadOnlyElements, kImmutableElement},
              &bindFunction<&referencedBy<ImmutableClassObject>>},
};

constexpr std::array kElementMethods{
    MethodRow{"destroy",
              0,
              Form::MemberFunction,
              {"", "void", kElement},
              &bindMember<&ClassObject::destroy, ClassObject>},
    asDeviantRow<ClassObject>(kElement, kOverrides),
    castRow<ClassObject, Object>(kObject),
    asImmutableRow<ImmutableClassObject, ClassObject>(kImmutableElement, kElement),
    MethodRow{"setProperty",
              0,
              Form::MemberFunction,
              {"name, value", "void", kElement, {"char vector", kAnyValue}},
              &bindFunction<&setProperty>},
    MethodRow{
        "unset", 0, Form::MemberFunction, {"name", "void", kElement, {"char vector"}}, &bindFunction<&unset>},
    MethodRow{"referencedBy",
              kOverrides,
              Form::MemberFunction,
              {"", "Kelm.ImmutableSequenceOfClassObject", kElement},
              &bindFunction<&referencedBy<ClassObject>>},
};

void addText(vesk::VeskClass* aClass, char const* aName, unsigned aId, Mutability aMutability) {
  aClass->addProperty(std::make_unique<KelmmiTextProperty>(kImmutableElement, aName,
                                                           &ClassObjectIntf::sIntrospectiveMethods, aId,
                                                           "char", MultiplicityOptional, aMutability, 0)
                          .release());
}

/// The features that the kernel gives every element.
void addKernelFeatures(vesk::VeskClass* aClass) {
  using F = ClassObjectIntf::KernelFeature;
  KelmmiPropertyFactory const factory{aClass, kImmutableElement, &ClassObjectIntf::sIntrospectiveMethods};
  factory.ClassObject("appliedStereotypeInstance", MultiplicityMany, MutabilityReadOnly,
                      F::AppliedStereotypeInstance, kReadOnlyElements, 0);
  factory.ClassObject("modelKelm", MultiplicityOptional, MutabilityReadOnly, F::ModelKelm,
                      "Kelm.ImmutableModel", 0);
  factory.ClassObject("containerKelm", MultiplicityOptional, MutabilityReadOnly, F::ContainerKelm,
                      kImmutableElement, 0);
  factory.ClassObject("containeeKelm", MultiplicityMany, MutabilityReadOnly, F::ContaineeKelm,
                      kReadOnlyElements, 0);
  factory.ClassObject("rootModel", MultiplicityOptional, MutabilityReadOnly, F::RootModel, kImmutableElement,
                      0);
  addText(aClass, "externalId", F::ExternalId, MutabilityChangeable);
  addText(aClass, "externalToolInfo", F::ExternalToolInfo, MutabilityChangeable);
  addText(aClass, "uri", F::Uri, MutabilityReadOnly);
}

constexpr std::array kImmutableObjectOnly{kImmutableObject};
constexpr std::array kElementSupers{static_cast<char const*>(kImmutableElement),
                                    static_cast<char const*>(kObject)};

constexpr std::array kClasses{
    KelmClass{"Object", Access::ReadOnly, "A read-only reference to an object", {}, kImmutableObjectMethods},
    KelmClass{"Object", Access::Changeable, "A changeable reference to an object", kImmutableObjectOnly,
              kObjectMethods},
    KelmClass{"ClassObject",
              Access::ReadOnly,
              "A read-only reference to an element of a model",
              kImmutableObjectOnly,
              kImmutableElementMethods,
              {},
              &addKernelFeatures},
    KelmClass{"ClassObject", Access::Changeable, "A changeable reference to an element of a model",
              kElementSupers, kElementMethods},
};

}  // namespace

std::span<KelmClass const> objectClasses() { return kClasses; }

}  // namespace Kelm::mi
