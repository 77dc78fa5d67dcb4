#include "vesk/host/Extensions.h"

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "additions.h"
#include "classes.h"
#include "errors.h"
#include "instances.h"
#include "names.h"
#include "packages.h"
#include "vesk/VeskClassInfo.h"
#include "vesk/VeskError.h"
#include "vesk/host/PackageRecord.h"

namespace vesk::python {

namespace {

using host::ClassRecord;

/// The methods that scripts have added, by class and name; as permanent as the classes.
std::set<std::pair<ClassRecord const*, std::string>>& extensions() {
  static auto& sExtensions = *new std::set<std::pair<ClassRecord const*, std::string>>;
  return sExtensions;
}

std::string quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

}  // namespace

ClassRecord& classToExtend(PyObject* className) {
  std::string const name = utf8(className);
  if (ClassRecord* cls = host::findClass(internedName(className))) return *cls;
  std::string meant = name;  // with the package that was left out
  std::vector<std::string> names;
  for (host::PackageRecord* package : host::packages()) {
    if (!name.empty() && package->findClass(name)) meant = std::string(package->name().view()) + "." + name;
    for (ClassRecord* cls : package->classes()) names.emplace_back(cls->fName.view());
  }
  throw VeskError("Class " + quoted(name) + " is not defined" + didYouMean(meant, names),
                  VeskError::Kind::Name);
}

void raisePublished(std::string const& name, ClassRecord const& cls) {
  raise(PyExc_TypeError,
        quoted(name) + " of class " + quoted(cls.fName.view()) +
            " cannot be replaced: published members are fixed; give the member another name");
}

bool canBeFilled(ClassRecord& cls) {
  try {
    cls.ensureFilled();
    return true;
  } catch (std::bad_alloc const&) {
    throw;
  } catch (...) {
    return false;  // whoever uses the class is told why
  }
}

namespace {

void checkIsMethodName(PyObject* name) {
  std::string const text = utf8(name);
  bool const isPythons = text.starts_with("__") && text.ends_with("__");
  if (PyUnicode_IsIdentifier(name) && !isReservedWord(text) && !isPythons) return;
  raise(PyExc_ValueError, quoted(text) + " cannot name a method: " +
                              (isPythons ? "names like this are Python's own" : "an identifier is expected"));
}

void checkIsBody(PyObject* function) {
  if (!PyCallable_Check(function))
    raise(PyExc_TypeError, "The body of a method must be callable, not " + shortRepr(function));
  PyObject* code = PyFunction_Check(function) ? PyFunction_GetCode(function) : nullptr;
  if (!code) return;
  auto const* const shape = reinterpret_cast<PyCodeObject*>(code);
  if (shape->co_argcount == 0 && !(shape->co_flags & CO_VARARGS))
    raise(PyExc_TypeError, "The function takes no argument for the object that it is called on");
}

/// The class that declares what a published name means on a class; null for a name that means nothing.
ClassRecord const* publisherOf(ClassRecord& cls, VeskInterned name) {
  host::Member const* member = cls.findMember(name);
  if (!member) return nullptr;
  return member->fProperty ? member->fProperty->fOwner : member->fMethods.front()->fOwner;
}

/// Throws if a method of this name would stand before a published member, on `named`, which an extension of
/// `receiver` is asked for, or on any class below it.
void checkIsFree(ClassRecord& named, ClassRecord& receiver, PyObject* name) {
  std::string const text = utf8(name);
  for (ClassRecord* cls : {&named, &receiver})
    if (text == cls->getConstructorName()) raisePublished(text, *cls);
  // The Python class knows second names and Python's own members too.
  PyObject* order = frontOf(named).fType->tp_mro;
  for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(order); ++i) {
    auto* base = reinterpret_cast<PyTypeObject*>(PyTuple_GET_ITEM(order, i));
    if (!hasOwnMember(base, name)) continue;
    bool const isClass = Py_IS_TYPE(reinterpret_cast<PyObject*>(base), &gMetaType);
    ClassRecord const* owner = isClass ? reinterpret_cast<ClassObject*>(base)->fFront->fRecord : nullptr;
    if (!extensions().contains({owner, text}) && !hasAddition(base, name)) raisePublished(text, named);
  }
  // Several branches meet in some classes below: what one of them publishes may stand behind the receiver.
  VeskInterned const token = internedName(name);
  for (host::PackageRecord* package : host::packages()) {
    for (ClassRecord* cls : package->classes()) {
      if (cls->info().getSequenceHook() || !canBeFilled(*cls)) continue;
      int const distance = cls->distanceTo(receiver);
      if (distance < 0) continue;
      ClassRecord const* publisher = publisherOf(*cls, token);
      if (publisher && cls->distanceTo(*publisher) > distance) raisePublished(text, *cls);
    }
  }
}

}  // namespace

void extendClass(PyObject* className, PyObject* name, PyObject* function) {
  checkIsBody(function);
  checkIsMethodName(name);
  ClassRecord& named = classToExtend(className);
  named.ensureFilled();
  // The class is filled: its library says at once on which class an extension goes.
  ClassRecord* receiver = nullptr;
  host::addExtension(named.fName.c_str(), [&receiver](VeskClass* cls, VeskClient const*) {
    receiver = dynamic_cast<ClassRecord*>(cls);
  });
  if (!receiver) throw VeskError("Class " + quoted(named.fName.view()) + " cannot be extended by scripts");
  checkIsFree(named, *receiver, name);
  // What Python itself does not bind to an object, such as a built-in function, is wrapped so that it does.
  Ref const body =
      Py_TYPE(function)->tp_descr_get ? Ref::shared(function) : Ref::checked(PyInstanceMethod_New(function));
  extensions().emplace(receiver, utf8(name));
  setInType(frontOf(*receiver).fType, name, body.get());
}

}  // namespace vesk::python
