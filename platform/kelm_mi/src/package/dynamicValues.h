#pragma once

#include <string>
#include <string_view>

#include "frame/Boxing.h"
#include "frame/Unboxing.h"
#include "kelm/ClassObject.h"
#include "kelm/meta.h"
#include "vesk/VeskInterface.h"
#include "vesk/VeskValue.h"

/// Reading and writing features that are known at run time only.
namespace Kelm::mi {

/// The property of a class with this name, or null. The first letter may be upper or lower case: a feature is
/// "ownedEnd" as a property and "OwnedEnd" as a meta property.
NSInterface::PropertyIntf const* findProperty(NSInterface::ClassIntf const& aClass, std::string_view aName);
/// The property of the element's class; raises for a null element and for a name that the class has not.
NSInterface::PropertyIntf const& propertyOf(ImmutableClassObject const& aElement, String const& aName);
/// Raises unless the property is one of the element's class.
void checkHasProperty(ImmutableClassObject const& aElement, NSInterface::PropertyIntf const& aProperty);

/// A value of whatever type, as the host's front has it.
struct AnyValue {
  vesk::VeskValue fValue;
};
/// Its data type.
inline constexpr char kAnyValue[] = "any";

/// An element together with the instance that a call has for it.
struct ElementInstance {
  vesk::VeskInterfacePtr fInstance;
  ImmutableClassObject fElement;
};

/// What the attribute of the property's name reads and takes, whatever the type: as changeable as the
/// instance. Both raise what the attribute raises, and for a property that the element's class has not.
AnyValue readProperty(ElementInstance const& aElement, NSInterface::PropertyIntf const& aProperty);
void writeProperty(ElementInstance const& aElement, NSInterface::PropertyIntf const& aProperty,
                   AnyValue const& aValue);
/// The value of a single-valued property of a data type as text: a text itself, digits, "true", "*", the name
/// of a literal; empty for none. Raises the incorrect-type failure for many values and for elements.
String textOfProperty(ImmutableClassObject const& aElement, NSInterface::PropertyIntf const& aProperty);
bool isPropertySet(ImmutableClassObject const& aElement, NSInterface::PropertyIntf const& aProperty);
void unsetProperty(ClassObject const& aElement, NSInterface::PropertyIntf const& aProperty);

template <>
struct ArgumentUnboxer<AnyValue> {
  static UnboxedArgument<AnyValue> unbox(vesk::VeskValue aValue) { return {{aValue}, true}; }
};
template <>
struct Boxer<AnyValue> {
  static vesk::VeskValue box(AnyValue aValue) { return aValue.fValue; }
};
template <>
struct ArgumentUnboxer<ElementInstance> {
  static UnboxedArgument<ElementInstance> unbox(vesk::VeskValue aValue);
};

}  // namespace Kelm::mi
