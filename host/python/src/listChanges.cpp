#include <string>

#include "arguments.h"
#include "calls.h"
#include "classes.h"
#include "failures.h"
#include "instances.h"
#include "listAccess.h"
#include "lists.h"
#include "names.h"

/// Changes of published lists, made by their published methods, which count from 1.
namespace vesk::python {

namespace {

Ref pythonIndex(Py_ssize_t place) { return Ref::checked(PyLong_FromSsize_t(place + 1)); }

void eraseAt(PyObject* self, Py_ssize_t place) {
  Ref const index = pythonIndex(place);
  PyObject* const arguments[] = {index.get()};
  callPublished(self, internal::interned<"erase">(), arguments, 1);
}
void insertAt(PyObject* self, Py_ssize_t place, PyObject* value) {
  Ref const index = pythonIndex(place);
  PyObject* const arguments[] = {index.get(), value};
  callPublished(self, internal::interned<"insert">(), arguments, 2);
}
/// The value as the list takes it. The list of a property takes a read-only view as the property does: for
/// what it shows. Any other value is refused, before anything is changed.
Ref elementFor(PyObject* self, PyObject* value) {
  if (accepts(self, internal::interned<"append">(), &value, 1))  // a plain str runs no code of scripts
    return PyUnicode_Check(value) ? Ref::checked(PyUnicode_FromObject(value)) : Ref::shared(value);
  PyInstance& instance = instanceOf(self);
  ClassFront& front = frontOf(instance);
  bool const isView = isViewOf(value, front.elementType());
  if (isView && front.fSequence->isLive(&instance))
    return callPublished(value, internal::interned<"asMutable">(), nullptr, 0);
  raise(PyExc_TypeError, listClassName(self) + " does not take " + shortRepr(value) + ": " +
                             acceptedValues(front.elementType()) + " is expected" +
                             (isView ? "; asMutable() of the read-only view gives one" : ""));
}

/// The values of any iterable, all of which the list takes.
Ref elementsFor(PyObject* self, PyObject* iterable) {
  Ref values = Ref::checked(PySequence_List(iterable));
  for (Py_ssize_t i = 0; i < PyList_GET_SIZE(values.get()); ++i) {
    Ref const given = Ref::shared(PyList_GET_ITEM(values.get(), i));
    checkedInt(PyList_SetItem(values.get(), i, elementFor(self, given.get()).release()));
  }
  return values;
}

void eraseRange(PyObject* self, Py_ssize_t first, Py_ssize_t count) {
  while (count-- > 0) eraseAt(self, first + count);
}

/// Answers how many values were put in before one failed, with the Python error set; all if none failed.
Py_ssize_t insertRange(PyObject* self, Py_ssize_t first, PyObject* values) noexcept {
  Py_ssize_t done = 0;
  guarded(-1, [&] {
    for (; done < PyList_GET_SIZE(values); ++done)
      insertAt(self, first + done, PyList_GET_ITEM(values, done));
    return 0;
  });
  return done;
}

/// Puts new values in the place of a run of old ones; if one is refused, the old ones come back.
void replaceRange(PyObject* self, Slice const& range, PyObject* values) {
  Ref const before = readRange(self, range.fStart, range.fStart + range.fCount);
  eraseRange(self, range.fStart, range.fCount);
  Py_ssize_t const done = insertRange(self, range.fStart, values);
  if (done == PyList_GET_SIZE(values)) return;
  PyObject *type, *value, *trace;
  PyErr_Fetch(&type, &value, &trace);
  guarded(-1, [&] {
    eraseRange(self, range.fStart, done);
    return 0;
  });
  insertRange(self, range.fStart, before.get());
  PyErr_Restore(type, value, trace);
  throw PythonError();
}

void assignSlice(PyObject* self, PyObject* slice, PyObject* iterable) {
  Ref const values = elementsFor(self, iterable);
  Slice const range = resolveSlice(self, slice);
  if (assignOrder(self, range, values.get())) return;
  if (range.fStep == 1 && (!isUnique(self) || replacesAll(self, range, values.get())))
    return replaceRange(self, range, values.get());
  if (range.fStep != 1 && PyList_GET_SIZE(values.get()) != range.fCount)
    raise(PyExc_ValueError, "attempt to assign " + std::to_string(PyList_GET_SIZE(values.get())) +
                                " values to an extended slice of " + std::to_string(range.fCount));
  if (isUnique(self)) return assignUnique(self, range, values.get());
  for (Py_ssize_t i = 0; i < range.fCount; ++i)
    replaceAt(self, range.fStart + i * range.fStep, PyList_GET_ITEM(values.get(), i));
}

void deleteSlice(PyObject* self, PyObject* slice) {
  Slice range = resolveSlice(self, slice);
  if (range.fStep > 0) {  // from the end, so that places before stay
    range.fStart += (range.fCount - 1) * range.fStep;
    range.fStep = -range.fStep;
  }
  for (Py_ssize_t i = 0; i < range.fCount; ++i) eraseAt(self, range.fStart + i * range.fStep);
}

int assignSubscript(PyObject* self, PyObject* key, PyObject* value) {
  return guarded(-1, [=] {
    if (PySlice_Check(key)) {
      value ? assignSlice(self, key, value) : deleteSlice(self, key);
      return 0;
    }
    Py_ssize_t const place = placeOf(self, toIndex(key));
    if (!value) {
      eraseAt(self, place);
    } else {
      assignAt(self, place, elementFor(self, value).get());
    }
    return 0;
  });
}

PyObject* extend(PyObject* self, PyObject* iterable) {
  return guarded<PyObject*>(nullptr, [=] {
    Ref const values = elementsFor(self, iterable);
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(values.get()); ++i)
      appendTo(self, PyList_GET_ITEM(values.get(), i));
    return Py_NewRef(Py_None);
  });
}

PyObject* extendInPlace(PyObject* self, PyObject* iterable) {
  Ref const done(extend(self, iterable));
  return done ? Py_NewRef(self) : nullptr;
}

PyObject* removeValue(PyObject* self, PyObject* value) {
  return guarded<PyObject*>(nullptr, [=] {
    eraseAt(self, placeOfValue(self, value, 0, sizeOf(self)));
    return Py_NewRef(Py_None);
  });
}

PyObject* pop(PyObject* self, PyObject* const* arguments, Py_ssize_t count) {
  return guarded<PyObject*>(nullptr, [=] {
    if (count > 1) raise(PyExc_TypeError, "pop takes at most 1 argument");
    if (sizeOf(self) == 0) raise(PyExc_IndexError, "pop from an empty list");
    Py_ssize_t const place = placeOf(self, count ? toIndex(arguments[0]) : -1);
    Ref item = itemAt(self, place);
    eraseAt(self, place);
    return item.release();
  });
}

PyMethodDef sMethods[] = {
    {"extend", extend, METH_O, "extend(iterable): appends all values, or none if one does not fit"},
    {"remove", removeValue, METH_O, "remove(value): removes the first element equal to the value"},
    {"pop", asFastCall(pop), METH_FASTCALL, "pop(index=-1) -> the element, removed; counted from 0"},
    {"move", asFastCall(moveItem), METH_FASTCALL,
     "move(from, to): moves the element at one place to another, the others closing up; counted from 0"},
    {"swap", asFastCall(swapItems), METH_FASTCALL,
     "swap(i, j): lets the elements at two places change places; counted from 0"},
    {"reverse", reverseItems, METH_NOARGS, "reverse(): turns the order round"},
    {"sort", asKeywordCall(sortItems), METH_VARARGS | METH_KEYWORDS,
     "sort(*, key=None, reverse=False): puts the elements into order, as Python's lists do"},
    {nullptr, nullptr, 0, nullptr}};

PySequenceMethods sSequence{};
PyMappingMethods sMapping{};

}  // namespace

void replaceAt(PyObject* self, Py_ssize_t place, PyObject* value) {
  Ref const index = pythonIndex(place);
  PyObject* const arguments[] = {index.get(), value};
  callPublished(self, internal::interned<"replace">(), arguments, 2);
}

void appendTo(PyObject* self, PyObject* value) {
  callPublished(self, internal::interned<"append">(), &value, 1);
}

void prepareListChanges(PyTypeObject& type) {
  sSequence.sq_inplace_concat = extendInPlace;
  sMapping.mp_ass_subscript = assignSubscript;
  type.tp_as_sequence = &sSequence;
  type.tp_as_mapping = &sMapping;
  type.tp_methods = sMethods;
}

}  // namespace vesk::python
