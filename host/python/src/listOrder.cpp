#include <algorithm>
#include <string>
#include <vector>

#include "classes.h"
#include "errors.h"
#include "instances.h"
#include "listAccess.h"
#include "lists.h"
#include "names.h"

/// The order of published lists: elements that change places neither leave their list nor come to it.
namespace vesk::python {

namespace {

void checkCount(Py_ssize_t given, Py_ssize_t wanted, char const* method) {
  if (given != wanted)
    raise(PyExc_TypeError, std::string(method) + " takes " + std::to_string(wanted) + " arguments, not " +
                               std::to_string(given));
}

/// Two places of the list. Both numbers are read before the first place: reading one may run anything.
struct Pair {
  Py_ssize_t fFirst, fSecond;
};
Pair placesOf(PyObject* list, PyObject* const* numbers) {
  Py_ssize_t const first = toIndex(numbers[0]);
  Py_ssize_t const second = toIndex(numbers[1]);
  return {placeOf(list, first), placeOf(list, second)};
}

/// Moves of elements from place to place.
class Moves {
 public:
  void add(Py_ssize_t from, Py_ssize_t to) {
    if (from == to) return;
    fFrom.push_back(static_cast<int>(from));
    fTo.push_back(static_cast<int>(to));
  }
  /// Asks the list also if nothing moves: it may be one that can't be written now.
  void apply(PyObject* list) const {
    PyInstance& instance = instanceOf(list);
    frontOf(instance).fSequence->rearrange(&instance, fFrom, fTo);
  }

 private:
  std::vector<int> fFrom, fTo;
};

/// The keys by which elements are sorted.
Ref keysOf(Ref const& elements, PyObject* key) {
  if (key == Py_None) return Ref::shared(elements.get());
  Py_ssize_t const size = PyList_GET_SIZE(elements.get());
  Ref keys = Ref::checked(PyList_New(size));
  for (Py_ssize_t i = 0; i < size; ++i) {
    checkSignals(static_cast<std::size_t>(i));
    Ref const element = Ref::shared(checked(PyList_GetItem(elements.get(), i)));
    PyList_SET_ITEM(keys.get(), i, checked(PyObject_CallOneArg(key, element.get())));
  }
  return keys;
}

/// The numbers of the keys in their order: Python's own sort, stable, which may run anything.
Ref sortedNumbers(Ref const& keys, int reverse) {
  Ref const count = Ref::checked(PyLong_FromSsize_t(PyList_GET_SIZE(keys.get())));
  Ref const range =
      Ref::checked(PyObject_CallOneArg(reinterpret_cast<PyObject*>(&PyRange_Type), count.get()));
  Ref numbers = Ref::checked(PySequence_List(range.get()));
  Ref const keyOfNumber = Ref::checked(PyObject_GetAttrString(keys.get(), "__getitem__"));
  Ref const sort = Ref::checked(PyObject_GetAttrString(numbers.get(), "sort"));
  Ref const none = Ref::checked(PyTuple_New(0));
  Ref const options = Ref::checked(
      Py_BuildValue("{s:O,s:O}", "key", keyOfNumber.get(), "reverse", reverse ? Py_True : Py_False));
  Ref const done = Ref::checked(PyObject_Call(sort.get(), none.get(), options.get()));
  return numbers;
}

[[noreturn]] void raiseStandsElsewhere(PyObject* list, PyObject* value, Py_ssize_t place) {
  raise(PyExc_ValueError,
        shortRepr(value) + " stands at place " + std::to_string(place) + " of the " + listClassName(list) +
            ", which holds each element once: swap(i, j), move(from, to) and list[:] = order "
            "give it another place");
}

[[noreturn]] void raiseChanged(char const* meanwhile) {
  raise(PyExc_ValueError, std::string("The list changed while ") + meanwhile);
}

/// The place of a value that a dictionary knows, or -1.
Py_ssize_t lookUp(Ref const& places, PyObject* value) {
  PyObject* const place = PyDict_GetItemWithError(places.get(), value);
  if (!place && PyErr_Occurred()) throw PythonError();
  return place ? PyLong_AsSsize_t(place) : -1;
}

void note(Ref const& places, PyObject* value, Py_ssize_t place) {
  Ref const number = Ref::checked(PyLong_FromSsize_t(place));
  checkedInt(PyDict_SetItem(places.get(), value, number.get()));
}

/// All elements of a list, with new ones in the place of a range.
Ref withRange(Ref const& elements, Slice const& range, PyObject* values) {
  Ref all = Ref::checked(PyList_GetSlice(elements.get(), 0, PyList_GET_SIZE(elements.get())));
  if (range.fStep == 1) {
    checkedInt(PyList_SetSlice(all.get(), range.fStart, range.fStart + range.fCount, values));
    return all;
  }
  for (Py_ssize_t i = 0; i < range.fCount; ++i)
    checkedInt(
        PyList_SetItem(all.get(), range.fStart + i * range.fStep, Py_NewRef(PyTuple_GET_ITEM(values, i))));
  return all;
}

/// Refuses values of which one comes twice.
void checkRepeats(PyObject* list, PyObject* values) {
  Ref const given = Ref::checked(PyDict_New());
  for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(values); ++i) {
    checkSignals(static_cast<std::size_t>(i));
    PyObject* const value = PyTuple_GET_ITEM(values, i);
    if (lookUp(given, value) >= 0)
      raise(PyExc_ValueError,
            shortRepr(value) + " comes twice; the " + listClassName(list) + " holds each element once");
    note(given, value, i);
  }
}

/// Refuses values of which one stands outside of the range.
void checkOutside(PyObject* list, Ref const& before, Slice const& range, PyObject* values) {
  Ref const outside = Ref::checked(PyDict_New());
  for (Py_ssize_t place = 0; place < PyList_GET_SIZE(before.get()); ++place) {
    checkSignals(static_cast<std::size_t>(place));
    Py_ssize_t const offset = place - range.fStart;
    Py_ssize_t const number = offset / range.fStep;
    bool const isInside = offset % range.fStep == 0 && number >= 0 && number < range.fCount;
    if (!isInside) note(outside, PyList_GET_ITEM(before.get(), place), place);
  }
  for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(values); ++i)
    if (Py_ssize_t const place = lookUp(outside, PyTuple_GET_ITEM(values, i)); place >= 0)
      raiseStandsElsewhere(list, PyTuple_GET_ITEM(values, i), place);
}

}  // namespace

bool isUnique(PyObject* list) {
  PyInstance& instance = instanceOf(list);
  return frontOf(instance).fSequence->isUnique(&instance);
}

void assignAt(PyObject* list, Py_ssize_t place, PyObject* value) {
  if (isUnique(list)) {
    Py_ssize_t const held = placeHeld(list, value);
    if (held == place) return;
    if (held >= 0) raiseStandsElsewhere(list, value, held);
  }
  replaceAt(list, place, value);
}

bool assignOrder(PyObject* list, Slice const& range, PyObject* values) {
  if (PyTuple_GET_SIZE(values) != range.fCount) return false;
  std::uint64_t const state = stateOf(list);
  bool const isRun = range.fStep == 1;
  Ref const before = isRun ? readRange(list, range.fStart, range.fStart + range.fCount) : readAll(list);
  auto const placeOfNumber = [&](Py_ssize_t number) { return range.fStart + number * range.fStep; };
  // By value the first place that is not taken yet; by place the next one with an equal value.
  Ref const places = Ref::checked(PyDict_New());
  std::vector<Py_ssize_t> next(static_cast<std::size_t>(range.fCount));
  for (Py_ssize_t number = range.fCount; number-- > 0;) {
    checkSignals(static_cast<std::size_t>(number));
    PyObject* const value = checked(PyList_GetItem(before.get(), isRun ? number : placeOfNumber(number)));
    next[static_cast<std::size_t>(number)] = lookUp(places, value);
    note(places, value, number);
  }
  Moves moves;
  for (Py_ssize_t number = 0; number < range.fCount; ++number) {
    checkSignals(static_cast<std::size_t>(number));
    PyObject* const value = PyTuple_GET_ITEM(values, number);
    Py_ssize_t const from = lookUp(places, value);
    if (from < 0) return false;
    note(places, value, next[static_cast<std::size_t>(from)]);
    moves.add(placeOfNumber(from), placeOfNumber(number));
  }
  if (stateOf(list) != state) raiseChanged("values were assigned to it");
  moves.apply(list);
  return true;
}

bool replacesAll(PyObject* list, Slice const& range, PyObject* values) {
  constexpr Py_ssize_t kFew = 8;
  if (sizeOf(list) == 0) {
    checkRepeats(list, values);
    return true;
  }
  if ((range.fCount + PyTuple_GET_SIZE(values)) * kFew > sizeOf(list)) return false;
  bool stays = false;
  for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(values); ++i) {
    Py_ssize_t const held = placeHeld(list, PyTuple_GET_ITEM(values, i));
    bool const isInside = held >= range.fStart && held < range.fStart + range.fCount;
    if (held >= 0 && !isInside) raiseStandsElsewhere(list, PyTuple_GET_ITEM(values, i), held);
    stays |= isInside;
  }
  checkRepeats(list, values);
  return !stays;
}

void assignUnique(PyObject* list, Slice const& range, PyObject* values) {
  std::uint64_t const state = stateOf(list);
  Ref const before = readAll(list);
  checkOutside(list, before, range, values);
  checkRepeats(list, values);
  Ref const all = withRange(before, range, values);
  PyInstance& instance = instanceOf(list);
  Ref const order = buildList(instance.classRecord(), all.get());
  if (stateOf(list) != state) raiseChanged("values were assigned to it");
  frontOf(instance).fSequence->assign(&instance, &instanceOf(order.get()));
}

PyObject* moveItem(PyObject* self, PyObject* const* arguments, Py_ssize_t count) {
  return guarded<PyObject*>(nullptr, [=] {
    checkCount(count, 2, "move");
    auto const [from, to] = placesOf(self, arguments);
    Moves moves;
    moves.add(from, to);
    for (Py_ssize_t place = from; place < to; ++place) moves.add(place + 1, place);
    for (Py_ssize_t place = from; place > to; --place) moves.add(place - 1, place);
    moves.apply(self);
    return Py_NewRef(Py_None);
  });
}

PyObject* swapItems(PyObject* self, PyObject* const* arguments, Py_ssize_t count) {
  return guarded<PyObject*>(nullptr, [=] {
    checkCount(count, 2, "swap");
    auto const [first, second] = placesOf(self, arguments);
    Moves moves;
    moves.add(first, second);
    moves.add(second, first);
    moves.apply(self);
    return Py_NewRef(Py_None);
  });
}

PyObject* reverseItems(PyObject* self, PyObject*) {
  return guarded<PyObject*>(nullptr, [=] {
    Moves moves;
    for (Py_ssize_t place = 0, size = sizeOf(self); place < size; ++place) moves.add(place, size - 1 - place);
    moves.apply(self);
    return Py_NewRef(Py_None);
  });
}

PyObject* sortItems(PyObject* self, PyObject* arguments, PyObject* keywords) {
  return guarded<PyObject*>(nullptr, [=] {
    static char const* const kNames[] = {"key", "reverse", nullptr};
    PyObject* key = Py_None;
    int reverse = 0;
    if (!PyArg_ParseTupleAndKeywords(arguments, keywords, "|$Op:sort", const_cast<char**>(kNames), &key,
                                     &reverse))
      throw PythonError();
    std::uint64_t const state = stateOf(self);
    Ref const numbers = sortedNumbers(keysOf(readAll(self), key), reverse);
    if (stateOf(self) != state) raiseChanged("it was sorted");
    Moves moves;
    for (Py_ssize_t place = 0; place < PyList_GET_SIZE(numbers.get()); ++place)
      moves.add(PyLong_AsSsize_t(PyList_GET_ITEM(numbers.get(), place)), place);
    moves.apply(self);
    return Py_NewRef(Py_None);
  });
}

}  // namespace vesk::python
