#include <string>

#include "additions.h"
#include "arguments.h"
#include "classes.h"
#include "errors.h"
#include "instances.h"
#include "lists.h"
#include "lock.h"
#include "members.h"
#include "names.h"
#include "packages.h"
#include "tarn/tarn.h"
#include "texts.h"
#include "vesk/VeskError.h"
#include "vesk/factory/BindingRegistry.h"
#include "vesk/host/PackageRecord.h"

namespace vesk::python {

namespace {

Ref tupleOfNames(std::vector<std::string_view> const& names) {
  Ref tuple = Ref::checked(PyTuple_New(static_cast<Py_ssize_t>(names.size())));
  for (std::size_t i = 0; i < names.size(); ++i)
    PyTuple_SET_ITEM(tuple.get(), static_cast<Py_ssize_t>(i), pythonText(names[i]).release());
  return tuple;
}

PyObject* load(PyObject*, PyObject* library) {
  return guarded<PyObject*>(nullptr, [=] {
    std::vector<std::string_view> names;
    for (host::PackageRecord* package : host::load(utf8(library))) names.push_back(package->name().view());
    return tupleOfNames(names).release();
  });
}

PyObject* attach(PyObject*, PyObject* arguments) {
  return guarded<PyObject*>(nullptr, [=] {
    PyObject* module = nullptr;
    char const* package = nullptr;
    if (!PyArg_ParseTuple(arguments, "O!s", &PyModule_Type, &module, &package)) throw PythonError();
    attachPackage(module, package);
    return Py_NewRef(Py_None);
  });
}

PyObject* extend(PyObject*, PyObject* arguments) {
  return guarded<PyObject*>(nullptr, [=] {
    PyObject *className = nullptr, *name = nullptr, *function = nullptr;
    if (!PyArg_ParseTuple(arguments, "UUO:extend", &className, &name, &function)) throw PythonError();
    extendClass(className, name, function);
    return Py_NewRef(Py_None);
  });
}

PyObject* add(PyObject*, PyObject* arguments) {
  return guarded<PyObject*>(nullptr, [=] {
    PyObject *kind = nullptr, *members = nullptr;
    if (!PyArg_ParseTuple(arguments, "UO!:add", &kind, &PyDict_Type, &members)) throw PythonError();
    addMembers(kind, members);
    return Py_NewRef(Py_None);
  });
}

PyObject* additions(PyObject*, PyObject*) {
  return guarded<PyObject*>(nullptr, [] { return allAdditions().release(); });
}

PyObject* beforeFirstClass(PyObject*, PyObject* function) {
  callBeforeFirstClass(function);
  Py_RETURN_NONE;
}

PyObject* errorFamily(PyObject*, PyObject* function) {
  setErrorFamily(function);
  Py_RETURN_NONE;
}

PyObject* describer(PyObject*, PyObject* function) {
  setDescriber(function);
  Py_RETURN_NONE;
}

PyObject* state(PyObject*, PyObject* model) {
  return guarded<PyObject*>(nullptr, [=] { return stateOfModel(model).release(); });
}

PyObject* shownObject(PyObject*, PyObject* list) {
  return guarded<PyObject*>(nullptr, [=] { return objectShownBy(list).release(); });
}

PyObject* copy(PyObject*, PyObject* arguments) {
  return guarded<PyObject*>(nullptr, [=] {
    PyObject *object = nullptr, *place = Py_None;
    if (!PyArg_ParseTuple(arguments, "O|O:copy", &object, &place)) throw PythonError();
    return copyOf(object, place).release();
  });
}

PyObject* letGo(PyObject*, PyObject* object) {
  return guarded<PyObject*>(nullptr, [=] {
    letGoOf(object);
    return Py_NewRef(Py_None);
  });
}

PyObject* makeSo(PyObject*, PyObject* arguments) {
  return guarded<PyObject*>(nullptr, [=] {
    PyObject *type = nullptr, *names = nullptr, *ownerType = nullptr, *given = nullptr, *list = nullptr;
    if (!PyArg_ParseTuple(arguments, "O!O!O!UU:make_so", &gMetaType, &type, &PyTuple_Type, &names,
                          &PyType_Type, &ownerType, &given, &list))
      throw PythonError();
    planMaking(type, names, reinterpret_cast<PyTypeObject*>(ownerType), given, list);
    return Py_NewRef(Py_None);
  });
}

host::PackageRecord& packageOf(PyObject* name) {
  host::PackageRecord* package = host::findPackage(utf8(name));
  if (!package) raise(PyExc_ValueError, "Package " + shortRepr(name) + " is not loaded");
  return *package;
}

PyObject* classNames(PyObject*, PyObject* package) {
  return guarded<PyObject*>(nullptr, [=] {
    std::vector<std::string_view> names;
    for (host::ClassRecord* cls : packageOf(package).classes()) names.push_back(cls->fName.view());
    return tupleOfNames(names).release();
  });
}

PyObject* describe(PyObject*, PyObject* className) {
  return guarded<PyObject*>(nullptr,
                            [=] { return describeClass(host::classOf(internedName(className))).release(); });
}

PyObject* describePackageFunctions(PyObject*, PyObject* package) {
  return guarded<PyObject*>(nullptr, [=] { return describeFunctions(utf8(package)).release(); });
}

PyObject* liveCounts(PyObject*, PyObject*) {
  return Py_BuildValue("{s:n,s:n,s:n}", "instances", static_cast<Py_ssize_t>(host::Instance::liveCount()),
                       "bindings", static_cast<Py_ssize_t>(factory::basic::BindingRegistry::size()), "arrays",
                       static_cast<Py_ssize_t>(tarn::liveArrayCount()));
}

PyMethodDef sFunctions[] = {
    {"load", load, METH_O, "load(name) -> names of the packages that the library lib<name>.so brings"},
    {"attach", attach, METH_VARARGS, "attach(module, package): shows a package's members in a module"},
    {"extend", extend, METH_VARARGS,
     "extend(class_name, name, function): adds a method to a published class\n\n"
     "The class is named by the full name of its changeable form, such as 'umlmm.Comment'; the method is on "
     "its\n"
     "read-only form too. The function is called with the object and the arguments of the call. The name "
     "must "
     "be\n"
     "free: published members are not replaced. A method that was added before is."},
    {"add", add, METH_VARARGS, "add(kind, members): adds members to a kind of objects; see umlmm._front"},
    {"additions", additions, METH_NOARGS, "additions() -> the members added so far, by kind"},
    {"before_first_class", beforeFirstClass, METH_O,
     "before_first_class(function): to be called once, before the first class is made"},
    {"error_family", errorFamily, METH_O,
     "error_family(function): to be called with one of Python's exceptions for the class to raise"},
    {"describer", describer, METH_O,
     "describer(function): to be called with what, class, name and the host's own text for documentation and "
     "signatures"},
    {"state", state, METH_O,
     "state(object) -> a dictionary of a model or an element's model, which lives until it is closed"},
    {"shown_object", shownObject, METH_O,
     "shown_object(list) -> the object whose property a list shows and changes, None for another list"},
    {"copy", copy, METH_VARARGS,
     "copy(object, place=None) -> a copy of all that it owns, or place, filled with it"},
    {"let_go", letGo, METH_O,
     "let_go(model): from now on the model lives as long as an object of it is there, and no longer by "
     "itself"},
    {"make_so", makeSo, METH_VARARGS,
     "make_so(class, names, owner_class, given, list): from now on class(**keywords) with these names of "
     "keywords,\n"
     "the owner among them, is made of the owner's attribute, has its keywords set and is appended to the "
     "owner's list"},
    {"class_names", classNames, METH_O, "class_names(package) -> full names in the order of announcement"},
    {"describe_class", describe, METH_O, "describe_class(name) -> what the filled class tells of itself"},
    {"describe_functions", describePackageFunctions, METH_O,
     "describe_functions(package) -> list of descriptions"},
    {"live_counts", liveCounts, METH_NOARGS,
     "live_counts() -> numbers of living instances, bindings and arrays"},
    {nullptr, nullptr, 0, nullptr}};

void terminateHost() noexcept {
  try {
    host::terminate();
  } catch (...) {  // the process ends: there is no one left to tell
  }
}

/// The host's counts and registries are those of the process and know one interpreter.
int execute(PyObject* module) {
  return guarded(-1, [=] {
    static bool sIsLoaded = false;
    if (sIsLoaded || PyInterpreterState_Get() != PyInterpreterState_Main())
      raise(PyExc_ImportError, "umlmm can be loaded once in a process, by its main interpreter");
    sIsLoaded = true;
    prepareInstanceType();
    prepareMetaType();
    prepareMemberTypes();
    prepareListTypes();
    preparePackageType();
    prepareAttributeAccess();
    prepareLock();
    host::setInstanceMaker(&makePyInstance);
    checkedInt(PyModule_AddStringConstant(module, "__version__", UMLMM_VERSION));
    Py_AtExit(terminateHost);
    return 0;
  });
}

PyModuleDef_Slot sSlots[] = {{Py_mod_exec, reinterpret_cast<void*>(&execute)}, {0, nullptr}};

PyModuleDef sModule = {PyModuleDef_HEAD_INIT,
                       "umlmm._host",
                       "The host of the published classes: loads libraries and shows what they announce.",
                       0,
                       sFunctions,
                       sSlots,
                       nullptr,
                       nullptr,
                       nullptr};

}  // namespace

}  // namespace vesk::python

// NOLINTNEXTLINE(bugprone-reserved-identifier): the name is Python's choice
PyMODINIT_FUNC PyInit__host() { return PyModuleDef_Init(&vesk::python::sModule); }
