#include "arguments.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "classes.h"
#include "errors.h"
#include "instances.h"
#include "lists.h"
#include "names.h"
#include "tarn/tarn.h"
#include "vesk/VeskError.h"

namespace vesk::python {

namespace {

namespace cost = host::cost;
using host::ClassRecord;

[[noreturn]] void throwRange(PyObject* object, std::string const& accepted) {
  throw VeskError(refusal(object, accepted), VeskError::Kind::Range);
}

bool isListOrTuple(PyObject* object) noexcept { return PyList_Check(object) || PyTuple_Check(object); }

template <class Test>
bool allItems(PyObject* listOrTuple, Test test) {
  for (Py_ssize_t i = 0; i < PySequence_Fast_GET_SIZE(listOrTuple); ++i) {
    checkSignals(static_cast<std::size_t>(i));
    Ref const item = Ref::shared(PySequence_Fast_GET_ITEM(listOrTuple, i));
    if (!test(item.get())) return false;
  }
  return true;
}

[[noreturn]] void throwMatch(PyObject* object, std::string const& accepted) {
  throw VeskError(refusal(object, accepted), VeskError::Kind::Match);
}

ClassRecord& classOf(host::Type const& type) noexcept {
  return const_cast<ClassRecord&>(static_cast<ClassRecord const&>(type));
}

bool isInstanceOf(PyObject* object, ClassRecord& cls) {
  return isInstance(object) && instanceOf(object).classRecord().distanceTo(cls) >= 0;
}

// --- costs

int costOfLogical(PyObject* object) noexcept {
  if (PyBool_Check(object)) return cost::kExact;
  return PyLong_Check(object) ? cost::kCoercion : cost::kNone;
}

int costOfInt32(PyObject* object) noexcept {
  if (PyBool_Check(object)) return cost::kCoercion;
  if (PyLong_Check(object)) return cost::kExact;
  if (PyFloat_Check(object)) {
    double const value = PyFloat_AS_DOUBLE(object);
    return value == std::trunc(value) && std::isfinite(value) ? cost::kWidening : cost::kNone;
  }
  return PyIndex_Check(object) ? cost::kWidening : cost::kNone;
}

/// A scalar, nothing, or a list of scalars.
template <class Scalar>
int costOfOptional(PyObject* object, Scalar costOfScalar) {
  if (isEmpty(object)) return cost::kExact;
  if (!isListOrTuple(object)) return costOfScalar(object);
  return allItems(object, [&](PyObject* item) { return costOfScalar(item) >= 0; }) ? cost::kList
                                                                                   : cost::kNone;
}

int costOfText(PyObject* object) noexcept {
  if (PyUnicode_Check(object)) return cost::kExact;
  return isEmpty(object) ? cost::kWidening : cost::kNone;
}

int costOfNatural(PyObject* object) noexcept {
  if (PyUnicode_Check(object) || isEmpty(object)) return cost::kExact;
  return PyLong_Check(object) && !PyBool_Check(object) ? cost::kWidening : cost::kNone;
}

/// A list that the host can build from the items of another one.
int costOfBuiltList(PyObject* object, ClassRecord& cls) {
  if (!isListOrTuple(object) && !isListInstance(object)) return cost::kNone;
  Ref const items = isListOrTuple(object) ? Ref::shared(object) : itemsOf(object);
  host::Type const& element = host::typeOf(internal::intern(cls.info().getSequenceHook()->elementType()));
  bool const fits = allItems(items.get(), [&](PyObject* item) { return conversionCost(item, element) >= 0; });
  return fits ? cost::kBuiltSequence : cost::kNone;
}

/// The method by which a published class tells what describes it, if that is a value of a type; or null. A
/// class is taken for its description.
host::Member const* descriptionOf(PyObject* object, ClassRecord& wanted) {
  if (!Py_IS_TYPE(object, &gMetaType)) return nullptr;
  ClassFront const* const front = reinterpret_cast<ClassObject*>(object)->fFront;
  host::Member const* const member =
      front ? front->fRecord->findMember(internal::interned<"MetaClass">()) : nullptr;
  if (!member || member->fProperty) return nullptr;
  ClassRecord* const told = host::findClass(member->fMethods.front()->fSignature->result());
  return told && told->distanceTo(wanted) >= 0 ? member : nullptr;
}

int costOfObject(PyObject* object, host::Type const& wanted) {
  ClassRecord& cls = classOf(wanted);
  bool const isList = cls.info().getSequenceHook() != nullptr;
  if (isInstance(object)) {
    int const distance = instanceOf(object).classRecord().distanceTo(cls);
    if (distance >= 0 || !isList) return distance;
  }
  if (isEmpty(object)) return cost::kExact;
  if (isList) return costOfBuiltList(object, cls);
  if (PyUnicode_Check(object)) return isEnumeration(cls) ? cost::kCoercion : cost::kNone;
  if (!isListOrTuple(object)) return descriptionOf(object, cls) ? cost::kCoercion : cost::kNone;
  return allItems(object, [&](PyObject* item) { return isInstanceOf(item, cls); }) ? cost::kList
                                                                                   : cost::kNone;
}

// --- values

// Conversions run code of scripts, such as __index__, and any allocation may run finalizers. What is
// converted may have changed since its cost was asked, so each item is looked at again.

std::int32_t toInt32(PyObject* object) {
  if (costOfInt32(object) < 0) throwMatch(object, "an int of 32 bits");
  Ref const number = Ref::checked(PyFloat_Check(object) ? PyLong_FromDouble(PyFloat_AS_DOUBLE(object))
                                                        : PyNumber_Index(object));
  int overflow = 0;
  long const value = PyLong_AsLongAndOverflow(number.get(), &overflow);
  if (overflow || value < INT32_MIN || value > INT32_MAX)
    throw VeskError("value out of range for int32: " + shortRepr(object), VeskError::Kind::Range);
  return static_cast<std::int32_t>(value);
}

bool toLogical(PyObject* object) { return checkedInt(PyObject_IsTrue(object)) != 0; }

bool toLogicalElement(PyObject* object) {
  if (costOfLogical(object) < 0) throwMatch(object, "True, False or None");
  if (int const number = toInt32(object); number != 0 && number != 1)
    throwRange(object, "True, False, 1, 0 or None");
  return toLogical(object);
}

template <class Character>
void copyUtf16(Character const* text, std::size_t length, char16_t* out) noexcept {
  for (std::size_t i = 0; i < length; ++i) {
    Character const character = text[i];
    if constexpr (sizeof(Character) == 4) {
      if (character >= 0x10000) {
        *out++ = static_cast<char16_t>(0xD7C0 + (character >> 10));
        *out++ = static_cast<char16_t>(0xDC00 + (character & 0x3FF));
        continue;
      }
    }
    *out++ = static_cast<char16_t>(character);
  }
}

template <class Character>
bool hasZero(Character const* text, std::size_t length) noexcept {
  if constexpr (sizeof(Character) == 1)
    return std::memchr(text, 0, length) != nullptr;
  else
    return std::find(text, text + length, Character{0}) != text + length;
}

template <class Character>
tarnArray* toTextOf(Character const* text, std::size_t length) {
  if (hasZero(text, length)) return nullptr;
  std::size_t units = length;
  if constexpr (sizeof(Character) == 4)
    units += static_cast<std::size_t>(
        std::count_if(text, text + length, [](Character character) { return character >= 0x10000; }));
  tarnArray* array = tarnCreateStringOfLength(nullptr, units);
  copyUtf16(text, length, tarn::dataAs<char16_t>(array));
  return array;
}

/// Null for a text with a zero character: much of what reads a text later ends there.
tarnArray* toTextOrNull(PyObject* text) {
  auto const length = static_cast<std::size_t>(PyUnicode_GET_LENGTH(text));
  if (length == 0) return tarnCreateEmpty(charClassId);
  switch (PyUnicode_KIND(text)) {
    case PyUnicode_1BYTE_KIND:
      return toTextOf(PyUnicode_1BYTE_DATA(text), length);
    case PyUnicode_2BYTE_KIND:
      return toTextOf(PyUnicode_2BYTE_DATA(text), length);
    default:
      return toTextOf(PyUnicode_4BYTE_DATA(text), length);
  }
}

tarnArray* toText(PyObject* text) {
  tarnArray* array = toTextOrNull(text);
  if (!array) throwRange(text, "a str without zero characters");
  return array;
}

tarnArray* toNatural(PyObject* object) {
  if (isEmpty(object)) return tarnCreateEmpty(charClassId);
  if (PyUnicode_Check(object)) return toText(object);
  if (_PyLong_Sign(object) < 0) throwRange(object, "a natural number or '*'");
  Ref const digits = Ref::checked(PyLong_Type.tp_repr(object));
  return toText(digits.get());
}

/// A row of numbers or truth values of any length.
template <class Element, class Convert>
tarnArray* toRow(PyObject* object, tarnClassId classId, Convert convertElement) {
  if (isEmpty(object)) return tarnCreateEmpty(classId);
  Ref const items = isListOrTuple(object) ? itemsOf(object) : Ref::checked(PyTuple_Pack(1, object));
  Py_ssize_t const count = PyTuple_GET_SIZE(items.get());
  tarnArray* array = tarnCreateNumericMatrix(1, static_cast<std::uint64_t>(count), classId, 0);
  try {
    for (Py_ssize_t i = 0; i < count; ++i) {
      checkSignals(static_cast<std::size_t>(i));
      tarn::dataAs<Element>(array)[i] =
          static_cast<Element>(convertElement(PyTuple_GET_ITEM(items.get(), i)));
    }
  } catch (...) {
    tarnDestroyArray(array);
    throw;
  }
  return array;
}

VeskValue toObjectRow(PyObject* listOrTuple, ClassRecord& cls) {
  Ref const items = itemsOf(listOrTuple);
  auto const count = static_cast<std::size_t>(PyTuple_GET_SIZE(items.get()));
  host::OwnedValue row(cls, tarnCreateObjectMatrix(1, count));
  for (std::size_t i = 0; i < count; ++i) {
    checkSignals(i);
    PyObject* item = PyTuple_GET_ITEM(items.get(), static_cast<Py_ssize_t>(i));
    if (!isInstanceOf(item, cls)) throwMatch(item, std::string(cls.fName.view()));
    tarnSetObject(row.value().array(), i, static_cast<VeskInterface*>(&instanceOf(item)));
  }
  return row.release();
}

VeskValue toLiteral(PyObject* text, ClassRecord& cls) {
  host::Member const* fromText = cls.findMember(internal::interned<"fromString">());
  Arguments source(&text);
  try {
    host::MethodRecord const& method = host::resolveMethod(*fromText, host::CallForm::OnClass, source, 1);
    return host::callMethod(method, host::CallForm::OnClass, nullptr, source, 1).release();
  } catch (std::exception const&) {
    throwRange(text, acceptedValues(cls));
  }
}

VeskValue toObject(PyObject* object, host::Type const& wanted) {
  ClassRecord& cls = classOf(wanted);
  bool const isList = cls.info().getSequenceHook() != nullptr;
  if (isInstance(object) && (!isList || isInstanceOf(object, cls))) return instanceOf(object).newReference();
  if (isEmpty(object)) return tarnCreateEmpty(objectClassId);
  if (isList) return instanceOf(buildList(cls, object).get()).newReference();
  if (PyUnicode_Check(object)) return toLiteral(object, cls);
  if (isListOrTuple(object)) return toObjectRow(object, cls);
  host::Member const* const description = descriptionOf(object, cls);
  if (!description) throwMatch(object, acceptedValues(wanted));
  Arguments none(nullptr);
  host::MethodRecord const& method = host::resolveMethod(*description, host::CallForm::OnClass, none, 0);
  return host::callMethod(method, host::CallForm::OnClass, nullptr, none, 0).release();
}

// The rows of functions, one a carrier.

/// What the front does with Python objects for one carrier.
struct CarrierRow {
  int (*fCost)(PyObject* object, host::Type const& wanted);
  VeskValue (*fConvert)(PyObject* object, host::Type const& wanted);
  bool (*fConvertAtOnce)(PyObject* object, host::Type const& wanted, VeskValue& value);
  bool (*fIsPlain)(PyObject* object, host::Type const& wanted);
  /// Null where the type tells.
  char const* fAccepted;
};

/// A function of the object alone, as one of the row.
template <auto Function>
constexpr auto ofObject = [](PyObject* object, host::Type const&) { return Function(object); };

bool never(PyObject*, host::Type const&, VeskValue&) { return false; }
bool neverPlain(PyObject*, host::Type const&) { return false; }

VeskValue refuseValue(PyObject*, host::Type const& wanted) {
  throw VeskError("There are no values of type '" + std::string(wanted.fName.view()) + "'",
                  VeskError::Kind::Match);
}

bool logicalAtOnce(PyObject* object, host::Type const&, VeskValue& value) {
  if (!PyBool_Check(object)) return false;
  value = VeskValue::ofLogical(object == Py_True);
  return true;
}

bool int32AtOnce(PyObject* object, host::Type const&, VeskValue& value) {
  if (!PyLong_CheckExact(object)) return false;
  int overflow = 0;
  long const number = PyLong_AsLongAndOverflow(object, &overflow);
  if (overflow != 0 || number != static_cast<std::int32_t>(number)) return false;
  value = VeskValue::ofInt32(static_cast<std::int32_t>(number));
  return true;
}

bool textAtOnce(PyObject* object, host::Type const&, VeskValue& value) {
  if (!PyUnicode_Check(object)) return false;
  value = toTextOrNull(object);
  return value.array() != nullptr;
}

bool objectAtOnce(PyObject* object, host::Type const& wanted, VeskValue& value) {
  if (!isInstance(object) || instanceOf(object).classRecord().distanceTo(classOf(wanted)) < 0) return false;
  value = instanceOf(object).newReference();
  return true;
}

constexpr CarrierRow kVoid{[](PyObject*, host::Type const&) { return cost::kNone; }, refuseValue, never,
                           neverPlain, "nothing"};
constexpr CarrierRow kRawLogical{
    ofObject<costOfLogical>,
    [](PyObject* object, host::Type const&) { return VeskValue::ofLogical(toLogical(object)); },
    logicalAtOnce, [](PyObject* object, host::Type const&) -> bool { return PyBool_Check(object); },
    "True or False"};
constexpr CarrierRow kRawInt32{
    ofObject<costOfInt32>,
    [](PyObject* object, host::Type const&) { return VeskValue::ofInt32(toInt32(object)); }, int32AtOnce,
    [](PyObject* object, host::Type const&) -> bool {
      return PyLong_CheckExact(object) || PyBool_Check(object);
    },
    "an int of 32 bits"};
constexpr CarrierRow kFront{[](PyObject*, host::Type const&) { return cost::kExact; },
                            [](PyObject* object, host::Type const&) {
                              return VeskValue::ofWord(reinterpret_cast<std::uintptr_t>(object));
                            },
                            never, neverPlain, "any object"};
constexpr CarrierRow kText{ofObject<costOfText>,
                           [](PyObject* object, host::Type const&) -> VeskValue {
                             return PyUnicode_Check(object) ? toText(object) : tarnCreateEmpty(charClassId);
                           },
                           textAtOnce,
                           [](PyObject* object, host::Type const&) {
                             return PyUnicode_CheckExact(object) &&
                                    PyUnicode_FindChar(object, 0, 0, PyUnicode_GET_LENGTH(object), 1) < 0;
                           },
                           "a str"};
constexpr CarrierRow kNaturalText{
    ofObject<costOfNatural>,
    [](PyObject* object, host::Type const&) -> VeskValue { return toNatural(object); }, never, neverPlain,
    "a natural number, '*' or None"};
constexpr CarrierRow kOptionalLogical{
    [](PyObject* object, host::Type const&) { return costOfOptional(object, costOfLogical); },
    [](PyObject* object, host::Type const&) -> VeskValue {
      return toRow<unsigned char>(object, logicalClassId, toLogicalElement);
    },
    never, neverPlain, "True, False or None"};
constexpr CarrierRow kOptionalInt32{
    [](PyObject* object, host::Type const&) { return costOfOptional(object, costOfInt32); },
    [](PyObject* object, host::Type const&) -> VeskValue {
      return toRow<std::int32_t>(object, int32ClassId, toInt32);
    },
    never, neverPlain, "an int of 32 bits or None"};
constexpr CarrierRow kObject{costOfObject, toObject, objectAtOnce,
                             [](PyObject* object, host::Type const& wanted) {
                               return isInstance(object) && costOfObject(object, wanted) >= 0;
                             },
                             nullptr};

/// By Carrier.
constexpr CarrierRow const* kRows[] = {&kVoid,        &kRawLogical,      &kRawInt32,      &kFront, &kText,
                                       &kNaturalText, &kOptionalLogical, &kOptionalInt32, &kObject};

CarrierRow const& rowOf(host::Type const& type) noexcept {
  return *kRows[static_cast<std::size_t>(type.fCarrier)];
}

}  // namespace

bool isEmpty(PyObject* object) noexcept {
  return object == Py_None || (isListOrTuple(object) && PySequence_Fast_GET_SIZE(object) == 0);
}

Ref itemsOf(PyObject* iterable) {
  if (PyTuple_Check(iterable)) return Ref::shared(iterable);
  if (!PyList_Check(iterable)) return Ref::checked(PySequence_Tuple(iterable));
  for (;;) {
    Py_ssize_t const count = PyList_GET_SIZE(iterable);
    Ref items = Ref::checked(PyTuple_New(count));
    if (PyList_GET_SIZE(iterable) != count) continue;  // a finalizer changed the list
    for (Py_ssize_t i = 0; i < count; ++i)
      PyTuple_SET_ITEM(items.get(), i, Py_NewRef(PyList_GET_ITEM(iterable, i)));
    return items;
  }
}

int conversionCost(PyObject* object, host::Type const& wanted) { return rowOf(wanted).fCost(object, wanted); }

VeskValue convert(PyObject* object, host::Type const& wanted) {
  return rowOf(wanted).fConvert(object, wanted);
}

bool convertAtOnce(PyObject* object, host::Type const& wanted, VeskValue& value) {
  return rowOf(wanted).fConvertAtOnce(object, wanted, value);
}

bool isPlain(PyObject* object, host::Type const& wanted) { return rowOf(wanted).fIsPlain(object, wanted); }

bool isViewOf(PyObject* object, host::Type const& wanted) {
  if (!wanted.isClass() || !isInstance(object)) return false;
  ClassRecord& cls = instanceOf(object).classRecord();
  host::Member const* member = cls.findMember(internal::interned<"asMutable">());
  if (!member || member->fProperty || cls.distanceTo(classOf(wanted)) >= 0) return false;
  host::Type& changeable = member->fMethods.front()->resultType();
  return changeable.isClass() && classOf(changeable).distanceTo(classOf(wanted)) >= 0;
}

std::string acceptedValues(host::Type const& wanted) {
  if (char const* const accepted = rowOf(wanted).fAccepted) return accepted;
  ClassRecord& cls = classOf(wanted);
  if (SequenceHook const* hook = cls.info().getSequenceHook())
    return "a list of " + std::string(hook->elementType()) + " or None";
  if (isEnumeration(cls)) return "one of " + literalNames(cls) + " of " + std::string(cls.fName.view());
  return std::string(cls.fName.view()) + " or None";
}

int Arguments::receiverCost(int index, ClassRecord const& wanted) {
  PyObject* object = fObjects[index];
  int const cost = python::conversionCost(object, wanted);
  // Other costs of a list are those of a new one with the same items.
  bool const isItself = isInstance(object) && instanceOf(object).classRecord().distanceTo(wanted) >= 0;
  return isItself || isEmpty(object) || !wanted.info().getSequenceHook() ? cost : cost::kNone;
}

std::string Arguments::remedy(int index, host::Type const& wanted) {
  PyObject* object = fObjects[index];
  if (isViewOf(object, wanted))
    return describe(index) + " is a read-only view; asMutable() gives the object that is accepted";
  if (!isListOrTuple(object) || !allItems(object, [&](PyObject* item) {
        return isViewOf(item, wanted) || python::conversionCost(item, wanted) >= 0;
      }))
    return {};
  return "The list holds read-only views; asMutable() of each gives an object that is accepted";
}

std::string acceptedElements(host::Type const& wanted) {
  bool const isReference = wanted.isClass() && !isEnumeration(classOf(wanted));
  return isReference ? std::string(wanted.fName.view()) : acceptedValues(wanted);
}

std::string refusal(PyObject* object, std::string const& accepted) {
  return shortRepr(object) + " is not accepted: " + accepted + " is expected";
}

std::string Arguments::describe(int index) {
  PyObject* object = fObjects[index];
  if (isInstance(object)) return std::string(instanceOf(object).classRecord().fName.view());
  if (object == Py_None || PyUnicode_Check(object) || PyLong_Check(object) || PyFloat_Check(object))
    return shortRepr(object);
  return Py_TYPE(object)->tp_name;
}

}  // namespace vesk::python
