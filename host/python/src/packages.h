#pragma once

#include <string>
#include <string_view>

#include "python.h"
#include "vesk/host/ClassRecord.h"

namespace vesk::python {

/// Makes a Python module the place where the members of a package are found: each class is made when it is
/// first asked for, which fills it and all above it.
void attachPackage(PyObject* module, std::string_view package);
void preparePackageType();

/// The name of the module that shows a package; the package's own name until one is attached.
[[nodiscard]] std::string moduleNameOf(std::string_view package);

/// Adds a method with a Python body to a class whose library takes extensions. Throws PythonError, and
/// VeskError for a class that is not defined or takes none.
void extendClass(PyObject* className, PyObject* name, PyObject* function);

/// Lets libraries reach the attributes of Python objects by name.
void prepareAttributeAccess();

/// All that a class tells of itself, as a dictionary.
[[nodiscard]] Ref describeClass(host::ClassRecord& record);
/// The functions of a package, as a list of dictionaries.
[[nodiscard]] Ref describeFunctions(std::string_view package);

}  // namespace vesk::python
