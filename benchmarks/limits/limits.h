#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// The plain model behind the hand-written types: as much storage as elements of the metamodel have, of the
/// same kinds, with nothing around it. Where umlmm answers the same Python object for the same element, so do
/// these.
namespace limits {

/// A counted UTF-16 text in one block.
struct Text {
  std::int32_t fCount;
  std::uint32_t fLength;
  char16_t fUnits[1];
};

struct Model;

/// As large as a Class of the metamodel with its slots.
struct Element {
  Model* fModel;
  Element* fOwner;
  /// The Python object that shows the element, if there is one; it is borrowed.
  PyObject* fBound;
  Text* fBody;
  Element* fType;
  std::int32_t fPlace;
  std::int32_t fValue;
  std::uint32_t fFlags;
  bool fDestroyed;
  std::uint64_t fOtherSlots[24];
};

constexpr std::uint32_t kIsAbstract = 1;

struct Model {
  /// Elements without an owner; null where one left. Each knows its place.
  std::vector<Element*> fRoots;
  /// The Python object that owns the model.
  PyObject* fObject;

  void add(Element* aElement) {
    aElement->fPlace = static_cast<std::int32_t>(fRoots.size());
    fRoots.push_back(aElement);
  }
  void remove(Element const* aElement) {
    fRoots[static_cast<std::size_t>(aElement->fPlace)] = nullptr;
    if (static_cast<std::size_t>(aElement->fPlace) + 1 == fRoots.size()) fRoots.pop_back();
  }
};

struct ModelObject {
  PyObject_HEAD Model* fModel;
};

struct ElementObject {
  PyObject_HEAD Element* fElement;
};

extern PyTypeObject gModelType;
extern PyTypeObject gElementType;
extern PyTypeObject gListType;
extern PyTypeObject gIteratorType;

bool prepareElements();
bool prepareLists();

/// The one Python object of an element: a new reference, or null with an error set.
inline PyObject* bound(Element* aElement) {
  if (aElement->fBound != nullptr) return Py_NewRef(aElement->fBound);
  auto* const object = PyObject_New(ElementObject, &gElementType);
  if (object == nullptr) return nullptr;
  object->fElement = aElement;
  aElement->fBound = reinterpret_cast<PyObject*>(object);
  return aElement->fBound;
}

/// The element of an argument, or null with an error set.
inline Element* elementOf(PyObject* aObject) {
  if (!PyObject_TypeCheck(aObject, &gElementType)) {
    PyErr_SetString(PyExc_TypeError, "an Element is expected");
    return nullptr;
  }
  return reinterpret_cast<ElementObject*>(aObject)->fElement;
}

}  // namespace limits
