#include "instances.h"

#include <structmember.h>

#include <new>

#include "additions.h"
#include "classes.h"
#include "errors.h"
#include "members.h"
#include "names.h"
#include "results.h"
#include "vesk/VeskClassInfo.h"

namespace vesk::python {

PyTypeObject gInstanceType{};
PyTypeObject gEnumerationType{};

namespace {

using host::ClassRecord;

std::string className(PyInstance& instance) { return std::string(instance.classRecord().fName.view()); }

Identity identityOf(PyInstance& instance) {
  if (!instance.isBound()) return {&instance, 0};
  ObjectHook const* const hook = instance.classRecord().info().getObjectHook();
  return hook ? hook->identify(instance.nativeId()) : Identity{instance.nativeId(), 0};
}

// --- text

/// The text of a property `name`, if the class has one and it can be read.
Ref nameOf(PyInstance& instance) {
  host::Member const* member = instance.classRecord().findMember(internal::interned<"name">());
  if (!member || !member->fProperty || member->fProperty->type().fCarrier != host::Carrier::Text)
    return Ref();
  try {
    host::PropertyReading const reading(*member->fProperty, instance);
    return toPython(member->fProperty->type(), reading.value());
  } catch (std::exception const&) {
    return Ref();  // an object that is gone still has to be shown
  }
}

PyObject* represent(PyObject* self) {
  return guarded<PyObject*>(nullptr, [self]() -> PyObject* {
    PyInstance& instance = instanceOf(self);
    std::string const shown = className(instance);
    if (host::Member const* toText = frontOf(instance).fToText) {
      CallCache cache;
      Ref const text = Ref::checked(call(cache, *toText, host::CallForm::OnInstance, &instance, nullptr, 0));
      return PyUnicode_FromFormat("%s.%S", shown.c_str(), text.get());
    }
    Ref const name = nameOf(instance);
    if (name && PyUnicode_GET_LENGTH(name.get()) > 0)
      return PyUnicode_FromFormat("<%s %R>", shown.c_str(), name.get());
    return PyUnicode_FromFormat("<%s at %p>", shown.c_str(), self);
  });
}

PyObject* toText(PyObject* self) {
  return guarded<PyObject*>(nullptr, [self]() -> PyObject* {
    PyInstance& instance = instanceOf(self);
    host::Member const* text = frontOf(instance).fToText;
    if (!text) return PyObject_Repr(self);
    CallCache cache;
    return call(cache, *text, host::CallForm::OnInstance, &instance, nullptr, 0);
  });
}

// --- attributes

[[noreturn]] void raiseUnknown(PyObject* self, PyObject* name) {
  std::string const wanted = utf8(name);
  raiseAttributeError("'" + className(instanceOf(self)) + "' object has no attribute '" + wanted + "'" +
                          didYouMean(wanted, memberNames(Py_TYPE(self))),
                      self, name);
}

PyObject* getAttribute(PyObject* self, PyObject* name) {
  return guarded<PyObject*>(nullptr, [self, name]() -> PyObject* {
    PyTypeObject* type = Py_TYPE(self);
    PyObject* member = PyUnicode_Check(name) ? _PyType_Lookup(type, name) : nullptr;
    if (!member) [[unlikely]] {
      if (!PyUnicode_Check(name)) return PyObject_GenericGetAttr(self, name);
      raiseUnknown(self, name);
    }
    if (isProperty(member)) [[likely]]
      return readProperty(member, self);
    if (isMethod(member)) return bindToInstance(member, self);
    Ref const held = Ref::shared(member);
    descrgetfunc const get = Py_TYPE(member)->tp_descr_get;
    return get ? get(member, self, reinterpret_cast<PyObject*>(type)) : Py_NewRef(member);
  });
}

int setAttribute(PyObject* self, PyObject* name, PyObject* value) {
  PyObject* const member = PyUnicode_Check(name) ? _PyType_Lookup(Py_TYPE(self), name) : nullptr;
  int const done = guarded(-1, [=] {
    if (member && isProperty(member)) [[likely]] {
      writeProperty(member, self, value ? value : Py_None);
      return 0;
    }
    if (!member && PyUnicode_Check(name)) raiseUnknown(self, name);
    if (member && isAddition(member)) {
      Ref const held = Ref::shared(member);
      return checkedInt(Py_TYPE(member)->tp_descr_set(member, self, value));
    }
    raise(PyExc_AttributeError, "'" + className(instanceOf(self)) + "' object attribute " + shortRepr(name) +
                                    " cannot be set: it is no property");
  });
  if (done != 0 && member && isProperty(member)) [[unlikely]]
    addMeaning(member);
  return done;
}

// --- comparison

PyObject* callComparison(PyObject* left, PyObject* right, int operation) {
  host::Member const* member = frontOf(instanceOf(left)).fComparisons[operation];
  if (!member || !accepts(left, member->fName, &right, 1)) return nullptr;
  CallCache cache;
  return call(cache, *member, host::CallForm::OnInstance, &instanceOf(left), &right, 1);
}

bool areEqual(PyObject* left, PyObject* right) {
  if (left == right || identityOf(instanceOf(left)) == identityOf(instanceOf(right))) return true;
  Ref const answer(callComparison(left, right, Py_EQ));
  return answer && answer.get() == Py_True;
}

Py_hash_t hashOf(PyObject* self) {
  return guarded<Py_hash_t>(-1, [self] {
    ClassFront& front = frontOf(instanceOf(self));
    // An `eq` without an order compares what objects hold now, such as the position of an iterator.
    if (front.fComparisons[Py_EQ] && !front.fComparisons[Py_LT])
      raise(PyExc_TypeError, "unhashable type: '" + className(instanceOf(self)) + "'");
    return _Py_HashPointer(identityOf(instanceOf(self)).fObject);
  });
}

}  // namespace

PyObject* compareInstances(PyObject* left, PyObject* right, int operation) {
  return guarded<PyObject*>(nullptr, [=]() -> PyObject* {
    if (!isInstance(left) || !isInstance(right)) return Py_NewRef(Py_NotImplemented);
    if (operation == Py_EQ || operation == Py_NE)
      return PyBool_FromLong(areEqual(left, right) == (operation == Py_EQ));
    PyObject* answer = callComparison(left, right, operation);
    return answer ? answer : Py_NewRef(Py_NotImplemented);
  });
}

host::Instance* makePyInstance(ClassRecord& cls) {
  ClassFront& front = frontOf(cls);
  auto* object = static_cast<InstanceObject*>(PyObject_Malloc(sizeof(InstanceObject)));
  if (!object) throw std::bad_alloc();
  PyObject_Init(reinterpret_cast<PyObject*>(object), front.fType);
  // Literals are few, stand for values that never end, and are read again and again: they stay.
  if (!front.fLiterals.empty()) Py_INCREF(object);
  object->fWeakReferences = nullptr;
  return new (object->fInstance) PyInstance(cls);
}

void deallocateInstance(PyObject* self) {
  auto* object = reinterpret_cast<InstanceObject*>(self);
  PyTypeObject* type = Py_TYPE(self);
  PyInstance& instance = instanceOf(self);
  try {
    instance.finish();
  } catch (...) {
    PyObject *errorType, *value, *trace;
    PyErr_Fetch(&errorType, &value, &trace);
    raiseCurrentException();
    PyErr_WriteUnraisable(reinterpret_cast<PyObject*>(type));
    PyErr_Restore(errorType, value, trace);
  }
  // Callbacks of weak references run code of scripts: by now nothing leads to this object any more.
  if (object->fWeakReferences) PyObject_ClearWeakRefs(self);
  instance.~PyInstance();
  PyObject_Free(object);
  Py_DECREF(type);
}

void prepareInstanceType() {
  PyTypeObject& type = gInstanceType;
  Py_SET_REFCNT(reinterpret_cast<PyObject*>(&type), 1);
  type.tp_name = "umlmm._host.Instance";
  type.tp_doc = "What the objects of all published classes have in common.";
  type.tp_basicsize = sizeof(InstanceObject);
  type.tp_flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_DISALLOW_INSTANTIATION;
  type.tp_weaklistoffset = offsetof(InstanceObject, fWeakReferences);
  type.tp_dealloc = deallocateInstance;
  type.tp_getattro = getAttribute;
  type.tp_setattro = setAttribute;
  type.tp_richcompare = compareInstances;
  type.tp_hash = hashOf;
  type.tp_repr = represent;
  type.tp_str = toText;
  checkedInt(PyType_Ready(&type));

  // With room for the slots of what is added.
  static PyNumberMethods sNumber{};
  static PySequenceMethods sSequence{};
  static PyMappingMethods sMapping{};
  PyTypeObject& enumeration = gEnumerationType;
  Py_SET_REFCNT(reinterpret_cast<PyObject*>(&enumeration), 1);
  enumeration.tp_name = "umlmm._host.Enumeration";
  enumeration.tp_doc = "What the literals of all published enumerations have in common.";
  enumeration.tp_base = &gInstanceType;
  enumeration.tp_basicsize = type.tp_basicsize;
  enumeration.tp_flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_DISALLOW_INSTANTIATION;
  enumeration.tp_as_number = &sNumber;
  enumeration.tp_as_sequence = &sSequence;
  enumeration.tp_as_mapping = &sMapping;
  checkedInt(PyType_Ready(&enumeration));
}

}  // namespace vesk::python
