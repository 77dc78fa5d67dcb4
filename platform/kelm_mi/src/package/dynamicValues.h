#pragma once

#include <string>
#include <string_view>

#include "kelm/ClassObject.h"
#include "kelm/meta.h"
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

/// The host object of the value, read-only: an element, a literal or a sequence; the empty value for none.
/// Raises the incorrect-type failure for a value that is no object, such as a number: see `textOfProperty`.
vesk::VeskValue readProperty(ImmutableClassObject const& aElement,
                             NSInterface::PropertyIntf const& aProperty);
/// The value of a single-valued property of a data type as text: a text itself, digits, "true", "*", the name
/// of a literal; empty for none.
String textOfProperty(ImmutableClassObject const& aElement, NSInterface::PropertyIntf const& aProperty);
bool isPropertySet(ImmutableClassObject const& aElement, NSInterface::PropertyIntf const& aProperty);
void unsetProperty(ClassObject const& aElement, NSInterface::PropertyIntf const& aProperty);

}  // namespace Kelm::mi
