#include "members.h"

#include <cstddef>
#include <set>
#include <string>
#include <string_view>

#include "arguments.h"
#include "calls.h"
#include "classes.h"
#include "doors.h"
#include "errors.h"
#include "instances.h"
#include "lists.h"
#include "names.h"
#include "results.h"
#include "texts.h"
#include "vesk/Detail.h"
#include "vesk/VeskError.h"

namespace vesk::python {

PyTypeObject gPropertyType{};
PyTypeObject gMethodType{};
PyTypeObject gLiteralType{};
PyTypeObject gBoundMethodType{};

namespace {

using host::CallForm;
using host::ClassRecord;

struct PropertyObject {
  PyObject_HEAD host::PropertyRecord const* fRecord;
  PropertyDoor fDoor;
  host::ClassRecord const* fAccepted;  ///< the class of the object that was set last
  bool fHasDoor;
  bool fWasAsked;  ///< whether there is a door
};

struct MethodObject {
  PyObject_HEAD VeskInterned fName;
  ClassRecord* fOwner;
  ClassRecord* fLastClass;  ///< the class that was asked last, and what the name means there
  host::Member const* fLastMember;
  CallCache fCalls;
  PyObject* fLiteral;  ///< the instance, once it was asked for
};

struct BoundMethod {
  PyObject_HEAD vectorcallfunc fVectorcall;
  host::Member const* fMember;
  CallCache* fCalls;
  PyObject* fMethod;    ///< the method that holds the cache; null for functions of packages
  PyObject* fReceiver;  ///< null for a method of a class
};

constexpr int kFreeListSize = 32;
BoundMethod* sFree[kFreeListSize];
int sFreeCount = 0;

PropertyObject& asProperty(PyObject* object) noexcept { return *reinterpret_cast<PropertyObject*>(object); }
MethodObject& asMethod(PyObject* object) noexcept { return *reinterpret_cast<MethodObject*>(object); }
BoundMethod& asBound(PyObject* object) noexcept { return *reinterpret_cast<BoundMethod*>(object); }

/// The property as a script names it: under the class of its object.
std::string shownName(host::PropertyRecord const& property, PyObject* object) {
  return std::string(instanceOf(object).classRecord().fName.view()) + "." +
         std::string(property.fName.view());
}

template <class Object>
Object* allocate(PyTypeObject& type) {
  return reinterpret_cast<Object*>(checked(type.tp_alloc(&type, 0)));
}

// --- properties

[[gnu::cold]] void askForDoor(PropertyObject& property) {
  property.fDoor = openDoor(*property.fRecord);
  property.fHasDoor = property.fDoor.fKind != PropertyDoor::Kind::Closed;
  property.fWasAsked = true;
}
/// The door to a property, or null.
PropertyDoor const* doorOf(PropertyObject& property) {
  if (!property.fWasAsked) [[unlikely]]
    askForDoor(property);
  return property.fHasDoor ? &property.fDoor : nullptr;
}

void checkOwner(ClassRecord const& owner, PyObject* object) {
  if (isInstance(object) && instanceOf(object).classRecord().distanceTo(owner) >= 0) return;
  raise(PyExc_TypeError,
        "The property belongs to objects of class '" + std::string(owner.fName.view()) + "'");
}

PyObject* getProperty(PyObject* self, PyObject* object, PyObject*) {
  if (!object || object == Py_None) return Py_NewRef(self);
  return guarded<PyObject*>(nullptr, [=] {
    checkOwner(*asProperty(self).fRecord->fOwner, object);
    return readProperty(self, object);
  });
}

int setProperty(PyObject* self, PyObject* object, PyObject* value) {
  int const done = guarded(-1, [=] {
    checkOwner(*asProperty(self).fRecord->fOwner, object);
    writeProperty(self, object, value ? value : Py_None);
    return 0;
  });
  if (done != 0) [[unlikely]]
    addMeaning(self);
  return done;
}

/// Iterables that are no lists by themselves, such as generators and sets, become one for a list property.
Ref listForListProperty(host::Type const& type, PyObject* value) {
  bool const isListType = type.isClass() && static_cast<ClassRecord const&>(type).info().getSequenceHook();
  bool const isPlainIterable = Py_TYPE(value)->tp_iter && !isInstance(value) && !PyList_Check(value) &&
                               !PyTuple_Check(value) && !PyUnicode_Check(value);
  return isListType && isPlainIterable ? Ref::checked(PySequence_List(value)) : Ref::shared(value);
}

VeskValue convertForProperty(host::PropertyRecord const& property, PyObject* object, PyObject* value) {
  host::Type const& type = property.type();
  if (conversionCost(value, type) < 0)
    throw VeskError(shownName(property, object) + " cannot be set to " + shortRepr(value) + ": " +
                        acceptedValues(type) + " is expected",
                    VeskError::Kind::Match);
  try {
    return convert(value, type);
  } catch (VeskError const& error) {
    throw VeskError(shownName(property, object) + " cannot be set: " + error.what(), error.kind());
  }
}

/// Turns the failure that is being handled into a Python error that tells what was to be set.
[[noreturn, gnu::cold]] void raiseNotSet(host::PropertyRecord const& property, PyObject* object,
                                         PyObject* value) {
  raiseExplained(
      [&](host::FailureKind kind) {
        return kind == host::FailureKind::WrongValue ? refusal(value, acceptedValues(property.type())) : "";
      },
      true);
  addNote([&] { return "while " + shownName(property, object) + " was set to " + shortRepr(value); });
  throw PythonError();
}

// --- methods

host::Member const* meaningOf(MethodObject& method, ClassRecord& cls) {
  if (method.fLastClass != &cls) {
    method.fLastMember = cls.findMember(method.fName);
    method.fLastClass = &cls;
  }
  return method.fLastMember;
}

PyObject* callBound(PyObject* self, PyObject* const* arguments, std::size_t flaggedCount,
                    PyObject* keywords) {
  return guarded<PyObject*>(nullptr, [=] {
    BoundMethod& bound = asBound(self);
    checkNoKeywords(keywords, bound.fMember->fName.c_str());
    int const count = static_cast<int>(PyVectorcall_NARGS(flaggedCount));
    if (bound.fReceiver)
      return call(*bound.fCalls, *bound.fMember, CallForm::OnInstance, &instanceOf(bound.fReceiver),
                  arguments, count);
    CallForm const form = bound.fMethod ? CallForm::OnClass : CallForm::Function;
    return call(*bound.fCalls, *bound.fMember, form, nullptr, arguments, count);
  });
}

PyObject* makeBound(host::Member const* member, CallCache* calls, PyObject* method, PyObject* receiver) {
  BoundMethod* bound = nullptr;
  if (sFreeCount > 0) {
    bound = sFree[--sFreeCount];
    _Py_NewReference(reinterpret_cast<PyObject*>(bound));
  } else {
    bound = PyObject_New(BoundMethod, &gBoundMethodType);
    if (!bound) throw PythonError();
  }
  bound->fVectorcall = callBound;
  bound->fMember = member;
  bound->fCalls = calls;
  bound->fMethod = Py_XNewRef(method);
  bound->fReceiver = Py_XNewRef(receiver);
  return reinterpret_cast<PyObject*>(bound);
}

void deallocateBound(PyObject* self) {
  BoundMethod& bound = asBound(self);
  PyObject* const method = bound.fMethod;
  PyObject* const receiver = bound.fReceiver;
  if (!method) delete bound.fCalls;  // a function of a package owns its cache
  if (sFreeCount < kFreeListSize)
    sFree[sFreeCount++] = &bound;
  else
    PyObject_Free(self);
  Py_XDECREF(method);
  Py_XDECREF(receiver);
}

/// The method as it is found on an object or, without one, on a class.
PyObject* getMethod(PyObject* self, PyObject* object, PyObject* type) {
  return guarded<PyObject*>(nullptr, [=] {
    if (object && isInstance(object)) return bindToInstance(self, object);
    MethodObject& method = asMethod(self);
    ClassFront const* front =
        type && Py_IS_TYPE(type, &gMetaType) ? reinterpret_cast<ClassObject*>(type)->fFront : nullptr;
    ClassRecord& cls = front ? *front->fRecord : *method.fOwner;
    host::Member const* member = meaningOf(method, cls);
    return makeBound(member ? member : meaningOf(method, *method.fOwner), &method.fCalls, self, nullptr);
  });
}

PyObject* getLiteral(PyObject* self, PyObject*, PyObject*) {
  return guarded<PyObject*>(nullptr, [=] {
    MethodObject& literal = asMethod(self);
    if (!literal.fLiteral) {
      host::Member const* member = meaningOf(literal, *literal.fOwner);
      literal.fLiteral = call(literal.fCalls, *member, CallForm::OnClass, nullptr, nullptr, 0);
    }
    return Py_NewRef(literal.fLiteral);
  });
}

// --- what tools read

PyObject* ownerType(ClassRecord& owner) {
  return Py_NewRef(reinterpret_cast<PyObject*>(frontOf(owner).fType));
}
/// None for a function of a package.
Ref ownerOf(host::Member const& member) {
  ClassRecord* const owner = member.fMethods.front()->fOwner;
  return owner ? Ref(ownerType(*owner)) : Ref::shared(Py_None);
}

/// One line a signature, then the description. Superclasses mostly declare a signature again: it is shown
/// once.
std::string textOf(host::Member const& member) {
  std::string text;
  std::set<std::string> shown;
  for (host::MethodRecord const* method : member.fMethods) {
    std::string line = method->text() + "\n";
    if (shown.insert(line).second) text += line;
  }
  for (host::MethodRecord const* method : member.fMethods) {
    char const* description = method->fInfo->getDescription();
    if (description && *description) return text + "\n" + description;
  }
  return text;
}

PyObject* methodDoc(PyObject* self, void*) {
  return guarded<PyObject*>(nullptr, [=] {
    MethodObject& method = asMethod(self);
    Ref const owner(ownerType(*method.fOwner));
    return described(owner.get(), pythonName(method.fName),
                     pythonText(textOf(*meaningOf(method, *method.fOwner))))
        .release();
  });
}
PyObject* boundDoc(PyObject* self, void*) {
  return guarded<PyObject*>(nullptr, [=] {
    host::Member const& member = *asBound(self).fMember;
    return described(ownerOf(member).get(), pythonName(member.fName), pythonText(textOf(member))).release();
  });
}

PyObject* methodSignature(PyObject* self, void*) {
  return guarded<PyObject*>(nullptr, [=] {
    MethodObject& method = asMethod(self);
    Ref const owner(ownerType(*method.fOwner));
    return signatureOf(owner.get(), pythonName(method.fName)).release();
  });
}
PyObject* boundSignature(PyObject* self, void*) {
  return guarded<PyObject*>(nullptr, [=] {
    BoundMethod& bound = asBound(self);
    return signatureOf(bound.fReceiver ? bound.fReceiver : ownerOf(*bound.fMember).get(),
                       pythonName(bound.fMember->fName))
        .release();
  });
}

/// Name and type, the line that the library has for the property, and the descriptions.
PyObject* propertyDoc(PyObject* self, void*) {
  return guarded<PyObject*>(nullptr, [=] {
    host::PropertyRecord const& property = *asProperty(self).fRecord;
    std::string text = std::string(property.fName.view()) + ": " + property.fInfo->getDataType();
    for (Detail const& detail : detailsOf(*property.fInfo))
      if (detail.fName == std::string_view("summary")) text += "\n\n" + std::get<std::string>(detail.fValue);
    for (char const* more : {property.fInfo->getDescription(), property.fInfo->getDetailedDescription()})
      if (more && *more) text.append("\n\n").append(more);
    Ref const owner(ownerType(*property.fOwner));
    return described(owner.get(), pythonName(property.fName), pythonText(text)).release();
  });
}

PyObject* propertyName(PyObject* self, void*) {
  return guarded<PyObject*>(nullptr, [=] { return Py_NewRef(pythonName(asProperty(self).fRecord->fName)); });
}
PyObject* methodName(PyObject* self, void*) {
  return guarded<PyObject*>(nullptr, [=] { return Py_NewRef(pythonName(asMethod(self).fName)); });
}
PyObject* boundName(PyObject* self, void*) {
  return guarded<PyObject*>(nullptr, [=] { return Py_NewRef(pythonName(asBound(self).fMember->fName)); });
}
PyObject* boundSelf(PyObject* self, void*) {
  PyObject* receiver = asBound(self).fReceiver;
  return Py_NewRef(receiver ? receiver : Py_None);
}

PyObject* propertyOwner(PyObject* self, void*) {
  return guarded<PyObject*>(nullptr, [=] { return ownerType(*asProperty(self).fRecord->fOwner); });
}
PyObject* methodOwner(PyObject* self, void*) {
  return guarded<PyObject*>(nullptr, [=] { return ownerType(*asMethod(self).fOwner); });
}

PyObject* representBound(PyObject* self) {
  BoundMethod& bound = asBound(self);
  char const* name = bound.fMember->fName.c_str();
  if (!bound.fReceiver)
    return PyUnicode_FromFormat("<published %s '%s'>", bound.fMethod ? "method" : "function", name);
  return PyUnicode_FromFormat("<published method '%s' of %R>", name, bound.fReceiver);
}

PyGetSetDef sPropertyAttributes[] = {{"__doc__", propertyDoc, nullptr, nullptr, nullptr},
                                     {"__name__", propertyName, nullptr, nullptr, nullptr},
                                     {"__objclass__", propertyOwner, nullptr, nullptr, nullptr},
                                     {nullptr, nullptr, nullptr, nullptr, nullptr}};
PyGetSetDef sMethodAttributes[] = {{"__doc__", methodDoc, nullptr, nullptr, nullptr},
                                   {"__signature__", methodSignature, nullptr, nullptr, nullptr},
                                   {"__name__", methodName, nullptr, nullptr, nullptr},
                                   {"__objclass__", methodOwner, nullptr, nullptr, nullptr},
                                   {nullptr, nullptr, nullptr, nullptr, nullptr}};
PyGetSetDef sBoundAttributes[] = {{"__doc__", boundDoc, nullptr, nullptr, nullptr},
                                  {"__signature__", boundSignature, nullptr, nullptr, nullptr},
                                  {"__name__", boundName, nullptr, nullptr, nullptr},
                                  {"__self__", boundSelf, nullptr, nullptr, nullptr},
                                  {nullptr, nullptr, nullptr, nullptr, nullptr}};

void prepare(PyTypeObject& type, char const* name, std::size_t size, PyGetSetDef* attributes) {
  Py_SET_REFCNT(reinterpret_cast<PyObject*>(&type), 1);
  type.tp_name = name;
  type.tp_basicsize = static_cast<Py_ssize_t>(size);
  type.tp_flags |= Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION;
  type.tp_getset = attributes;
  checkedInt(PyType_Ready(&type));
}

Ref makeMethodObject(PyTypeObject& type, VeskInterned name, ClassRecord& owner) {
  auto* method = allocate<MethodObject>(type);
  method->fName = name;
  method->fOwner = &owner;
  new (&method->fCalls) CallCache();
  return Ref(reinterpret_cast<PyObject*>(method));
}

}  // namespace

Ref makeProperty(host::PropertyRecord const& property) {
  auto* object = allocate<PropertyObject>(gPropertyType);
  object->fRecord = &property;
  return Ref(reinterpret_cast<PyObject*>(object));
}

Ref makeMethod(VeskInterned name, ClassRecord& owner) { return makeMethodObject(gMethodType, name, owner); }
Ref makeLiteral(VeskInterned name, ClassRecord& owner) { return makeMethodObject(gLiteralType, name, owner); }
Ref makeFunction(host::Member const& function) {
  return Ref(makeBound(&function, new CallCache, nullptr, nullptr));
}

PyObject* readProperty(PyObject* property, PyObject* object) {
  if (PropertyDoor const* const door = doorOf(asProperty(property)))
    if (PyObject* const value = readThrough(*door, instanceOf(object))) return value;
  host::PropertyRecord const& record = *asProperty(property).fRecord;
  host::PropertyReading const reading(record, instanceOf(object));
  return toPython(record.type(), reading.value()).release();
}

void writeProperty(PyObject* property, PyObject* object, PyObject* value) {
  host::PropertyRecord const& record = *asProperty(property).fRecord;
  PropertyDoor const* const door = doorOf(asProperty(property));
  try {
    if (door && door->fWrite &&
        writeThrough(*door, record, instanceOf(object), value, asProperty(property).fAccepted))
      return;
  } catch (...) {
    raiseNotSet(record, object, value);
  }
  VeskValue converted;
  Ref list;
  if (!convertAtOnce(value, record.type(), converted)) {
    list = listForListProperty(record.type(), value);
    value = list.get();
    converted = convertForProperty(record, object, value);
  }
  host::OwnedValue const owned(record.type(), converted);
  try {
    record.fInfo->setValue(&instanceOf(object), converted);
  } catch (...) {
    raiseNotSet(record, object, value);
  }
}

void addMeaning(PyObject* property) noexcept {
  if (!PyErr_ExceptionMatches(PyExc_Exception) || PyErr_ExceptionMatches(PyExc_MemoryError)) return;
  host::PropertyRecord const& record = *asProperty(property).fRecord;
  addNote([&] {
    PyObject* const cls = reinterpret_cast<PyObject*>(frontOf(*record.fOwner).fType);
    return meaningInWords(cls, pythonText(record.fName.view()).get());
  });
}

PyObject* bindToInstance(PyObject* self, PyObject* object) {
  MethodObject& method = asMethod(self);
  host::Member const* member = meaningOf(method, instanceOf(object).classRecord());
  if (!member)
    raise(PyExc_TypeError, "Method '" + std::string(method.fName.view()) + "' is of another class");
  return makeBound(member, &method.fCalls, self, object);
}

void prepareMemberTypes() {
  gPropertyType.tp_descr_get = getProperty;
  gPropertyType.tp_descr_set = setProperty;
  prepare(gPropertyType, "umlmm._host.Property", sizeof(PropertyObject), sPropertyAttributes);
  gMethodType.tp_descr_get = getMethod;
  prepare(gMethodType, "umlmm._host.Method", sizeof(MethodObject), sMethodAttributes);
  gLiteralType.tp_descr_get = getLiteral;
  prepare(gLiteralType, "umlmm._host.Literal", sizeof(MethodObject), sMethodAttributes);
  gBoundMethodType.tp_call = PyVectorcall_Call;
  gBoundMethodType.tp_vectorcall_offset = offsetof(BoundMethod, fVectorcall);
  gBoundMethodType.tp_flags = Py_TPFLAGS_HAVE_VECTORCALL;
  gBoundMethodType.tp_dealloc = deallocateBound;
  gBoundMethodType.tp_repr = representBound;
  prepare(gBoundMethodType, "umlmm._host.BoundMethod", sizeof(BoundMethod), sBoundAttributes);
}

}  // namespace vesk::python
