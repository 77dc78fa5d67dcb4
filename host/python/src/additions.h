#pragma once

#include <string>

#include "python.h"
#include "vesk/host/ClassRecord.h"

namespace vesk::python {

// What Python code adds to kinds of objects: methods, properties and other descriptors, and the special
// members by which Python's syntax reaches an object. A kind is "List" or "Enumeration", all published
// classes of these, or the full name of a class, which stands for all below it too. An addition is found as
// anything in a base class is, and never stands before a published member, on whichever class.

/// Adds the members of a dictionary to a kind, all or none. Throws PythonError, and VeskError for a class
/// that is not defined.
void addMembers(PyObject* kind, PyObject* members);
/// All additions, a dictionary of dictionaries by kind.
[[nodiscard]] Ref allAdditions();

/// Puts what was added to a class by name so far into the dictionary of its Python class, which is being
/// made.
void putAdditions(host::ClassRecord const& record, PyObject* dictionary);
/// Whether a Python class has a member of a name because it was added to a kind.
[[nodiscard]] bool hasAddition(PyTypeObject* type, PyObject* name);
/// Whether a descriptor was added, so that scripts may set and delete through it.
[[nodiscard]] bool isAddition(PyObject* member) noexcept;

/// The function that makes an object of a class with keywords, or null: the nearest `__construct__`, which is
/// called with the class, a tuple of arguments and a dictionary of keywords.
[[nodiscard]] PyObject* makerWithKeywords(PyTypeObject* type);

/// Called once, before the first Python class is made: the place to add members without a cost at import.
void callBeforeFirstClass(PyObject* function);
void runBeforeFirstClass();

/// A dictionary that lives as long as a model is open, the same for all objects of that model and its
/// elements. Throws for an object of another kind, and for one whose model is closed.
[[nodiscard]] Ref stateOfModel(PyObject* object);
/// Copies what an object stands for, with all that it owns, beside it or into `place`. Throws for what can't
/// be copied.
[[nodiscard]] Ref copyOf(PyObject* object, PyObject* place);
/// The library keeps a model no longer by itself.
void letGoOf(PyObject* object);

// What registries of members share.

[[noreturn]] void raisePublished(std::string const& name, host::ClassRecord const& cls);
/// Whether a class could be filled.
[[nodiscard]] bool canBeFilled(host::ClassRecord& cls);
/// The class of a full name; throws a VeskError that names the nearest one.
[[nodiscard]] host::ClassRecord& classToExtend(PyObject* className);

}  // namespace vesk::python
