#pragma once

#include "python.h"
#include "vesk/host/ClassRecord.h"

namespace vesk::python {

// Members of published classes are descriptors in the dictionaries of the Python classes.
//
// A property is a data descriptor, which takes the short road to its values where there is one (doors.h). A
// method is bound when it is looked up: what it means depends on the class that is asked (overloads of
// several classes take part), and whether the first argument is a receiver depends on how it is asked. Bound
// methods are called without a detour through a tuple of arguments and come from a free list. A literal is a
// method that gives the same instance with and without a call.
extern PyTypeObject gPropertyType;
extern PyTypeObject gMethodType;
extern PyTypeObject gLiteralType;
extern PyTypeObject gBoundMethodType;
void prepareMemberTypes();

[[nodiscard]] inline bool isProperty(PyObject* member) noexcept { return Py_IS_TYPE(member, &gPropertyType); }
[[nodiscard]] inline bool isMethod(PyObject* member) noexcept { return Py_IS_TYPE(member, &gMethodType); }

[[nodiscard]] Ref makeProperty(host::PropertyRecord const& property);
/// `owner` is the class that declares the methods of the name.
[[nodiscard]] Ref makeMethod(VeskInterned name, host::ClassRecord& owner);
[[nodiscard]] Ref makeLiteral(VeskInterned name, host::ClassRecord& owner);
/// A function of a package, ready to be called.
[[nodiscard]] Ref makeFunction(host::Member const& function);

/// The value of a property of an object whose class has it; throws.
[[nodiscard]] PyObject* readProperty(PyObject* property, PyObject* object);
/// Sets it; throws.
void writeProperty(PyObject* property, PyObject* object, PyObject* value);
/// Adds what the property means to the error that is set, if somebody knows.
[[gnu::cold]] void addMeaning(PyObject* property) noexcept;
/// The method `object.name`; throws.
[[nodiscard]] PyObject* bindToInstance(PyObject* method, PyObject* object);

}  // namespace vesk::python
