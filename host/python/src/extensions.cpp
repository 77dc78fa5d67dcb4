#include "vesk/host/Extensions.h"

#include <memory>
#include <string>

#include "classes.h"
#include "failures.h"
#include "instances.h"
#include "names.h"
#include "packages.h"
#include "results.h"
#include "vesk/VeskError.h"
#include "vesk/factory/VeskMethod.h"

namespace vesk::python {

namespace {

constexpr char kAnyObject[] = "python object";

/// A method whose body is a Python function. Scripts call the function itself, with defaults and keywords;
/// the road through the host is for calls that reach the method as one of several of its name.
class ScriptMethod final : public factory::VeskMethod {
 public:
  ScriptMethod(std::string const& name, std::string const& description, char const* receiver,
               PyObject* function, int count)
      : VeskMethod(name.c_str(), factory::MethodAttributes(factory::MethodUnlocked), description.c_str()),
        fFunction(Ref::shared(function)) {
    std::vector<char const*> const types(static_cast<std::size_t>(count), kAnyObject);
    signature() = std::make_shared<VeskMethodSignature const>(VeskInterned(), internal::intern(kAnyObject),
                                                              internal::intern(receiver), types);
  }

  void invoke(VeskClient const*, int& resultCount, VeskValue* results, int argumentCount,
              VeskValue const* arguments) const override {
    Ref const given = Ref::checked(PyTuple_New(argumentCount));
    for (int i = 0; i < argumentCount; ++i) PyTuple_SET_ITEM(given.get(), i, argument(arguments[i], i == 0));
    Ref result = Ref::checked(PyObject_CallObject(fFunction.get(), given.get()));
    results[0] = VeskValue::ofWord(reinterpret_cast<std::uintptr_t>(result.release()));
    resultCount = 1;
  }

  [[nodiscard]] PyObject* function() const noexcept { return fFunction.get(); }

 private:
  static PyObject* argument(VeskValue value, bool isReceiver) {
    if (!isReceiver) return Py_NewRef(reinterpret_cast<PyObject*>(value.word()));
    host::Instance* instance = host::Instance::fromArray(value.array());
    return Py_NewRef(instance ? objectOf(*instance) : Py_None);
  }

  Ref fFunction;
};

/// How many arguments without the receiver a function takes by position.
int argumentCount(PyObject* function) {
  PyObject* code = PyFunction_Check(function) ? PyFunction_GetCode(function) : nullptr;
  int const count = code ? reinterpret_cast<PyCodeObject*>(code)->co_argcount - 1 : 0;
  if (code && count < 0 && !(reinterpret_cast<PyCodeObject*>(code)->co_flags & CO_VARARGS))
    raise(PyExc_TypeError, "The function takes no argument for the object that it is called on");
  return std::clamp(count, 0, host::MethodRecord::kMaxArguments);
}

std::string docOf(PyObject* function) {
  Ref const doc(PyObject_GetAttrString(function, "__doc__"));
  if (!doc) PyErr_Clear();
  return doc && PyUnicode_Check(doc.get()) ? utf8(doc.get()) : std::string();
}

}  // namespace

PyObject* functionOf(host::MethodRecord const& method) noexcept {
  auto const* script = dynamic_cast<ScriptMethod const*>(method.fInfo);
  return script ? script->function() : nullptr;
}

void extendClass(PyObject* className, PyObject* name, PyObject* function) {
  if (!PyCallable_Check(function))
    raise(PyExc_TypeError, "The body of a method must be callable, not " + shortRepr(function));
  host::registerDataType(kAnyObject, host::Carrier::Front);
  int const count = argumentCount(function);
  // The extension is kept by the library, which ends after Python: the references are never given back.
  Py_INCREF(name);
  Py_INCREF(function);
  host::addExtension(utf8(className).c_str(), [=](VeskClass* cls, VeskClient const*) {
    auto* record = dynamic_cast<host::ClassRecord*>(cls);
    if (record && record->state() == host::ClassRecord::State::Filled)
      return addToType(*record, name, function);
    char const* receiver = record ? record->fName.c_str() : nullptr;
    cls->addMethod(new ScriptMethod(utf8(name), docOf(function), receiver, function, count));
  });
}

}  // namespace vesk::python
