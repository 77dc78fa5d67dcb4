#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "arguments.h"
#include "calls.h"
#include "classes.h"
#include "errors.h"
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
  PyInstance& instance = instanceOf(self);
  ClassFront& front = frontOf(instance);
  host::Type const& type = front.elementType();
  if (isPlain(value, type)) return Ref::shared(value);
  bool const isNoObject = type.isClass() && isEmpty(value);
  if (!isNoObject && accepts(self, internal::interned<"append">(), &value, 1))
    // a plain str runs no code of scripts
    return PyUnicode_Check(value) ? Ref::checked(PyUnicode_FromObject(value)) : Ref::shared(value);
  bool const isView = isViewOf(value, type);
  if (isView && front.fSequence->isLive(&instance))
    return callPublished(value, internal::interned<"asMutable">(), nullptr, 0);
  raise(PyExc_TypeError, listClassName(self) + " does not take " + shortRepr(value) + ": " +
                             acceptedElements(type) + " is expected" +
                             (isView ? "; asMutable() of the read-only view gives one" : ""));
}

/// The values of any iterable as a tuple, all of which the list takes.
Ref elementsFor(PyObject* self, PyObject* iterable) {
  Ref const given = itemsOf(iterable);
  Py_ssize_t const count = PyTuple_GET_SIZE(given.get());
  Ref values = Ref::checked(PyTuple_New(count));
  for (Py_ssize_t i = 0; i < count; ++i) {
    checkSignals(static_cast<std::size_t>(i));
    PyTuple_SET_ITEM(values.get(), i, elementFor(self, PyTuple_GET_ITEM(given.get(), i)).release());
  }
  return values;
}

/// Values as a list holds them, made by the script's conversions before anything is changed.
class ConvertedValues {
 public:
  explicit ConvertedValues(host::Type const& type) : fType(type) {}
  ConvertedValues(ConvertedValues const&) = delete;
  ConvertedValues& operator=(ConvertedValues const&) = delete;
  ~ConvertedValues() {
    for (VeskValue const value : fValues) host::destroyValue(fType, value);
  }

  void add(PyObject* tuple) {
    auto const count = static_cast<std::size_t>(PyTuple_GET_SIZE(tuple));
    fValues.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
      checkSignals(i);
      fValues.push_back(convert(PyTuple_GET_ITEM(tuple, static_cast<Py_ssize_t>(i)), fType));
    }
  }
  [[nodiscard]] std::vector<VeskValue> const& values() const noexcept { return fValues; }

 private:
  host::Type const& fType;
  std::vector<VeskValue> fValues;
};

/// Runs steps of a change that is made one by one. When one fails or the user interrupts it, `undo` gets the
/// number of steps done, and the failure goes on.
template <class Step, class Undo>
void runSteps(Py_ssize_t count, Step step, Undo undo) {
  Py_ssize_t done = 0;
  auto const run = [&] {
    for (; done < count; ++done) {
      checkSignals(static_cast<std::size_t>(done));
      step(done);
    }
    return 0;
  };
  if (guarded(-1, run) == 0) return;
  PyObject *type, *value, *trace;
  PyErr_Fetch(&type, &value, &trace);
  if (guarded(-1, [&] { return undo(done), 0; }) != 0) PyErr_Clear();  // the first failure matters more
  PyErr_Restore(type, value, trace);
  throw PythonError();
}

void eraseRange(PyObject* self, Py_ssize_t first, Py_ssize_t count) {
  while (count-- > 0) eraseAt(self, first + count);
}
void insertRange(PyObject* self, Py_ssize_t first, PyObject* list, Py_ssize_t from) {
  for (Py_ssize_t i = from; i < PyList_GET_SIZE(list); ++i)
    insertAt(self, first + i, PyList_GET_ITEM(list, i));
}

/// Puts new values in the place of a run of old ones; if one is refused, the old ones come back.
void replaceRange(PyObject* self, Py_ssize_t first, Py_ssize_t count, PyObject* values) {
  if (count + PyTuple_GET_SIZE(values) == 0 || splice(self, first, count, values)) return;
  Ref const before = readRange(self, first, first + count);
  Py_ssize_t const left = sizeOf(self) - count;
  Py_ssize_t inserted = 0;  // a list of unique elements leaves out what it holds
  runSteps(
      count + PyTuple_GET_SIZE(values),
      [&](Py_ssize_t i) {
        if (i < count) return eraseAt(self, first + count - 1 - i);
        insertAt(self, first + inserted, PyTuple_GET_ITEM(values, i - count));
        inserted = sizeOf(self) - left;
      },
      [&](Py_ssize_t done) {
        eraseRange(self, first, inserted);
        insertRange(self, first, before.get(), std::max<Py_ssize_t>(count - done, 0));
      });
}

/// The change of a slice with steps, made on a copy of all between its ends, if the list takes that in one
/// step.
bool spliceSteps(PyObject* self, Slice const& range, PyObject* values) {
  if (range.fCount == 0) return true;
  Py_ssize_t const last = range.fStart + (range.fCount - 1) * range.fStep;
  Py_ssize_t const low = std::min(range.fStart, last);
  Ref const items = readRange(self, low, std::max(range.fStart, last) + 1);
  Ref const start = Ref::checked(PyLong_FromSsize_t(range.fStart - low));
  Ref const step = Ref::checked(PyLong_FromSsize_t(range.fStep));
  bool const isToTheFront = range.fStep < 0;
  Ref const slice = Ref::checked(PySlice_New(isToTheFront ? start.get() : nullptr, nullptr, step.get()));
  checkedInt(values ? PyObject_SetItem(items.get(), slice.get(), values)
                    : PyObject_DelItem(items.get(), slice.get()));
  return splice(self, low, std::abs(last - range.fStart) + 1, itemsOf(items.get()).get());
}

void assignSlice(PyObject* self, PyObject* slice, PyObject* iterable) {
  Ref const values = elementsFor(self, iterable);
  Slice const range = resolveSlice(self, slice);
  if (assignOrder(self, range, values.get())) return;
  if (range.fStep != 1 && PyTuple_GET_SIZE(values.get()) != range.fCount)
    raise(PyExc_ValueError, "attempt to assign " + std::to_string(PyTuple_GET_SIZE(values.get())) +
                                " values to an extended slice of " + std::to_string(range.fCount));
  if (isUnique(self) && !(range.fStep == 1 && replacesAll(self, range, values.get())))
    return assignUnique(self, range, values.get());
  if (range.fStep == 1) return replaceRange(self, range.fStart, range.fCount, values.get());
  if (spliceSteps(self, range, values.get())) return;
  Ref const before = readAll(self);
  auto const put = [&](Py_ssize_t place, PyObject* value) { replaceAt(self, place, value); };
  auto const place = [&](Py_ssize_t i) { return range.fStart + i * range.fStep; };
  runSteps(
      range.fCount, [&](Py_ssize_t i) { put(place(i), PyTuple_GET_ITEM(values.get(), i)); },
      [&](Py_ssize_t done) {
        while (done-- > 0) put(place(done), PyList_GET_ITEM(before.get(), place(done)));
      });
}

void deleteSlice(PyObject* self, PyObject* slice) {
  Slice range = resolveSlice(self, slice);
  Ref const nothing = Ref::checked(PyTuple_New(0));
  if (range.fStep == 1) return replaceRange(self, range.fStart, range.fCount, nothing.get());
  if (spliceSteps(self, range, nullptr)) return;
  if (range.fStep > 0) {  // from the end, so that places before stay
    range.fStart += (range.fCount - 1) * range.fStep;
    range.fStep = -range.fStep;
  }
  Ref const before = readAll(self);
  auto const place = [&](Py_ssize_t i) { return range.fStart + i * range.fStep; };
  runSteps(
      range.fCount, [&](Py_ssize_t i) { eraseAt(self, place(i)); },
      [&](Py_ssize_t done) {
        while (done-- > 0) insertAt(self, place(done), PyList_GET_ITEM(before.get(), place(done)));
      });
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
    appendAll(self, elementsFor(self, iterable).get());
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

bool splice(PyObject* self, Py_ssize_t first, Py_ssize_t removed, PyObject* values) {
  ClassFront& front = frontOf(instanceOf(self));
  ConvertedValues converted(front.elementType());
  converted.add(values);
  // The conversions may have changed the list: a place that is gone by now is refused, with nothing changed.
  Py_ssize_t const place = first == kAtEnd ? sizeOf(self) : first;
  return front.fSequence->splice(&instanceOf(self), static_cast<std::size_t>(place),
                                 static_cast<std::size_t>(removed), converted.values().data(),
                                 converted.values().size());
}

void appendAll(PyObject* self, PyObject* values) {
  if (PyTuple_GET_SIZE(values) == 0 || splice(self, kAtEnd, 0, values)) return;
  Py_ssize_t const size = sizeOf(self);
  runSteps(
      PyTuple_GET_SIZE(values),
      [&](Py_ssize_t i) {
        PyObject* value = PyTuple_GET_ITEM(values, i);
        callPublished(self, internal::interned<"append">(), &value, 1);
      },
      [&](Py_ssize_t) { eraseRange(self, size, sizeOf(self) - size); });
}

void prepareListChanges(PyTypeObject& type) {
  sSequence.sq_inplace_concat = extendInPlace;
  sMapping.mp_ass_subscript = assignSubscript;
  type.tp_as_sequence = &sSequence;
  type.tp_as_mapping = &sMapping;
  type.tp_methods = sMethods;
}

}  // namespace vesk::python
