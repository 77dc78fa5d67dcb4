#include "calls.h"

#include "arguments.h"
#include "classes.h"
#include "doors.h"
#include "errors.h"
#include "instances.h"
#include "names.h"
#include "results.h"
#include "vesk/VeskClassInfo.h"

namespace vesk::python {

namespace {

/// Whether all values of the type convert alike, and the type lives as long as the process.
bool settlesChoice(PyTypeObject* type) noexcept {
  return Py_IS_TYPE(reinterpret_cast<PyObject*>(type), &gMetaType) || type == &PyUnicode_Type ||
         type == &PyLong_Type || type == &PyBool_Type || type == Py_TYPE(Py_None);
}

/// Turns the failure of a call that is being handled into a Python error. One that only tells the type of a
/// missing value tells the value too.
[[noreturn, gnu::cold]] void raiseFailedCall(host::MethodRecord const& method, host::CallForm form,
                                             PyObject* const* arguments, int count) {
  raiseExplained([&](host::FailureKind kind) -> std::string {
    int const offset = method.fHasReceiver && form != host::CallForm::OnInstance ? 1 : 0;
    for (int i = offset; kind == host::FailureKind::WrongValue && i < count; ++i) {
      host::Type const& type = method.argumentType(i - offset);
      if (type.isClass() && isEmpty(arguments[i])) return refusal(arguments[i], acceptedElements(type));
    }
    return {};
  });
  throw PythonError();
}

bool append(host::Instance& list, PyInstance& value) {
  SequenceHook const* const hook = list.classRecord().info().getSequenceHook();
  return hook && hook->append(&list, value.array());
}

}  // namespace

host::MethodRecord const* CallCache::find(host::Member const* member, host::CallForm form,
                                          PyObject* const* arguments, int count) const noexcept {
  if (fMember != member || fCount != count || fForm != form) return nullptr;
  for (int i = 0; i < count; ++i)
    if (Py_TYPE(arguments[i]) != fTypes[i]) return nullptr;
  return fMethod;
}

void CallCache::store(host::Member const* member, host::CallForm form, PyObject* const* arguments, int count,
                      host::MethodRecord const& method) noexcept {
  fCount = -1;
  fAppends = false;
  if (count > kMostArguments) return;
  for (int i = 0; i < count; ++i) {
    if (!settlesChoice(Py_TYPE(arguments[i]))) return;
    fTypes[i] = Py_TYPE(arguments[i]);
  }
  fMember = member;
  fMethod = &method;
  fForm = form;
  fCount = count;
  fAppends = form == host::CallForm::OnInstance && count == 1 && isInstance(arguments[0]) &&
             member->fName == internal::interned<"append">() && method.fOwner &&
             method.fOwner->info().getSequenceHook() && !areDoorsShut();
}

PyObject* call(CallCache& cache, host::Member const& member, host::CallForm form, host::Instance* receiver,
               PyObject* const* arguments, int count) {
  Arguments source(arguments);
  host::MethodRecord const* method = cache.find(&member, form, arguments, count);
  if (!method) {
    method = &host::resolveMethod(member, form, source, count);
    cache.store(&member, form, arguments, count, *method);
  }
  try {
    if (cache.appends() && append(*receiver, instanceOf(arguments[0]))) return Py_NewRef(Py_None);
    return toPython(host::callMethod(*method, form, receiver, source, count)).release();
  } catch (...) {
    raiseFailedCall(*method, form, arguments, count);
  }
}

Ref callPublished(PyObject* object, VeskInterned name, PyObject* const* arguments, int count) {
  PyInstance& instance = instanceOf(object);
  host::Member const* member = instance.classRecord().findMember(name);
  if (!member || member->fProperty)
    raise(PyExc_TypeError, "An object of class '" + std::string(instance.classRecord().fName.view()) +
                               "' cannot be changed: it has no method '" + std::string(name.view()) + "'");
  Arguments source(arguments);
  host::MethodRecord const& method = host::resolveMethod(*member, host::CallForm::OnInstance, source, count);
  try {
    return toPython(host::callMethod(method, host::CallForm::OnInstance, &instance, source, count));
  } catch (...) {
    raiseFailedCall(method, host::CallForm::OnInstance, arguments, count);
  }
}

bool accepts(PyObject* object, VeskInterned name, PyObject* const* arguments, int count) {
  host::Member const* member = instanceOf(object).classRecord().findMember(name);
  Arguments source(arguments);
  return member && host::findMethod(*member, host::CallForm::OnInstance, source, count);
}

void checkNoKeywords(PyObject* keywords, char const* what) {
  if (keywords && PyTuple_GET_SIZE(keywords) > 0)
    raise(PyExc_TypeError, std::string(what) + " takes no keyword arguments");
}

}  // namespace vesk::python
