#include "texts.h"

#include "errors.h"
#include "names.h"

namespace vesk::python {

namespace {

PyObject* sDescriber = nullptr;

Ref ask(char const* what, PyObject* cls, PyObject* name, PyObject* own) {
  Ref const function = Ref::shared(sDescriber);
  return function ? Ref(PyObject_CallFunction(function.get(), "sOOO", what, cls, name, own)) : Ref();
}

}  // namespace

void setDescriber(PyObject* function) noexcept { Py_XSETREF(sDescriber, Py_NewRef(function)); }

Ref described(PyObject* cls, PyObject* name, Ref own) {
  Ref told = ask("doc", cls, name, own.get());
  if (told && PyUnicode_Check(told.get())) return told;
  PyErr_Clear();
  return own;
}

std::string meaningInWords(PyObject* cls, PyObject* name) {
  Ref const told = ask("meaning", cls, name, Py_None);
  if (told && PyUnicode_Check(told.get())) return utf8(told.get());
  PyErr_Clear();
  return {};
}

Ref signatureOf(PyObject* cls, PyObject* name) {
  Ref told = ask("signature", cls, name, Py_None);
  if (told && told.get() != Py_None) return told;
  if (PyErr_Occurred()) throw PythonError();
  raise(PyExc_AttributeError, "__signature__");
}

}  // namespace vesk::python
