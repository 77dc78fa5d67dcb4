#include "limits.h"

namespace limits {

PyTypeObject gListType{};
PyTypeObject gIteratorType{};

namespace {

/// The contents of one element: what is put in leaves the top of its model and knows its owner.
struct ListObject {
  PyObject_HEAD PyObject* fOwner;
  PyObject* fModel;
  std::vector<Element*>* fElements;
};

struct IteratorObject {
  PyObject_HEAD ListObject* fList;
  std::size_t fNext;
};

ListObject& listOf(PyObject* aSelf) { return *reinterpret_cast<ListObject*>(aSelf); }

PyObject* makeList(PyObject*, PyObject* const* aArguments, std::size_t aCount, PyObject*) {
  if (PyVectorcall_NARGS(aCount) != 1 || elementOf(aArguments[0]) == nullptr) {
    PyErr_SetString(PyExc_TypeError, "an Element is expected");
    return nullptr;
  }
  auto* const list = PyObject_New(ListObject, &gListType);
  if (list == nullptr) return nullptr;
  list->fOwner = Py_NewRef(aArguments[0]);
  list->fModel = Py_NewRef(elementOf(aArguments[0])->fModel->fObject);
  list->fElements = new std::vector<Element*>();
  return reinterpret_cast<PyObject*>(list);
}

void deallocateList(PyObject* aSelf) {
  ListObject& list = listOf(aSelf);
  for (Element* const element : *list.fElements) {
    element->fOwner = nullptr;
    element->fModel->add(element);
  }
  delete list.fElements;
  Py_DECREF(list.fOwner);
  Py_DECREF(list.fModel);
  PyObject_Free(aSelf);
}

PyObject* append(PyObject* aSelf, PyObject* aValue) {
  Element* const element = elementOf(aValue);
  if (element == nullptr) return nullptr;
  if (element->fOwner != nullptr) {
    PyErr_SetString(PyExc_ValueError, "the element has an owner already");
    return nullptr;
  }
  element->fModel->remove(element);
  element->fOwner = elementOf(listOf(aSelf).fOwner);
  element->fPlace = static_cast<std::int32_t>(listOf(aSelf).fElements->size());
  listOf(aSelf).fElements->push_back(element);
  Py_RETURN_NONE;
}

Py_ssize_t length(PyObject* aSelf) { return static_cast<Py_ssize_t>(listOf(aSelf).fElements->size()); }

PyObject* iterate(PyObject* aSelf) {
  auto* const iterator = PyObject_New(IteratorObject, &gIteratorType);
  if (iterator == nullptr) return nullptr;
  Py_INCREF(aSelf);
  iterator->fList = &listOf(aSelf);
  iterator->fNext = 0;
  return reinterpret_cast<PyObject*>(iterator);
}

PyObject* next(PyObject* aSelf) {
  auto& iterator = *reinterpret_cast<IteratorObject*>(aSelf);
  auto const& elements = *iterator.fList->fElements;
  return iterator.fNext < elements.size() ? bound(elements[iterator.fNext++]) : nullptr;
}

void deallocateIterator(PyObject* aSelf) {
  Py_DECREF(reinterpret_cast<IteratorObject*>(aSelf)->fList);
  PyObject_Free(aSelf);
}

PySequenceMethods sSequence{};
PyMethodDef sMethods[] = {{"append", append, METH_O, nullptr}, {nullptr, nullptr, 0, nullptr}};

}  // namespace

bool prepareLists() {
  sSequence.sq_length = length;
  gListType.tp_name = "benchmark_limits.List";
  gListType.tp_basicsize = sizeof(ListObject);
  gListType.tp_flags = Py_TPFLAGS_DEFAULT;
  gListType.tp_dealloc = deallocateList;
  gListType.tp_vectorcall = makeList;
  gListType.tp_as_sequence = &sSequence;
  gListType.tp_methods = sMethods;
  gListType.tp_iter = iterate;
  gIteratorType.tp_name = "benchmark_limits.Iterator";
  gIteratorType.tp_basicsize = sizeof(IteratorObject);
  gIteratorType.tp_flags = Py_TPFLAGS_DEFAULT;
  gIteratorType.tp_dealloc = deallocateIterator;
  gIteratorType.tp_iter = PyObject_SelfIter;
  gIteratorType.tp_iternext = next;
  return PyType_Ready(&gListType) == 0 && PyType_Ready(&gIteratorType) == 0;
}

}  // namespace limits
