#pragma once

#include "python.h"
#include "vesk/host/ClassRecord.h"

namespace vesk::python {

/// Bases of the published classes of lists: what Python's own lists can do, counted from 0, on top of the
/// published methods, which count from 1. The second is for classes whose lists can be changed.
extern PyTypeObject gListType;
extern PyTypeObject gChangeableListType;
void prepareListTypes();

/// Whether an object is an instance of a published class of lists.
[[nodiscard]] bool isListInstance(PyObject* object) noexcept;

/// The object whose property a list that can be changed shows; None for one that has values of its own or
/// whose values are no objects.
[[nodiscard]] Ref objectShownBy(PyObject* list);

/// A new published list that is a `wanted`, with the items of any iterable.
[[nodiscard]] Ref buildList(host::ClassRecord& wanted, PyObject* items);

}  // namespace vesk::python
