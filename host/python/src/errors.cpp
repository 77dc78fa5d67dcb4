#include "errors.h"

#include <map>
#include <new>

#include "names.h"
#include "packages.h"
#include "vesk/VeskError.h"
#include "vesk/host/Extensions.h"

namespace vesk::python {

namespace {

PyObject* classOfKind(VeskError::Kind kind) noexcept {
  switch (kind) {
    case VeskError::Kind::Match:
      return PyExc_TypeError;
    case VeskError::Kind::Range:
      return PyExc_ValueError;
    case VeskError::Kind::Name:
      return PyExc_NameError;
    case VeskError::Kind::Load:
      return PyExc_ImportError;
    case VeskError::Kind::General:
      break;
  }
  return PyExc_RuntimeError;
}

PyObject* sErrorFamily = nullptr;

/// The class of the package's own family that stands for one of Python's.
Ref ofFamily(PyObject* type) noexcept {
  PyErr_Clear();  // another error comes
  Ref const function = Ref::shared(sErrorFamily);
  Ref own(function ? PyObject_CallOneArg(function.get(), type) : nullptr);
  if (own && PyExceptionClass_Check(own.get())) return own;
  PyErr_Clear();
  return Ref::shared(type);
}

void setError(PyObject* type, char const* text) noexcept {
  PyObject* message =
      PyUnicode_DecodeUTF8(text, static_cast<Py_ssize_t>(std::char_traits<char>::length(text)), "replace");
  if (!message) return;
  PyErr_SetObject(ofFamily(type).get(), message);
  Py_DECREF(message);
}

PyObject* classOfFailure(char const* name, bool isRefusedAssignment) {
  if (!name) return PyExc_RuntimeError;
  return isRefusedAssignment ? readOnlyFailureClass(name) : failureClass(name);
}

void setNamedError(std::exception const& failure, Explain const& explain, bool isAssignment) {
  host::FailureKind const kind = host::failureKind(failure);
  std::string const text = failure.what() + (explain ? explain(kind) : std::string());
  bool const isRefusedAssignment = isAssignment && kind == host::FailureKind::ReadOnly;
  setError(classOfFailure(host::failureName(failure), isRefusedAssignment), text.c_str());
}

/// A class of failures under its full name, made when first asked for.
PyObject* classNamed(std::string const& fullName, char const* doc, PyObject* bases) {
  // Classes of failures are needed until the interpreter ends.
  static auto& sClasses = *new std::map<std::string, PyObject*>;
  PyObject*& cls = sClasses[fullName];
  if (cls) return cls;
  std::size_t const dot = fullName.find('.');
  std::string const qualified = moduleNameOf(fullName.substr(0, dot)) + fullName.substr(dot);
  Ref made = Ref::checked(PyErr_NewExceptionWithDoc(qualified.c_str(), doc, bases, nullptr));
  // Making it may have run a finalizer that asked for it.
  if (!cls) cls = made.release();
  return cls;
}

/// Before 3.11 Python has no notes of its own: who looks for them finds them all the same.
void appendNote(PyObject* error, PyObject* note) {
#if PY_VERSION_HEX >= 0x030B0000
  Ref const done = Ref::checked(PyObject_CallMethod(error, "add_note", "O", note));
#else
  Ref notes(PyObject_GetAttrString(error, "__notes__"));
  if (!notes) {
    PyErr_Clear();
    notes = Ref::checked(PyList_New(0));
    checkedInt(PyObject_SetAttrString(error, "__notes__", notes.get()));
  }
  checkedInt(PyList_Append(notes.get(), note));
#endif
}

}  // namespace

void setErrorFamily(PyObject* function) noexcept { Py_XSETREF(sErrorFamily, Py_NewRef(function)); }

void raiseCurrentException() noexcept { raiseExplained({}); }

void raiseExplained(Explain const& explain, bool isAssignment) noexcept {
  try {
    throw;
  } catch (PythonError const&) {
  } catch (std::bad_alloc const&) {
    PyErr_NoMemory();
  } catch (VeskError const& error) {
    setError(classOfKind(error.kind()), error.what());
  } catch (std::exception const& error) {
    try {
      setNamedError(error, explain, isAssignment);
    } catch (PythonError const&) {
    } catch (...) {
      PyErr_NoMemory();
    }
  } catch (...) {
    setError(PyExc_RuntimeError, "unknown C++ exception");
  }
}

void raise(PyObject* type, std::string const& text) {
  setError(type, text.c_str());
  throw PythonError();
}

void raiseAttributeError(std::string const& text, PyObject* object, PyObject* name) {
  Ref const message = pythonText(text);
  Ref const type = ofFamily(PyExc_AttributeError);
  Ref const error = Ref::checked(PyObject_CallOneArg(type.get(), message.get()));
  checkedInt(PyObject_SetAttrString(error.get(), "name", name));
  checkedInt(PyObject_SetAttrString(error.get(), "obj", object));
  PyErr_SetObject(type.get(), error.get());
  throw PythonError();
}

void addNote(std::function<std::string()> const& makeNote) noexcept {
  PyObject *type, *value, *trace;
  PyErr_Fetch(&type, &value, &trace);
  PyErr_NormalizeException(&type, &value, &trace);
  try {
    if (std::string const note = makeNote(); !note.empty()) appendNote(value, pythonText(note).get());
  } catch (...) {
    PyErr_Clear();  // the error itself matters more
  }
  PyErr_Restore(type, value, trace);
}

PyObject* failureClass(char const* fullName) {
  Ref const family = ofFamily(PyExc_Exception);
  bool const hasFamily = family.get() != PyExc_Exception;
  Ref const bases = Ref::checked(hasFamily ? PyTuple_Pack(2, family.get(), PyExc_RuntimeError)
                                           : PyTuple_Pack(1, PyExc_RuntimeError));
  return classNamed(fullName, "A failure that the library reports.", bases.get());
}

PyObject* readOnlyFailureClass(char const* fullName) {
  Ref const bases = Ref::checked(PyTuple_Pack(2, failureClass(fullName), PyExc_AttributeError));
  return classNamed(readOnlyFailureName(fullName), "A failure to set what is read-only.", bases.get());
}

std::string readOnlyFailureName(std::string_view fullName) {
  std::size_t const start = fullName.find('.') + 1;
  return std::string(fullName.substr(0, start)).append("ReadOnly").append(fullName.substr(start));
}

}  // namespace vesk::python
