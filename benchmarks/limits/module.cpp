#include "limits.h"

namespace {

PyModuleDef sModule{};

}  // namespace

/// Types as one writes them by hand against the C API: descriptors straight onto struct members.
PyMODINIT_FUNC PyInit_benchmark_limits() {
  if (!limits::prepareElements() || !limits::prepareLists()) return nullptr;
  sModule.m_base = PyModuleDef_HEAD_INIT;
  sModule.m_name = "benchmark_limits";
  sModule.m_size = -1;
  PyObject* const module = PyModule_Create(&sModule);
  if (module == nullptr) return nullptr;
  for (PyTypeObject* const type : {&limits::gModelType, &limits::gElementType, &limits::gListType})
    if (PyModule_AddType(module, type) < 0) return nullptr;
  return module;
}
