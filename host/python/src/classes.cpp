#include "classes.h"

#include <algorithm>
#include <memory>
#include <set>
#include <string_view>

#include "additions.h"
#include "arguments.h"
#include "errors.h"
#include "instances.h"
#include "lists.h"
#include "members.h"
#include "names.h"
#include "packages.h"
#include "texts.h"
#include "vesk/host/PackageRecord.h"

namespace vesk::python {

PyTypeObject gMetaType{};

namespace {

using host::ClassRecord;
using host::MethodRecord;

/// A member of every class that tells of the class it is asked through.
struct ClassText {
  PyObject_HEAD PyObject* (*fTell)(PyObject* cls);
};
PyTypeObject gClassTextType{};
PyObject* gClassDoc = nullptr;
PyObject* gClassSignature = nullptr;

/// Finalizers that run while Python makes a class can see it before it is finished.
ClassFront& frontOfType(PyObject* type) {
  ClassFront* front = reinterpret_cast<ClassObject*>(type)->fFront;
  if (!front)
    raise(PyExc_RuntimeError,
          std::string("class '") + reinterpret_cast<PyTypeObject*>(type)->tp_name + "' is being made");
  return *front;
}

std::string nameOf(ClassRecord& record) { return std::string(record.fName.view()); }
std::string_view shortNameOf(ClassRecord& record) {
  std::string_view const name = record.fName.view();
  return name.substr(name.find('.') + 1);
}

// --- making a class

bool isLiteral(MethodRecord const& method) noexcept {
  return method.fIsStatic && method.fCount == 0 && method.fOwner &&
         method.fSignature->result() == method.fOwner->fName;
}

/// The front's own base of a class.
PyTypeObject* baseOf(ClassRecord& record) {
  if (record.info().getSequenceHook())
    return record.findMember(internal::interned<"append">()) ? &gChangeableListType : &gListType;
  return hasLiterals(record) ? &gEnumerationType : &gInstanceType;
}

Ref makeBases(ClassRecord& record) {
  auto const supers = record.superclasses();
  PyTypeObject* own = baseOf(record);
  std::vector<PyObject*> bases;
  bool isCovered = false;
  for (ClassRecord* super : supers) {
    PyTypeObject* type = frontOf(*super).fType;
    bases.push_back(reinterpret_cast<PyObject*>(type));
    isCovered |= PyType_IsSubtype(type, own) != 0;
  }
  if (!isCovered) bases.push_back(reinterpret_cast<PyObject*>(own));
  Ref tuple = Ref::checked(PyTuple_New(static_cast<Py_ssize_t>(bases.size())));
  for (std::size_t i = 0; i < bases.size(); ++i)
    PyTuple_SET_ITEM(tuple.get(), static_cast<Py_ssize_t>(i), Py_NewRef(bases[i]));
  return tuple;
}

void addMember(PyObject* dictionary, VeskInterned name, PyObject* member) {
  checkedInt(PyDict_SetItem(dictionary, pythonName(name), member));
  if (isReservedWord(name.view()))
    checkedInt(PyDict_SetItemString(dictionary, (std::string(name.view()) + "_").c_str(), member));
}

void addMethods(PyObject* dictionary, ClassFront& front) {
  for (MethodRecord const& method : front.fRecord->methods()) {
    if (method.fIsConstructor || PyDict_Contains(dictionary, pythonName(method.fName))) continue;
    if (isLiteral(method)) {
      front.fLiterals.push_back(method.fName);
      addMember(dictionary, method.fName, makeLiteral(method.fName, *front.fRecord).get());
    } else {
      addMember(dictionary, method.fName, makeMethod(method.fName, *front.fRecord).get());
    }
  }
}

Ref makeDictionary(ClassFront& front) {
  ClassRecord& record = *front.fRecord;
  Ref dictionary = Ref::checked(PyDict_New());
  PyObject* dict = dictionary.get();
  Ref const slots = Ref::checked(PyTuple_New(0));
  checkedInt(PyDict_SetItemString(dict, "__slots__", slots.get()));
  checkedInt(PyDict_SetItemString(dict, "__doc__", gClassDoc));
  checkedInt(PyDict_SetItemString(dict, "__signature__", gClassSignature));
  Ref const module = pythonText(record.package() ? moduleNameOf(record.package()->name().view()) : "umlmm");
  checkedInt(PyDict_SetItemString(dict, "__module__", module.get()));
  for (host::PropertyRecord const& property : record.properties())
    addMember(dict, property.fName, makeProperty(property).get());
  addMethods(dict, front);
  putAdditions(record, dict);
  return dictionary;
}

host::Member const* comparison(ClassRecord& record, char const* name) {
  host::Member const* member = record.findMember(internal::intern(name));
  return member && !member->fProperty ? member : nullptr;
}

void findSpecialMembers(ClassFront& front) {
  constexpr char const* kNames[] = {"lt", "le", "eq", "ne", "gt", "ge"};
  static_assert(Py_LT == 0 && Py_LE == 1 && Py_EQ == 2 && Py_NE == 3 && Py_GT == 4 && Py_GE == 5);
  for (int i = 0; i < 6; ++i) front.fComparisons[i] = comparison(*front.fRecord, kNames[i]);
  front.fToText = comparison(*front.fRecord, "toString");
}

/// Calls what was added to make objects; throws if there is nothing.
PyObject* makeAsAdded(PyObject* type, PyObject* const* arguments, int count, PyObject* keywords) {
  Ref const maker = Ref::shared(makerWithKeywords(reinterpret_cast<PyTypeObject*>(type)));
  if (!maker) checkNoKeywords(keywords, frontOfType(type).fRecord->fName.c_str());
  Ref const positional = Ref::checked(PyTuple_New(count));
  for (int i = 0; i < count; ++i) PyTuple_SET_ITEM(positional.get(), i, Py_NewRef(arguments[i]));
  Ref const named = Ref::checked(PyDict_New());
  for (Py_ssize_t i = 0; keywords && i < PyTuple_GET_SIZE(keywords); ++i)
    checkedInt(PyDict_SetItem(named.get(), PyTuple_GET_ITEM(keywords, i), arguments[count + i]));
  return PyObject_CallFunctionObjArgs(maker.get(), type, positional.get(), named.get(), nullptr);
}

PyObject* construct(PyObject* type, PyObject* const* arguments, std::size_t flaggedCount,
                    PyObject* keywords) {
  return guarded<PyObject*>(nullptr, [=] {
    ClassFront& front = frontOfType(type);
    int const count = static_cast<int>(PyVectorcall_NARGS(flaggedCount));
    if (keywords && PyTuple_GET_SIZE(keywords) > 0) {
      Ref made = count == 0 ? front.fPlans.make(type, keywords, arguments) : Ref();
      if (made) return made.release();
      return makeAsAdded(type, arguments, count, keywords);
    }
    Arguments source(arguments);
    MethodRecord const* constructor =
        front.fConstruction.find(nullptr, host::CallForm::Constructor, arguments, count);
    if (!constructor) {
      // Enumerations have no constructor of their own.
      if (!front.fLiterals.empty() && makerWithKeywords(front.fType))
        return makeAsAdded(type, arguments, count, nullptr);
      constructor = &host::resolveConstructor(*front.fRecord, source, count);
      front.fConstruction.store(nullptr, host::CallForm::Constructor, arguments, count, *constructor);
    }
    Ref object(objectOf(*host::makeInstance(*front.fRecord)));
    try {
      host::construct(*constructor, instanceOf(object.get()), source, count);
    } catch (...) {
      raiseExplained([&](host::FailureKind kind) -> std::string {
        if (kind != host::FailureKind::NoReference || count == constructor->fCount) return {};
        return nameOf(*front.fRecord) + " was called without a " +
               std::string(constructor->argumentType(count).fName.view());
      });
      throw PythonError();
    }
    return object.release();
  });
}

}  // namespace

void planMaking(PyObject* type, PyObject* names, PyTypeObject* ownerType, PyObject* given, PyObject* list) {
  Ref const interned = Ref::checked(PyTuple_New(PyTuple_GET_SIZE(names)));
  Py_ssize_t ownerAt = -1;
  for (Py_ssize_t at = 0; at < PyTuple_GET_SIZE(names); ++at) {
    PyObject* name = PyTuple_GET_ITEM(names, at);
    if (!PyUnicode_CheckExact(name)) raise(PyExc_TypeError, "The names of keywords are texts");
    if (utf8(name) == "owner") ownerAt = at;
    Py_INCREF(name);
    PyUnicode_InternInPlace(&name);
    PyTuple_SET_ITEM(interned.get(), at, name);
  }
  if (ownerAt < 0) raise(PyExc_ValueError, "No owner is among the keywords");
  frontOfType(type).fPlans.add(interned.get(), static_cast<std::size_t>(ownerAt), ownerType, given, list);
}

namespace {

/// A literal called like the method that it is published as.
PyObject* callLiteral(PyObject* self, PyObject* arguments, PyObject* keywords) {
  return guarded<PyObject*>(nullptr, [=] {
    if (PyTuple_GET_SIZE(arguments) > 0 || (keywords && PyDict_GET_SIZE(keywords) > 0))
      raise(PyExc_TypeError, "A literal takes no arguments");
    return Py_NewRef(self);
  });
}

void finishType(ClassFront& front, PyTypeObject* type) {
  reinterpret_cast<ClassObject*>(type)->fFront = &front;
  front.fType = type;
  type->tp_vectorcall = construct;
  type->tp_dealloc = deallocateInstance;
  // Python tracks objects of all classes made at run time. These hold nothing but their class: they need no
  // collector and are allocated without the room for its links.
  type->tp_flags &= ~Py_TPFLAGS_HAVE_GC;
  type->tp_traverse = nullptr;
  type->tp_clear = nullptr;
  type->tp_free = PyObject_Free;
  if (!front.fLiterals.empty()) type->tp_call = callLiteral;
  // Python's own setters, which know nothing of layouts made here, refuse such types.
  type->tp_flags |= Py_TPFLAGS_IMMUTABLETYPE;
}

// --- the class of classes

PyObject* refuseSubclass(PyTypeObject*, PyObject*, PyObject*) {
  return guarded<PyObject*>(nullptr, []() -> PyObject* {
    raise(PyExc_TypeError,
          "Published classes cannot be subclassed by a script; Kelm.extend adds methods to them");
  });
}

PyObject* getClassAttribute(PyObject* type, PyObject* name) {
  PyObject* value = PyType_Type.tp_getattro(type, name);
  if (value || !PyErr_ExceptionMatches(PyExc_AttributeError) || !PyUnicode_Check(name)) return value;
  return guarded<PyObject*>(nullptr, [=]() -> PyObject* {
    std::string const wanted = utf8(name);
    if (wanted.starts_with("__")) throw PythonError();  // what tools ask for: Python's own error does
    PyErr_Clear();
    raiseAttributeError("class '" + nameOf(*frontOfType(type).fRecord) + "' has no attribute '" + wanted +
                            "'" + didYouMean(wanted, memberNames(reinterpret_cast<PyTypeObject*>(type))),
                        type, name);
  });
}

int setClassAttribute(PyObject* type, PyObject* name, PyObject*) {
  return guarded(-1, [=]() -> int {
    raise(PyExc_TypeError,
          shortRepr(name) + " of class '" + nameOf(*frontOfType(type).fRecord) +
              "' cannot be set: members of published classes are fixed; Kelm.extend adds methods");
  });
}

PyObject* iterateClass(PyObject* type) {
  return guarded<PyObject*>(nullptr, [=]() -> PyObject* {
    static PyObject* const sName = checked(PyUnicode_InternFromString("__class_iter__"));
    Ref const iterate = Ref::shared(_PyType_Lookup(reinterpret_cast<PyTypeObject*>(type), sName));
    if (iterate) return PyObject_CallOneArg(iterate.get(), type);
    raise(PyExc_TypeError, std::string("'") + Py_TYPE(type)->tp_name + "' object is not iterable");
  });
}

PyObject* tellOfClass(PyObject* self, PyObject* object, PyObject* type) {
  return guarded<PyObject*>(nullptr, [=]() -> PyObject* {
    PyObject* cls = type ? type : reinterpret_cast<PyObject*>(Py_TYPE(object));
    if (!Py_IS_TYPE(cls, &gMetaType)) return Py_NewRef(Py_None);
    return reinterpret_cast<ClassText*>(self)->fTell(cls);
  });
}

PyObject* tellSignature(PyObject* cls) { return signatureOf(cls, Py_None).release(); }

PyObject* tellDoc(PyObject* cls) {
  ClassRecord& record = *frontOfType(cls).fRecord;
  std::string text = nameOf(record);
  std::string_view last;
  for (char const* description : {record.info().getDescription(), record.info().getDetailedDescription()}) {
    if (!description || !*description || description == last) continue;
    text.append("\n\n").append(description);
    last = description;
  }
  for (MethodRecord const* constructor : record.constructors()) text += "\n\n" + constructor->text();
  return described(cls, Py_None, pythonText(text)).release();
}

PyObject* makeClassText(PyObject* (*tell)(PyObject* cls)) {
  PyObject* text = checked(gClassTextType.tp_alloc(&gClassTextType, 0));
  reinterpret_cast<ClassText*>(text)->fTell = tell;
  return text;
}

// Tools ask the class of a class for its documentation as well.
PyObject* docOfClass(PyObject* cls, void*) {
  return guarded<PyObject*>(nullptr, [=] { return tellDoc(cls); });
}
PyGetSetDef sMetaAttributes[] = {{"__doc__", docOfClass, nullptr, nullptr, nullptr},
                                 {nullptr, nullptr, nullptr, nullptr, nullptr}};

}  // namespace

ClassFront& frontOf(ClassRecord& record) {
  if (record.fFront) [[likely]]
    return *static_cast<ClassFront*>(record.fFront);
  runBeforeFirstClass();
  record.ensureFilled();
  auto front = std::make_unique<ClassFront>();
  front->fRecord = &record;
  front->fSequence = record.info().getSequenceHook();
  Ref const bases = makeBases(record);
  Ref const dictionary = makeDictionary(*front);
  Ref const name = pythonText(shortNameOf(record));
  Ref const arguments = Ref::checked(PyTuple_Pack(3, name.get(), bases.get(), dictionary.get()));
  Ref type = Ref::checked(PyType_Type.tp_new(&gMetaType, arguments.get(), nullptr));
  // Each allocation may have run a finalizer that touched the class: the first one made is the class.
  if (record.fFront) return *static_cast<ClassFront*>(record.fFront);
  findSpecialMembers(*front);
  finishType(*front, reinterpret_cast<PyTypeObject*>(type.release()));
  record.fFront = front.get();
  return *front.release();
}

bool hasLiterals(ClassRecord& record) {
  return std::ranges::any_of(record.methods(), isLiteral) &&
         record.findMember(internal::interned<"fromString">());
}

bool isEnumeration(ClassRecord& record) {
  return !frontOf(record).fLiterals.empty() && record.findMember(internal::interned<"fromString">());
}

std::string literalNames(ClassRecord& record) {
  std::string text;
  for (VeskInterned literal : frontOf(record).fLiterals)
    text.append(text.empty() ? "" : ", ").append(literal.view());
  return text;
}

std::vector<std::string> memberNames(PyTypeObject* type) {
  std::set<std::string> names;
  for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(type->tp_mro); ++i) {
    Ref const members = ownMembers(reinterpret_cast<PyTypeObject*>(PyTuple_GET_ITEM(type->tp_mro, i)));
    PyObject *key, *value;
    Py_ssize_t position = 0;
    while (PyDict_Next(members.get(), &position, &key, &value)) {
      std::string name = utf8(key);
      if (!name.starts_with("_")) names.insert(std::move(name));
    }
  }
  return {names.begin(), names.end()};
}

void setInType(PyTypeObject* type, PyObject* name, PyObject* member) {
  // What stood there goes when the class is closed again: its end may run code of scripts.
  Ref const old = Ref::shared(PyDict_GetItemWithError(ownMembers(type).get(), name));
  type->tp_flags &= ~Py_TPFLAGS_IMMUTABLETYPE;
  int const result = PyType_Type.tp_setattro(reinterpret_cast<PyObject*>(type), name, member);
  type->tp_flags |= Py_TPFLAGS_IMMUTABLETYPE;
  checkedInt(result);
}

void prepareMetaType() {
  Py_SET_REFCNT(reinterpret_cast<PyObject*>(&gClassTextType), 1);
  gClassTextType.tp_name = "umlmm._host.ClassText";
  gClassTextType.tp_basicsize = sizeof(ClassText);
  gClassTextType.tp_flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION;
  gClassTextType.tp_descr_get = tellOfClass;
  checkedInt(PyType_Ready(&gClassTextType));
  gClassDoc = makeClassText(tellDoc);
  gClassSignature = makeClassText(tellSignature);

  PyTypeObject& type = gMetaType;
  Py_SET_REFCNT(reinterpret_cast<PyObject*>(&type), 1);
  type.tp_name = "umlmm._host.Class";
  type.tp_getset = sMetaAttributes;
  type.tp_base = &PyType_Type;
  type.tp_basicsize = sizeof(ClassObject);
  type.tp_itemsize = PyType_Type.tp_itemsize;
  type.tp_flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_VECTORCALL;
  type.tp_vectorcall_offset = offsetof(PyTypeObject, tp_vectorcall);
  type.tp_call = PyVectorcall_Call;
  type.tp_new = refuseSubclass;
  type.tp_getattro = getClassAttribute;
  type.tp_setattro = setClassAttribute;
  type.tp_iter = iterateClass;
  checkedInt(PyType_Ready(&type));
}

}  // namespace vesk::python
