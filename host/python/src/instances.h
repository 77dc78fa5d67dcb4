#pragma once

#include <cstddef>

#include "python.h"
#include "vesk/host/Instance.h"

namespace vesk::python {

/// The host instance inside a Python object; its references are those of the object.
class PyInstance final : public host::Instance {
 public:
  using Instance::Instance;
  void retain() override { Py_INCREF(object()); }
  void release() override { Py_DECREF(object()); }
  [[nodiscard]] PyObject* object() noexcept;
};

/// A Python object of a published class: the object's head, the list of weak references and the instance.
/// It is outside the cycle collector, for it holds no Python object but its class.
struct InstanceObject {
  PyObject_HEAD PyObject* fWeakReferences;
  alignas(PyInstance) unsigned char fInstance[sizeof(PyInstance)];
};

inline PyObject* PyInstance::object() noexcept {
  return reinterpret_cast<PyObject*>(reinterpret_cast<char*>(this) - offsetof(InstanceObject, fInstance));
}

/// The common base of all published classes, and the class of these classes.
extern PyTypeObject gInstanceType;
extern PyTypeObject gMetaType;
/// The base of the published enumerations.
extern PyTypeObject gEnumerationType;
void prepareInstanceType();

/// Whether an object is one of a published class: only these have the class of classes, and scripts can't
/// subclass them.
[[nodiscard]] inline bool isInstance(PyObject* object) noexcept {
  return Py_IS_TYPE(reinterpret_cast<PyObject*>(Py_TYPE(object)), &gMetaType);
}

/// The instance in an object for which isInstance holds.
[[nodiscard]] inline PyInstance& instanceOf(PyObject* object) noexcept {
  return *reinterpret_cast<PyInstance*>(reinterpret_cast<InstanceObject*>(object)->fInstance);
}
/// The Python object of an instance, borrowed: the front makes all instances.
[[nodiscard]] inline PyObject* objectOf(host::Instance& instance) noexcept {
  return static_cast<PyInstance&>(instance).object();
}

/// Makes an unbound object of a class; the host's maker of instances.
[[nodiscard]] host::Instance* makePyInstance(host::ClassRecord& cls);

/// Ends an object: what every published class has for its deallocator.
void deallocateInstance(PyObject* object);

/// Runs the comparison of `==`, `<` and so on that both classes of values and of references use.
PyObject* compareInstances(PyObject* left, PyObject* right, int operation);

}  // namespace vesk::python
