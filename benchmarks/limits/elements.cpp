#include <cstdlib>
#include <cstring>
#include <utility>

#include "limits.h"

namespace limits {

PyTypeObject gModelType{};
PyTypeObject gElementType{};

namespace {

Element& of(PyObject* aSelf) { return *reinterpret_cast<ElementObject*>(aSelf)->fElement; }

void release(Text* aText) {
  if (aText != nullptr && --aText->fCount == 0) std::free(aText);
}

void freeElement(Element* aElement) {
  release(aElement->fBody);
  std::free(aElement);
}

int refuse(char const* aExpected) {
  PyErr_Format(PyExc_TypeError, "%s is expected", aExpected);
  return -1;
}

/// UTF-16 of a string, or null with an error set.
Text* makeText(PyObject* aString) {
  auto const length = static_cast<std::size_t>(PyUnicode_GET_LENGTH(aString));
  int const kind = PyUnicode_KIND(aString);
  void const* const data = PyUnicode_DATA(aString);
  std::size_t units = length;
  if (kind == PyUnicode_4BYTE_KIND)
    for (std::size_t at = 0; at < length; ++at) units += static_cast<Py_UCS4 const*>(data)[at] > 0xFFFF;
  auto* const text = static_cast<Text*>(std::malloc(sizeof(Text) + units * sizeof(char16_t)));
  if (text == nullptr) return reinterpret_cast<Text*>(PyErr_NoMemory());
  text->fCount = 1;
  text->fLength = static_cast<std::uint32_t>(units);
  char16_t* out = text->fUnits;
  if (kind == PyUnicode_1BYTE_KIND) {
    for (std::size_t at = 0; at < length; ++at) *out++ = static_cast<Py_UCS1 const*>(data)[at];
  } else if (kind == PyUnicode_2BYTE_KIND) {
    std::memcpy(out, data, length * sizeof(char16_t));
    out += length;
  } else {
    for (std::size_t at = 0; at < length; ++at) {
      Py_UCS4 const code = static_cast<Py_UCS4 const*>(data)[at];
      if (code > 0xFFFF) *out++ = static_cast<char16_t>(0xD7C0 + (code >> 10));
      *out++ = static_cast<char16_t>(code > 0xFFFF ? 0xDC00 + (code & 0x3FF) : code);
    }
  }
  *out = 0;
  return text;
}

PyObject* getBody(PyObject* aSelf, void*) {
  Text const* const text = of(aSelf).fBody;
  if (text == nullptr) Py_RETURN_NONE;
  bool hasPairs = false;
  for (std::uint32_t at = 0; at < text->fLength; ++at) hasPairs |= (text->fUnits[at] & 0xF800) == 0xD800;
  if (!hasPairs) return PyUnicode_FromKindAndData(PyUnicode_2BYTE_KIND, text->fUnits, text->fLength);
  auto const bytes = static_cast<Py_ssize_t>(text->fLength * sizeof(char16_t));
  int order = -1;
  return PyUnicode_DecodeUTF16(reinterpret_cast<char const*>(text->fUnits), bytes, "replace", &order);
}

int setBody(PyObject* aSelf, PyObject* aValue, void*) {
  Text* text = nullptr;
  if (aValue != Py_None) {
    if (aValue == nullptr || !PyUnicode_Check(aValue)) return refuse("a string");
    text = makeText(aValue);
    if (text == nullptr) return -1;
  }
  release(std::exchange(of(aSelf).fBody, text));
  return 0;
}

PyObject* getIsAbstract(PyObject* aSelf, void*) { return PyBool_FromLong(of(aSelf).fFlags & kIsAbstract); }

int setIsAbstract(PyObject* aSelf, PyObject* aValue, void*) {
  if (aValue == nullptr || !PyBool_Check(aValue)) return refuse("a truth value");
  std::uint32_t& flags = of(aSelf).fFlags;
  flags = aValue == Py_True ? flags | kIsAbstract : flags & ~kIsAbstract;
  return 0;
}

PyObject* getValue(PyObject* aSelf, void*) { return PyLong_FromLong(of(aSelf).fValue); }

int setValue(PyObject* aSelf, PyObject* aValue, void*) {
  if (aValue == nullptr || !PyLong_Check(aValue)) return refuse("a whole number");
  long const value = PyLong_AsLong(aValue);
  if (value == -1 && PyErr_Occurred()) return -1;
  if (value != static_cast<std::int32_t>(value)) return refuse("a number of 32 bits");
  of(aSelf).fValue = static_cast<std::int32_t>(value);
  return 0;
}

PyObject* getType(PyObject* aSelf, void*) {
  Element* const type = of(aSelf).fType;
  if (type == nullptr) Py_RETURN_NONE;
  return bound(type);
}

int setType(PyObject* aSelf, PyObject* aValue, void*) {
  Element* type = nullptr;
  if (aValue != Py_None) {
    type = aValue == nullptr ? nullptr : elementOf(aValue);
    if (type == nullptr) return -1;
  }
  of(aSelf).fType = type;
  return 0;
}

PyObject* destroy(PyObject* aSelf, PyObject*) {
  Element& element = of(aSelf);
  if (element.fDestroyed) {
    PyErr_SetString(PyExc_ValueError, "the element is destroyed already");
    return nullptr;
  }
  element.fModel->remove(&element);
  element.fDestroyed = true;
  Py_RETURN_NONE;
}

PyObject* makeElement(PyObject*, PyObject* const* aArguments, std::size_t aCount, PyObject* aNames) {
  if (PyVectorcall_NARGS(aCount) != 1 || aNames != nullptr ||
      !PyObject_TypeCheck(aArguments[0], &gModelType)) {
    PyErr_SetString(PyExc_TypeError, "a Model is expected");
    return nullptr;
  }
  auto* const element = static_cast<Element*>(std::calloc(1, sizeof(Element)));
  if (element == nullptr) return PyErr_NoMemory();
  element->fModel = reinterpret_cast<ModelObject*>(aArguments[0])->fModel;
  element->fModel->add(element);
  return bound(element);
}

void deallocateElement(PyObject* aSelf) {
  Element& element = of(aSelf);
  element.fBound = nullptr;
  if (element.fDestroyed) freeElement(&element);
  PyObject_Free(aSelf);
}

PyObject* makeModel(PyObject*, PyObject* const*, std::size_t, PyObject*) {
  auto* const object = PyObject_New(ModelObject, &gModelType);
  if (object != nullptr) object->fModel = new Model{{}, reinterpret_cast<PyObject*>(object)};
  return reinterpret_cast<PyObject*>(object);
}

void deallocateModel(PyObject* aSelf) {
  Model* const model = reinterpret_cast<ModelObject*>(aSelf)->fModel;
  for (Element* const element : model->fRoots) {
    if (element == nullptr) continue;
    element->fDestroyed = true;
    if (element->fBound == nullptr) freeElement(element);
  }
  delete model;
  PyObject_Free(aSelf);
}

PyGetSetDef sGetSet[] = {{"body", getBody, setBody, nullptr, nullptr},
                         {"isAbstract", getIsAbstract, setIsAbstract, nullptr, nullptr},
                         {"value", getValue, setValue, nullptr, nullptr},
                         {"type", getType, setType, nullptr, nullptr},
                         {nullptr, nullptr, nullptr, nullptr, nullptr}};
PyMethodDef sMethods[] = {{"destroy", destroy, METH_NOARGS, nullptr}, {nullptr, nullptr, 0, nullptr}};

}  // namespace

bool prepareElements() {
  gModelType.tp_name = "benchmark_limits.Model";
  gModelType.tp_basicsize = sizeof(ModelObject);
  gModelType.tp_flags = Py_TPFLAGS_DEFAULT;
  gModelType.tp_dealloc = deallocateModel;
  gModelType.tp_vectorcall = makeModel;
  gElementType.tp_name = "benchmark_limits.Element";
  gElementType.tp_basicsize = sizeof(ElementObject);
  gElementType.tp_flags = Py_TPFLAGS_DEFAULT;
  gElementType.tp_dealloc = deallocateElement;
  gElementType.tp_vectorcall = makeElement;
  gElementType.tp_getset = sGetSet;
  gElementType.tp_methods = sMethods;
  return PyType_Ready(&gModelType) == 0 && PyType_Ready(&gElementType) == 0;
}

}  // namespace limits
