#pragma once

#include <cstdint>
#include <string>

#include "python.h"

/// What the parts of the front's lists share: reading a published list, whose places count from 0 here.
namespace vesk::python {

[[nodiscard]] Py_ssize_t sizeOf(PyObject* list);
/// The element at a place that exists.
[[nodiscard]] Ref itemAt(PyObject* list, Py_ssize_t place);
/// A Python list of the elements from `first` to before `last`, or of all.
[[nodiscard]] Ref readRange(PyObject* list, Py_ssize_t first, Py_ssize_t last);
[[nodiscard]] Ref readAll(PyObject* list);

/// The number of an index object.
[[nodiscard]] Py_ssize_t toIndex(PyObject* number);
/// The place that an index means, counted from the end if it is negative; IndexError outside of the list.
[[nodiscard]] Py_ssize_t placeOf(PyObject* list, Py_ssize_t index);
/// The place of the first element equal to `value` in [first, last); ValueError if there is none.
[[nodiscard]] Py_ssize_t placeOfValue(PyObject* list, PyObject* value, Py_ssize_t first, Py_ssize_t last);

/// The same by what the list itself tells apart; -1 if there is none. The list takes the value.
[[nodiscard]] Py_ssize_t placeHeld(PyObject* list, PyObject* value);
/// The state of the list: another one after each change.
[[nodiscard]] std::uint64_t stateOf(PyObject* list);

struct Slice {
  Py_ssize_t fStart, fStop, fStep, fCount;
};
[[nodiscard]] Slice resolveSlice(PyObject* list, PyObject* slice);

[[nodiscard]] std::string listClassName(PyObject* list);

/// Replaces the element at a place that exists by the published method.
void replaceAt(PyObject* list, Py_ssize_t place, PyObject* value);
constexpr Py_ssize_t kAtEnd = -1;
/// Puts values in the place of `removed` elements from `first` on, all or nothing and in one step that no
/// code of scripts can see the middle of; answers false, with nothing changed, for a list that takes its
/// values one by one. `values` is a tuple of values that the list takes, `first` may be kAtEnd.
[[nodiscard]] bool splice(PyObject* list, Py_ssize_t first, Py_ssize_t removed, PyObject* values);
/// Appends the values of a tuple that the list takes, all or none.
void appendAll(PyObject* list, PyObject* values);
/// Sets the slots and methods by which a list is changed.
void prepareListChanges(PyTypeObject& type);

// --- order

/// Whether the list refuses an element that it holds.
[[nodiscard]] bool isUnique(PyObject* list);
/// Puts a value that the list takes to a place. A unique list that holds it elsewhere raises ValueError.
void assignAt(PyObject* list, Py_ssize_t place, PyObject* value);
/// Puts the elements of a range into another order, if that is what the values are; answers whether.
[[nodiscard]] bool assignOrder(PyObject* list, Slice const& range, PyObject* values);
/// Whether values are all new to a unique list, which can be told without a look at all of it when they and
/// the range are few beside it; false also if they are many. ValueError for one that would stand twice.
[[nodiscard]] bool replacesAll(PyObject* list, Slice const& range, PyObject* values);
/// Puts values into the place of a range, for unique lists: a value that stays is not taken out in between.
/// All or nothing; ValueError for a value that would stand twice.
void assignUnique(PyObject* list, Slice const& range, PyObject* values);

PyObject* moveItem(PyObject* self, PyObject* const* arguments, Py_ssize_t count);
PyObject* swapItems(PyObject* self, PyObject* const* arguments, Py_ssize_t count);
PyObject* reverseItems(PyObject* self, PyObject*);
PyObject* sortItems(PyObject* self, PyObject* arguments, PyObject* keywords);

/// A function in the form in which Python's tables hold those that take their arguments as an array.
template <class Function>
[[nodiscard]] PyCFunction asFastCall(Function function) noexcept {
  return reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(function));
}

[[nodiscard]] inline PyCFunction asKeywordCall(PyCFunctionWithKeywords function) noexcept {
  return asFastCall(function);
}

}  // namespace vesk::python
