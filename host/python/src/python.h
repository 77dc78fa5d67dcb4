#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <cstddef>
#include <utility>

namespace vesk::python {

// Everything in the front runs with the interpreter's lock held. What is long may give it up inside a call,
// far from all objects (lock.h). A `Ref` is a reference that is owned; a plain `PyObject*` is borrowed, as an
// argument for the length of the call. What throws has set a Python error or throws what the host and its
// libraries throw; `guarded` turns that into one.

/// Thrown where Python has set an error: it travels to the nearest C function and is left as it stands.
struct PythonError {};

/// Owns one reference to a Python object, or none.
class Ref {
 public:
  constexpr Ref() noexcept = default;
  /// Takes over a reference.
  explicit Ref(PyObject* object) noexcept : fObject(object) {}
  Ref(Ref&& other) noexcept : fObject(std::exchange(other.fObject, nullptr)) {}
  Ref& operator=(Ref&& other) noexcept {
    std::swap(fObject, other.fObject);
    return *this;
  }
  ~Ref() { Py_XDECREF(fObject); }

  /// Takes over the result of a Python call; throws PythonError for null.
  [[nodiscard]] static Ref checked(PyObject* object) {
    if (!object) throw PythonError();
    return Ref(object);
  }
  [[nodiscard]] static Ref shared(PyObject* object) noexcept { return Ref(Py_XNewRef(object)); }

  [[nodiscard]] PyObject* get() const noexcept { return fObject; }
  [[nodiscard]] PyObject* release() noexcept { return std::exchange(fObject, nullptr); }
  explicit operator bool() const noexcept { return fObject != nullptr; }

 private:
  PyObject* fObject = nullptr;
};

/// Passes an object of a Python call on; throws PythonError for null.
inline PyObject* checked(PyObject* object) {
  if (!object) throw PythonError();
  return object;
}
/// The same for calls that answer -1 for an error.
template <class Int>
Int checkedInt(Int result) {
  if (result < 0) throw PythonError();
  return result;
}

/// The members of a class itself. From 3.12 on those of Python's own classes lie with the interpreter.
inline Ref ownMembers(PyTypeObject* type) {
#if PY_VERSION_HEX >= 0x030C0000
  return Ref::checked(PyType_GetDict(type));
#else
  return Ref::shared(type->tp_dict);
#endif
}
inline bool hasOwnMember(PyTypeObject* type, PyObject* name) {
  return checkedInt(PyDict_Contains(ownMembers(type).get(), name)) != 0;
}

/// Called with the number of each step of a loop that may be long: once in a while lets handlers of signals
/// run, so that Ctrl-C ends the loop. Throws what a handler raises.
inline void checkSignals(std::size_t step) {
  if (step % 1024 == 1023) [[unlikely]]
    checkedInt(PyErr_CheckSignals());
}

}  // namespace vesk::python
