#pragma once

#include "instances.h"
#include "vesk/PropertyDoor.h"
#include "vesk/host/ClassRecord.h"

/// The short roads that libraries offer beside the descriptors of their properties.
namespace vesk::python {

/// Tests shut the doors to try the road of the descriptors and methods, which all hosts have.
[[nodiscard]] bool areDoorsShut();

/// The door to a property, closed if there is none that the front can use, or if doors are shut.
[[nodiscard]] PropertyDoor openDoor(host::PropertyRecord const& property);

/// The value of a property as a new reference; null, without an error, where the descriptor is to be asked.
[[nodiscard]] PyObject* readThrough(PropertyDoor const& door, PyInstance& instance);
/// Sets the property; false, with nothing done, where the descriptor is to be asked. `accepted` is the class
/// of the object that was accepted last, or null: it is looked for among all superclasses once.
[[nodiscard]] bool writeThrough(PropertyDoor const& door, host::PropertyRecord const& property,
                                PyInstance& instance, PyObject* value, host::ClassRecord const*& accepted);

}  // namespace vesk::python
