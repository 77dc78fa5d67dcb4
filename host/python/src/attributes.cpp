#include "vesk/host/Attributes.h"

#include "instances.h"
#include "names.h"
#include "packages.h"
#include "vesk/host/Instance.h"

namespace vesk::python {

void prepareAttributeAccess() {
  host::setAttributeAccess({[](host::Instance& instance, VeskInterned name) {
                              PyObject* const value =
                                  checked(PyObject_GetAttr(objectOf(instance), pythonName(name)));
                              return VeskValue::ofWord(reinterpret_cast<std::uintptr_t>(value));
                            },
                            [](host::Instance& instance, VeskInterned name, VeskValue value) {
                              checkedInt(PyObject_SetAttr(objectOf(instance), pythonName(name),
                                                          reinterpret_cast<PyObject*>(value.word())));
                            }});
}

}  // namespace vesk::python
