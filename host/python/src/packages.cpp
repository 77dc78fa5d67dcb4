#include "packages.h"

#include <map>
#include <vector>

#include "classes.h"
#include "errors.h"
#include "members.h"
#include "names.h"
#include "vesk/VeskError.h"
#include "vesk/host/Extensions.h"
#include "vesk/host/PackageRecord.h"

namespace vesk::python {

namespace {

using host::ClassRecord;
using host::PackageRecord;

PyTypeObject gPackageType{};

/// Package name of each attached module, by module, and module name of each package.
std::map<PyObject*, PackageRecord*>& attached() {
  static auto& sAttached = *new std::map<PyObject*, PackageRecord*>;
  return sAttached;
}
std::map<std::string, std::string, std::less<>>& moduleNames() {
  static auto& sNames = *new std::map<std::string, std::string, std::less<>>;
  return sNames;
}

PackageRecord& packageOf(PyObject* module) {
  auto const found = attached().find(module);
  if (found == attached().end()) raise(PyExc_AttributeError, "The module shows no package");
  return *found->second;
}

/// The exception class of the package under a short name, or null.
PyObject* findFailureClass(PackageRecord& package, std::string_view shortName) {
  std::string const fullName = std::string(package.name().view()) + "." + std::string(shortName);
  for (char const* name : host::failureNames()) {
    if (fullName == name) return failureClass(name);
    if (fullName == readOnlyFailureName(name)) return readOnlyFailureClass(name);
  }
  return nullptr;
}

std::vector<std::string> publicNames(PackageRecord& package) {
  std::vector<std::string> names;
  for (ClassRecord* cls : package.classes())
    if (!cls->info().isHidden()) names.emplace_back(cls->info().getName());
  for (host::Member const* function : package.functions()) names.emplace_back(function->fName.view());
  std::string const prefix = std::string(package.name().view()) + ".";
  for (std::string_view name : host::failureNames()) {
    if (!name.starts_with(prefix)) continue;
    names.emplace_back(name.substr(prefix.size()));
    names.push_back(readOnlyFailureName(name).substr(prefix.size()));
  }
  return names;
}

Ref listOf(std::vector<std::string> const& texts) {
  Ref list = Ref::checked(PyList_New(0));
  for (std::string const& text : texts) checkedInt(PyList_Append(list.get(), pythonText(text).get()));
  return list;
}

/// What a name of the package means; no reference if it means nothing.
Ref findMember(PackageRecord& package, std::string const& name) {
  if (ClassRecord* cls = package.findClass(name))
    return Ref::shared(reinterpret_cast<PyObject*>(frontOf(*cls).fType));
  if (VeskInterned const token = internal::findInterned(name))
    if (host::Member const* function = package.findFunction(token)) return makeFunction(*function);
  if (PyObject* failure = findFailureClass(package, name)) return Ref::shared(failure);
  return Ref();
}

PyObject* getMember(PyObject* module, PyObject* name) {
  PyObject* dictionary = PyModule_GetDict(module);
  if (PyObject* known = PyDict_GetItemWithError(dictionary, name)) return Py_NewRef(known);
  if (PyErr_Occurred()) return nullptr;
  return guarded<PyObject*>(nullptr, [=]() -> PyObject* {
    std::string const text = utf8(name);
    PackageRecord& package = packageOf(module);
    if (text == "__all__") return listOf(publicNames(package)).release();
    if (text.starts_with("_")) return PyModule_Type.tp_getattro(module, name);
    if (Ref member = findMember(package, text)) {
      checkedInt(PyDict_SetItem(dictionary, name, member.get()));
      return member.release();
    }
    if (PyObject* other = PyModule_Type.tp_getattro(module, name)) return other;
    // What the module's own `__getattr__` tells of a name stays.
    if (PyErr_Occurred() != PyExc_AttributeError) throw PythonError();
    PyErr_Clear();
    raiseAttributeError("package '" + moduleNameOf(package.name().view()) + "' has no member '" + text + "'" +
                            didYouMean(text, publicNames(package)),
                        module, name);
  });
}

int setMember(PyObject* module, PyObject* name, PyObject* value) {
  return guarded(-1, [=] {
    PackageRecord& package = packageOf(module);
    std::string const text = utf8(name);
    if (package.isLocked() && !text.starts_with("_") && findMember(package, text))
      raise(PyExc_TypeError, "'" + text + "' cannot be replaced: the members of package '" +
                                 moduleNameOf(package.name().view()) + "' are fixed");
    return PyModule_Type.tp_setattro(module, name, value);
  });
}

PyObject* listMembers(PyObject* module, PyObject*) {
  return guarded<PyObject*>(nullptr, [=] {
    Ref names = listOf(publicNames(packageOf(module)));
    Ref const own = Ref::checked(PyDict_Keys(PyModule_GetDict(module)));
    Ref all = Ref::checked(PySet_New(names.get()));
    Ref const done = Ref::checked(PyObject_CallMethod(all.get(), "update", "O", own.get()));
    return checked(PySequence_List(all.get()));
  });
}

PyMethodDef sPackageMethods[] = {
    {"__dir__", listMembers, METH_NOARGS, "Names of all members of the package."},
    {nullptr, nullptr, 0, nullptr}};

}  // namespace

void attachPackage(PyObject* module, std::string_view package) {
  PackageRecord* record = host::findPackage(package);
  if (!record) throw VeskError("Package '" + std::string(package) + "' is not loaded", VeskError::Kind::Name);
  attached()[module] = record;
  char const* name = PyModule_GetName(module);
  if (!name) throw PythonError();
  moduleNames()[std::string(package)] = name;
  checkedInt(PyObject_SetAttrString(module, "__class__", reinterpret_cast<PyObject*>(&gPackageType)));
}

std::string moduleNameOf(std::string_view package) {
  auto const found = moduleNames().find(package);
  return found == moduleNames().end() ? std::string(package) : found->second;
}

void preparePackageType() {
  PyTypeObject& type = gPackageType;
  Py_SET_REFCNT(reinterpret_cast<PyObject*>(&type), 1);
  type.tp_name = "umlmm._host.Package";
  type.tp_doc = "A module that shows a package of the host.";
  type.tp_base = &PyModule_Type;
  type.tp_flags = Py_TPFLAGS_DEFAULT;
  type.tp_getattro = getMember;
  type.tp_setattro = setMember;
  type.tp_methods = sPackageMethods;
  checkedInt(PyType_Ready(&type));
}

}  // namespace vesk::python
