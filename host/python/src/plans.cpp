#include "plans.h"

#include <algorithm>

#include "classes.h"
#include "names.h"

namespace vesk::python {

namespace {

bool areSame(PyObject* names, PyObject* others) noexcept {
  if (names == others) return true;
  Py_ssize_t const size = PyTuple_GET_SIZE(names);
  if (size != PyTuple_GET_SIZE(others)) return false;
  for (Py_ssize_t at = 0; at < size; ++at)
    if (PyTuple_GET_ITEM(names, at) != PyTuple_GET_ITEM(others, at)) return false;
  return true;
}

PyObject* textOf(char const* text) { return checked(PyUnicode_InternFromString(text)); }

/// Ends an object that was not finished; the error that is set stays the one that is raised.
void destroyUnfinished(PyObject* object) {
  static PyObject* const sDestroy = textOf("destroy");
  PyObject *type = nullptr, *value = nullptr, *trace = nullptr;
  PyErr_Fetch(&type, &value, &trace);
  Ref const ended(PyObject_CallMethodNoArgs(object, sDestroy));
  if (!ended) PyErr_Clear();
  PyErr_Restore(type, value, trace);
}

}  // namespace

void Plans::add(PyObject* names, std::size_t ownerAt, PyTypeObject* ownerType, PyObject* given,
                PyObject* list) {
  fPlans[fNext++ % kMost] = {Ref::shared(names), ownerAt, Ref::shared(reinterpret_cast<PyObject*>(ownerType)),
                             Ref::shared(given), Ref::shared(list)};
}

Ref Plans::make(PyObject* type, PyObject* names, PyObject* const* values) const {
  static PyObject* const sAppend = textOf("append");
  auto const plan = std::ranges::find_if(fPlans, [&](Plan const& one) {
    return one.fNames && areSame(one.fNames.get(), names) &&
           reinterpret_cast<PyObject*>(Py_TYPE(values[one.fOwnerAt])) == one.fOwnerType.get();
  });
  if (plan == fPlans.end()) return {};
  // What the steps run may add plans.
  Ref const list = Ref::shared(plan->fList.get());
  std::size_t const ownerAt = plan->fOwnerAt;
  PyObject* const owner = values[ownerAt];
  Ref const given = Ref::checked(PyObject_GetAttr(owner, plan->fGiven.get()));
  Ref object = Ref::checked(PyObject_CallOneArg(type, given.get()));
  bool isWell = true;
  for (std::size_t at = 0; isWell && at < static_cast<std::size_t>(PyTuple_GET_SIZE(names)); ++at)
    isWell =
        at == ownerAt ||
        PyObject_SetAttr(object.get(), PyTuple_GET_ITEM(names, static_cast<Py_ssize_t>(at)), values[at]) == 0;
  if (isWell) {
    Ref const place(PyObject_GetAttr(owner, list.get()));
    isWell = place && Ref(PyObject_CallMethodOneArg(place.get(), sAppend, object.get()));
  }
  if (isWell) return object;
  destroyUnfinished(object.get());
  throw PythonError();
}

}  // namespace vesk::python
