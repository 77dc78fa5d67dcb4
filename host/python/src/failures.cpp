#include "failures.h"

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

void setError(PyObject* type, char const* text) noexcept {
  PyObject* message =
      PyUnicode_DecodeUTF8(text, static_cast<Py_ssize_t>(std::char_traits<char>::length(text)), "replace");
  if (!message) return;
  PyErr_SetObject(type, message);
  Py_DECREF(message);
}

void setNamedError(std::exception const& failure) {
  char const* name = host::failureName(failure);
  setError(name ? failureClass(name) : PyExc_RuntimeError, failure.what());
}

}  // namespace

void raiseCurrentException() noexcept {
  try {
    throw;
  } catch (PythonError const&) {
  } catch (std::bad_alloc const&) {
    PyErr_NoMemory();
  } catch (VeskError const& error) {
    setError(classOfKind(error.kind()), error.what());
  } catch (std::exception const& error) {
    try {
      setNamedError(error);
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
  Ref const error = Ref::checked(PyObject_CallOneArg(PyExc_AttributeError, message.get()));
  checkedInt(PyObject_SetAttrString(error.get(), "name", name));
  checkedInt(PyObject_SetAttrString(error.get(), "obj", object));
  PyErr_SetObject(PyExc_AttributeError, error.get());
  throw PythonError();
}

void addNote(std::function<std::string()> const& makeNote) noexcept {
  PyObject *type, *value, *trace;
  PyErr_Fetch(&type, &value, &trace);
  PyErr_NormalizeException(&type, &value, &trace);
  try {
    Ref const note = pythonText(makeNote());
    Ref const done = Ref::checked(PyObject_CallMethod(value, "add_note", "O", note.get()));
  } catch (...) {
    PyErr_Clear();  // the error itself matters more
  }
  PyErr_Restore(type, value, trace);
}

PyObject* failureClass(char const* fullName) {
  // Classes of failures are needed until the interpreter ends.
  static auto& sClasses = *new std::map<std::string, PyObject*>;
  PyObject*& cls = sClasses[fullName];
  if (!cls) {
    std::string_view const name = fullName;
    std::size_t const dot = name.find('.');
    std::string const module = moduleNameOf(name.substr(0, dot));
    std::string const qualified = module + "." + std::string(name.substr(dot + 1));
    cls = checked(PyErr_NewExceptionWithDoc(qualified.c_str(), "A failure that the library reports.",
                                            PyExc_RuntimeError, nullptr));
  }
  return cls;
}

}  // namespace vesk::python
