#include "lists.h"

#include <algorithm>
#include <array>
#include <string>

#include "arguments.h"
#include "calls.h"
#include "classes.h"
#include "errors.h"
#include "instances.h"
#include "listAccess.h"
#include "names.h"
#include "results.h"
#include "tarn/tarn.h"
#include "vesk/VeskError.h"
#include "vesk/host/PackageRecord.h"

namespace vesk::python {

PyTypeObject gListType{};
PyTypeObject gChangeableListType{};

namespace {

using host::ClassRecord;

constexpr std::size_t kBlock = SequenceHook::kBlock;

/// The Python object of a value of a block, which is used up. What long lists are made of takes the short
/// way.
PyObject* takeValue(host::Type const& type, VeskValue value) {
  if (type.fCarrier == host::Carrier::RawInt32) return checked(PyLong_FromLong(value.int32()));
  if (type.isClass() && value.array() && (value.array()->fFlags & tarnArray::Embedded) != 0)
    return objectOf(*static_cast<host::Instance*>(static_cast<VeskInterface*>(value.array()->fData)));
  return toPython(host::OwnedValue(type, value)).release();
}

/// Up to `count` elements from `first` on, as new references; answers how many. `stamp` as in
/// SequenceHook::readBlock.
std::size_t readBlock(PyObject* list, std::size_t first, std::size_t count, PyObject** out,
                      std::uint64_t& stamp) {
  PyInstance& instance = instanceOf(list);
  ClassFront& front = frontOf(instance);
  host::Type const& type = front.elementType();
  std::array<VeskValue, kBlock> values;
  std::size_t const read = front.fSequence->readBlock(&instance, first, count, values.data(), stamp);
  std::size_t done = 0;
  try {
    for (; done < read; ++done) out[done] = takeValue(type, values[done]);
  } catch (...) {
    for (std::size_t i = done + 1; i < read; ++i) host::destroyValue(type, values[i]);
    while (done > 0) Py_DECREF(out[--done]);
    throw;
  }
  return read;
}

/// The place by the search that the list has itself; `value` is plain.
Py_ssize_t askForPlace(PyObject* self, PyObject* value, Py_ssize_t first, Py_ssize_t last) try {
  PyInstance& instance = instanceOf(self);
  ClassFront& front = frontOf(instance);
  host::OwnedValue const wanted(front.elementType(), convert(value, front.elementType()));
  std::size_t const place = front.fSequence->find(&instance, wanted.value(), static_cast<std::size_t>(first),
                                                  static_cast<std::size_t>(last));
  if (place == SequenceHook::kNotFound) return -1;
  // The list may tell fewer values apart than Python: texts end at their first zero there.
  Ref const item = itemAt(self, static_cast<Py_ssize_t>(place));
  return checkedInt(PyObject_RichCompareBool(item.get(), value, Py_EQ)) ? static_cast<Py_ssize_t>(place) : -1;
} catch (VeskError const& error) {
  if (error.kind() != VeskError::Kind::Range) throw;
  return -1;  // a number that no element can be
}

/// The place of the first element equal to `value` in [first, last), or -1.
Py_ssize_t findPlace(PyObject* self, PyObject* value, Py_ssize_t first, Py_ssize_t last) {
  if (isPlain(value, frontOf(instanceOf(self)).elementType())) return askForPlace(self, value, first, last);
  while (first < last) {
    Ref const items = readRange(self, first, std::min(last, first + static_cast<Py_ssize_t>(kBlock)));
    Py_ssize_t const count = PyList_GET_SIZE(items.get());
    if (count == 0) break;
    for (Py_ssize_t i = 0; i < count; ++i)
      if (checkedInt(PyObject_RichCompareBool(PyList_GET_ITEM(items.get(), i), value, Py_EQ)))
        return first + i;
    first += count;
  }
  return -1;
}

}  // namespace

// --- reading

std::string listClassName(PyObject* list) { return std::string(instanceOf(list).classRecord().fName.view()); }

Py_ssize_t sizeOf(PyObject* list) {
  PyInstance& instance = instanceOf(list);
  return static_cast<Py_ssize_t>(frontOf(instance).fSequence->size(&instance));
}

Ref readRange(PyObject* list, Py_ssize_t first, Py_ssize_t last) {
  Ref result = Ref::checked(PyList_New(0));
  std::array<PyObject*, kBlock> block;
  while (first < last) {
    checkedInt(PyErr_CheckSignals());
    std::uint64_t stamp = 0;
    std::size_t const read = readBlock(list, static_cast<std::size_t>(first),
                                       static_cast<std::size_t>(last - first), block.data(), stamp);
    if (read == 0) break;
    int failed = 0;
    for (std::size_t i = 0; i < read; ++i) {
      failed |= PyList_Append(result.get(), block[i]);
      Py_DECREF(block[i]);
    }
    checkedInt(failed);
    first += static_cast<Py_ssize_t>(read);
  }
  return result;
}

Ref readAll(PyObject* list) { return readRange(list, 0, sizeOf(list)); }

Py_ssize_t placeOf(PyObject* list, Py_ssize_t index) {
  Py_ssize_t const size = sizeOf(list);
  Py_ssize_t const place = index < 0 ? index + size : index;
  if (place < 0 || place >= size)
    raise(PyExc_IndexError,
          "index " + std::to_string(index) + " is out of range for a list of " + std::to_string(size));
  return place;
}

Ref itemAt(PyObject* list, Py_ssize_t place) {
  PyObject* item = nullptr;
  std::uint64_t stamp = 0;
  if (readBlock(list, static_cast<std::size_t>(place), 1, &item, stamp) == 0)
    raise(PyExc_IndexError, "index out of range");
  return Ref(item);
}

Py_ssize_t toIndex(PyObject* number) {
  Py_ssize_t const index = PyNumber_AsSsize_t(number, PyExc_IndexError);
  if (index == -1 && PyErr_Occurred()) throw PythonError();
  return index;
}

Slice resolveSlice(PyObject* list, PyObject* slice) {
  Slice result{};
  checkedInt(PySlice_Unpack(slice, &result.fStart, &result.fStop, &result.fStep));
  result.fCount = PySlice_AdjustIndices(sizeOf(list), &result.fStart, &result.fStop, result.fStep);
  return result;
}

Py_ssize_t placeOfValue(PyObject* self, PyObject* value, Py_ssize_t first, Py_ssize_t last) {
  Py_ssize_t const place = findPlace(self, value, first, last);
  if (place < 0) raise(PyExc_ValueError, shortRepr(value) + " is not in the list");
  return place;
}

Py_ssize_t placeHeld(PyObject* self, PyObject* value) {
  PyInstance& instance = instanceOf(self);
  ClassFront& front = frontOf(instance);
  host::OwnedValue const wanted(front.elementType(), convert(value, front.elementType()));
  std::size_t const place = front.fSequence->find(&instance, wanted.value(), 0, SIZE_MAX);
  return place == SequenceHook::kNotFound ? -1 : static_cast<Py_ssize_t>(place);
}

std::uint64_t stateOf(PyObject* list) {
  std::uint64_t stamp = 0;
  readBlock(list, 0, 0, nullptr, stamp);
  return stamp;
}

namespace {

Ref readSlice(PyObject* list, PyObject* slice) {
  Slice const range = resolveSlice(list, slice);
  if (range.fStep == 1) return readRange(list, range.fStart, range.fStart + range.fCount);
  Ref const all = readAll(list);
  return Ref::checked(PyObject_GetItem(all.get(), slice));
}

// --- iteration

struct IteratorObject {
  PyObject_HEAD PyObject* fList;
  std::uint64_t fStamp;  ///< state of the list when the first block was read; 0 before
  std::size_t fNext;     ///< index in the list of the next block
  std::size_t fRead;     ///< elements in the block
  std::size_t fGiven;
  PyObject* fBlock[kBlock];
};

PyTypeObject gIteratorType{};

IteratorObject& asIterator(PyObject* object) noexcept { return *reinterpret_cast<IteratorObject*>(object); }

PyObject* iterate(PyObject* list) {
  return guarded<PyObject*>(nullptr, [=] {
    auto* iterator = PyObject_New(IteratorObject, &gIteratorType);
    if (!iterator) throw PythonError();
    iterator->fList = Py_NewRef(list);
    iterator->fStamp = 0;
    iterator->fNext = iterator->fRead = iterator->fGiven = 0;
    return reinterpret_cast<PyObject*>(iterator);
  });
}

/// Reads the next block of an iterator; answers false at the end. A list that changed since the first block
/// is a clear error: what was read ahead could be stale.
bool readNextBlock(IteratorObject& iterator) {
  if (!iterator.fList) return false;
  bool const isFirst = iterator.fStamp == 0;
  iterator.fGiven = iterator.fRead = 0;
  checkedInt(PyErr_CheckSignals());
  iterator.fRead = readBlock(iterator.fList, iterator.fNext, kBlock, iterator.fBlock, iterator.fStamp);
  iterator.fNext += iterator.fRead;
  if (iterator.fRead != 0) return true;
  bool const changed = !isFirst && iterator.fStamp == 0;
  Py_CLEAR(iterator.fList);
  if (changed)
    raise(PyExc_RuntimeError, "The list changed while it was iterated; iterate over list(...) of it instead");
  return false;
}

PyObject* nextItem(PyObject* self) {
  IteratorObject& iterator = asIterator(self);
  if (iterator.fGiven == iterator.fRead && !guarded(false, [&iterator] { return readNextBlock(iterator); }))
      [[unlikely]]
    return nullptr;
  return iterator.fBlock[iterator.fGiven++];
}

void deallocateIterator(PyObject* self) {
  IteratorObject& iterator = asIterator(self);
  while (iterator.fGiven < iterator.fRead) Py_DECREF(iterator.fBlock[iterator.fGiven++]);
  Py_XDECREF(iterator.fList);
  PyObject_Free(self);
}

// --- slots of all lists

Py_ssize_t length(PyObject* self) {
  return guarded<Py_ssize_t>(-1, [=] { return sizeOf(self); });
}

PyObject* itemOfSequence(PyObject* self, Py_ssize_t index) {
  return guarded<PyObject*>(nullptr, [=] { return itemAt(self, placeOf(self, index)).release(); });
}

PyObject* subscript(PyObject* self, PyObject* key) {
  return guarded<PyObject*>(nullptr, [=] {
    if (PySlice_Check(key)) return readSlice(self, key).release();
    if (!PyIndex_Check(key))
      raise(PyExc_TypeError,
            "indices of a list must be integers or slices, not " + std::string(Py_TYPE(key)->tp_name));
    return itemAt(self, placeOf(self, toIndex(key))).release();
  });
}

int contains(PyObject* self, PyObject* value) {
  return guarded(-1, [=] { return findPlace(self, value, 0, sizeOf(self)) >= 0 ? 1 : 0; });
}

PyObject* compareLists(PyObject* self, PyObject* other, int operation) {
  if (!PyList_Check(other) && !isListInstance(other)) return Py_NewRef(Py_NotImplemented);
  return guarded<PyObject*>(nullptr, [=] {
    Ref const left = readAll(self);
    Ref const right = PyList_Check(other) ? Ref::shared(other) : readAll(other);
    return PyObject_RichCompare(left.get(), right.get(), operation);
  });
}

PyObject* concatenate(PyObject* self, PyObject* other) {
  return guarded<PyObject*>(nullptr, [=] {
    if (!PyList_Check(other) && !PyTuple_Check(other) && !isListInstance(other))
      raise(PyExc_TypeError,
            "can only concatenate a list to a list, not " + std::string(Py_TYPE(other)->tp_name));
    Ref const left = isListInstance(self) ? readAll(self) : Ref::checked(PySequence_List(self));
    Ref const right = Ref::checked(PySequence_List(other));
    return PySequence_Concat(left.get(), right.get());
  });
}

PyObject* representList(PyObject* self) {
  return guarded<PyObject*>(nullptr, [=] {
    constexpr Py_ssize_t kShown = 8;
    Py_ssize_t const size = sizeOf(self);
    Ref const items = readRange(self, 0, std::min(size, kShown));
    Ref const text = Ref::checked(PyObject_Repr(items.get()));
    std::string const more = size > kShown ? ", " + std::to_string(size - kShown) + " more" : "";
    return PyUnicode_FromFormat("<%s %U%s>", listClassName(self).c_str(), text.get(), more.c_str());
  });
}

// --- methods that only read

PyObject* indexOf(PyObject* self, PyObject* const* arguments, Py_ssize_t count) {
  return guarded<PyObject*>(nullptr, [=] {
    if (count < 1 || count > 3) raise(PyExc_TypeError, "index takes a value and at most two indices");
    Py_ssize_t const size = sizeOf(self);
    Py_ssize_t first = count > 1 ? toIndex(arguments[1]) : 0;
    Py_ssize_t last = count > 2 ? toIndex(arguments[2]) : size;
    PySlice_AdjustIndices(size, &first, &last, 1);
    return PyLong_FromSsize_t(placeOfValue(self, arguments[0], first, last));
  });
}

PyObject* countOf(PyObject* self, PyObject* value) {
  return guarded<PyObject*>(nullptr, [=] {
    Py_ssize_t const size = sizeOf(self);
    Py_ssize_t found = 0;
    for (Py_ssize_t place = 0; (place = findPlace(self, value, place, size)) >= 0; ++place)
      checkSignals(static_cast<std::size_t>(found++));
    return PyLong_FromSsize_t(found);
  });
}

PyObject* iterateBackwards(PyObject* self, PyObject*) {
  return guarded<PyObject*>(nullptr, [=] {
    Ref const items = readAll(self);
    return PyObject_CallOneArg(reinterpret_cast<PyObject*>(&PyReversed_Type), items.get());
  });
}

PyMethodDef sListMethods[] = {
    {"index", asFastCall(indexOf), METH_FASTCALL, "index(value, start=0, stop=len) -> place, counted from 0"},
    {"count", countOf, METH_O, "count(value) -> number of elements equal to the value"},
    {"__reversed__", iterateBackwards, METH_NOARGS, "Iterator from the last element to the first."},
    {nullptr, nullptr, 0, nullptr}};

PySequenceMethods sListSequence{};
PyMappingMethods sListMapping{};

void prepareBase(PyTypeObject& type, PyTypeObject& base, char const* name, char const* doc) {
  Py_SET_REFCNT(reinterpret_cast<PyObject*>(&type), 1);
  type.tp_name = name;
  type.tp_doc = doc;
  type.tp_base = &base;
  type.tp_basicsize = base.tp_basicsize;
  type.tp_flags =
      Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_SEQUENCE | Py_TPFLAGS_DISALLOW_INSTANTIATION;
  checkedInt(PyType_Ready(&type));
}

void registerAs(char const* abstractClass, PyTypeObject& type) {
  Ref const module = Ref::checked(PyImport_ImportModule("_collections_abc"));
  Ref const base = Ref::checked(PyObject_GetAttrString(module.get(), abstractClass));
  Ref const done =
      Ref::checked(PyObject_CallMethod(base.get(), "register", "O", reinterpret_cast<PyObject*>(&type)));
}

void prepareIterator() {
  Py_SET_REFCNT(reinterpret_cast<PyObject*>(&gIteratorType), 1);
  gIteratorType.tp_name = "umlmm._host.ListIterator";
  gIteratorType.tp_basicsize = sizeof(IteratorObject);
  gIteratorType.tp_flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION;
  gIteratorType.tp_dealloc = deallocateIterator;
  gIteratorType.tp_iter = PyObject_SelfIter;
  gIteratorType.tp_iternext = nextItem;
  checkedInt(PyType_Ready(&gIteratorType));
}

/// The class whose `make` gives an empty list that is a `wanted`: the class itself, or for a class of lists
/// that can't be changed the one of its family that can.
ClassRecord& builderOf(ClassRecord& wanted) {
  if (wanted.findMember(internal::interned<"make">())) return wanted;
  if (ClassFamily const* family = wanted.info().family()) {
    ClassRecord* builder = host::findClass(family->partner(wanted.fName, Access::Changeable));
    if (builder && builder->distanceTo(wanted) >= 0 && builder->findMember(internal::interned<"make">()))
      return *builder;
  }
  throw VeskError("No list of class '" + std::string(wanted.fName.view()) + "' can be made from other values",
                  VeskError::Kind::Match);
}

}  // namespace

bool isListInstance(PyObject* object) noexcept {
  return isInstance(object) && frontOf(instanceOf(object)).fSequence;
}

Ref buildList(ClassRecord& wanted, PyObject* items) {
  ClassRecord& builder = builderOf(wanted);
  PyObject* const noModel = Py_None;
  Arguments source(&noModel);
  host::Member const& make = *builder.findMember(internal::interned<"make">());
  host::MethodRecord const& method = host::resolveMethod(make, host::CallForm::OnClass, source, 1);
  Ref list = toPython(host::callMethod(method, host::CallForm::OnClass, nullptr, source, 1));
  appendAll(list.get(), itemsOf(items).get());
  return list;
}

Ref objectShownBy(PyObject* list) {
  if (!PyObject_TypeCheck(list, &gChangeableListType))
    raise(PyExc_TypeError, "A list that can be changed is expected, not " + shortRepr(list));
  PyInstance& instance = instanceOf(list);
  ClassFront& front = frontOf(instance);
  VeskValue const object =
      front.elementType().isClass() ? front.fSequence->shownObject(&instance) : VeskValue();
  return object.array() ? toPython(host::OwnedValue(front.elementType(), object)) : Ref::shared(Py_None);
}

void prepareListTypes() {
  prepareIterator();
  sListSequence.sq_length = sListMapping.mp_length = length;
  sListSequence.sq_item = itemOfSequence;
  sListSequence.sq_contains = contains;
  sListSequence.sq_concat = concatenate;
  sListMapping.mp_subscript = subscript;
  gListType.tp_as_sequence = &sListSequence;
  gListType.tp_as_mapping = &sListMapping;
  gListType.tp_methods = sListMethods;
  gListType.tp_iter = iterate;
  gListType.tp_richcompare = compareLists;
  gListType.tp_hash = PyObject_HashNotImplemented;
  gListType.tp_repr = gListType.tp_str = representList;
  prepareBase(gListType, gInstanceType, "umlmm._host.List", "What all published lists can do.");

  prepareListChanges(gChangeableListType);
  prepareBase(gChangeableListType, gListType, "umlmm._host.ChangeableList",
              "What published lists that can be changed can do.");

  // Not a MutableSequence, whose `insert` counts from 0.
  registerAs("Sequence", gListType);
}

}  // namespace vesk::python
