#pragma once

#include <string>

#include "python.h"

namespace vesk::python {

// What tools ask for, such as `help`: the front tells what the host's records say, and the package may tell
// more.

/// Sets the function that is asked: `function(what, cls, name, own)`, where `what` is "doc", "signature" or
/// "meaning",
/// `cls` the class that is asked about or that has the member of a name (None for a function of a package),
/// `name` that of the member or None, and `own` the front's own text or None.
void setDescriber(PyObject* function) noexcept;

/// The text for people; the front's own where nobody knows a better one.
[[nodiscard]] Ref described(PyObject* cls, PyObject* name, Ref own);
/// What the member means, in a sentence for errors; empty where nobody knows.
[[nodiscard]] std::string meaningInWords(PyObject* cls, PyObject* name);
/// The signature as module inspect has it. Throws AttributeError where there is none to tell.
[[nodiscard]] Ref signatureOf(PyObject* cls, PyObject* name);

}  // namespace vesk::python
