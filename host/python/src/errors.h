#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "python.h"
#include "vesk/host/Extensions.h"

namespace vesk::python {

/// Turns the C++ exception that is being handled into a Python error: the exception class that a library
/// names for its failures, MemoryError, TypeError for calls and values that do not fit, ValueError for
/// values out of range, NameError, ImportError, and RuntimeError for all others. Call it in a catch block.
void raiseCurrentException() noexcept;

/// What the front adds to the text of a library's failure of a kind; empty for nothing.
using Explain = std::function<std::string(host::FailureKind)>;
/// The same with an explanation. A failed assignment to what is read-only is an AttributeError too.
void raiseExplained(Explain const& explain, bool isAssignment = false) noexcept;

/// Sets the function that answers, for one of Python's own exception classes, the class that errors of that
/// kind are raised as. Until then, and where it fails, they are raised as Python's own.
void setErrorFamily(PyObject* function) noexcept;

/// Runs `work` and answers what it answers; `failure` with a Python error set if it throws. Every C function
/// that Python calls goes through here once.
template <class Result, class Work>
Result guarded(Result failure, Work&& work) noexcept {
  try {
    return work();
  } catch (...) {
    raiseCurrentException();
    return failure;
  }
}

/// Sets a Python error and throws PythonError.
[[noreturn]] void raise(PyObject* type, std::string const& text);
/// AttributeError with the two attributes that Python's own has, so that tools can go on from there.
[[noreturn]] void raiseAttributeError(std::string const& text, PyObject* object, PyObject* name);

/// Adds a line to the Python error that is set, shown below its text. The line is made while the error is
/// put aside, so that making it may run Python code. Nothing for an empty line.
void addNote(std::function<std::string()> const& makeNote) noexcept;

/// The Python exception class of a full name ("Kelm.Error"), made when first asked for; borrowed.
[[nodiscard]] PyObject* failureClass(char const* fullName);
/// The class of those of its failures that tell of an assignment to what is read-only: an AttributeError too.
[[nodiscard]] PyObject* readOnlyFailureClass(char const* fullName);
/// The full name of that ("Kelm.ReadOnlyError").
[[nodiscard]] std::string readOnlyFailureName(std::string_view fullName);

}  // namespace vesk::python
