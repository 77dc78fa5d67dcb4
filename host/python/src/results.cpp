#include "results.h"

#include <algorithm>

#include "instances.h"
#include "tarn/tarn.h"

namespace vesk::python {

namespace {

Ref none() noexcept { return Ref::shared(Py_None); }

Ref fromText(tarnArray const* array, bool isOptional) {
  std::size_t const count = tarn::numberOfElements(array);
  if (count == 0 && isOptional) return none();
  return textFromUtf16(tarn::dataAs<char16_t>(array), count);
}

/// None, the one element or a list of all.
template <class Box>
Ref fromElements(tarnArray const* array, Box box) {
  std::size_t const count = tarn::numberOfElements(array);
  if (count == 0) return none();
  if (count == 1) return Ref::checked(box(0));
  Ref list = Ref::checked(PyList_New(static_cast<Py_ssize_t>(count)));
  for (std::size_t i = 0; i < count; ++i) {
    checkSignals(i);
    PyList_SET_ITEM(list.get(), static_cast<Py_ssize_t>(i), checked(box(i)));
  }
  return list;
}

PyObject* objectOfElement(void* element) noexcept {
  if (!element) return Py_NewRef(Py_None);
  return Py_NewRef(objectOf(*static_cast<host::Instance*>(static_cast<VeskInterface*>(element))));
}

/// Hands out the characters of a text. A surrogate without its partner is a character of its own.
template <class Take>
void forEachCharacter(char16_t const* units, std::size_t count, Take take) {
  for (std::size_t i = 0; i < count; ++i) {
    Py_UCS4 const unit = units[i];
    bool const isPair =
        Py_UNICODE_IS_HIGH_SURROGATE(unit) && i + 1 < count && Py_UNICODE_IS_LOW_SURROGATE(units[i + 1]);
    take(isPair ? Py_UNICODE_JOIN_SURROGATES(unit, units[++i]) : unit);
  }
}

struct Measure {
  Py_ssize_t fLength = 0;
  Py_UCS4 fHighest = 0;
};

Measure measureUtf16(char16_t const* units, std::size_t count) {
  Measure measure;
  forEachCharacter(units, count, [&measure](Py_UCS4 character) {
    ++measure.fLength;
    measure.fHighest = std::max(measure.fHighest, character);
  });
  return measure;
}

bool isEmbedded(tarnArray const* array) noexcept { return (array->fFlags & tarnArray::Embedded) != 0; }

}  // namespace

Ref textFromUtf16(char16_t const* units, std::size_t count) {
  char16_t all = 0;
  for (std::size_t i = 0; i < count; ++i) all |= units[i];
  auto const length = static_cast<Py_ssize_t>(count);
  if (all < 0x80) {
    Ref text = Ref::checked(PyUnicode_New(length, 0x7F));
    Py_UCS1* out = PyUnicode_1BYTE_DATA(text.get());
    for (std::size_t i = 0; i < count; ++i) out[i] = static_cast<Py_UCS1>(units[i]);
    return text;
  }
  Measure const measure = measureUtf16(units, count);
  Ref text = Ref::checked(PyUnicode_New(measure.fLength, measure.fHighest));
  switch (PyUnicode_KIND(text.get())) {
    case PyUnicode_1BYTE_KIND:
      std::copy_n(units, count, PyUnicode_1BYTE_DATA(text.get()));
      break;
    case PyUnicode_2BYTE_KIND:
      std::copy_n(units, count, PyUnicode_2BYTE_DATA(text.get()));
      break;
    default:
      forEachCharacter(units, count, [out = PyUnicode_4BYTE_DATA(text.get())](Py_UCS4 character) mutable {
        *out++ = character;
      });
  }
  return text;
}

PyObject* shortTextFromUtf16(char16_t const* units, std::size_t count) {
  char16_t all = 0;
  bool hasZero = false;
  for (std::size_t i = 0; i < count; ++i) {
    all |= units[i];
    hasZero |= units[i] == 0;
  }
  if (hasZero) return nullptr;
  if (all >= 0x80) return textFromUtf16(units, count).release();
  PyObject* const text = checked(PyUnicode_New(static_cast<Py_ssize_t>(count), 0x7F));
  std::copy_n(units, count, PyUnicode_1BYTE_DATA(text));
  return text;
}

Ref toPython(host::Type const& type, VeskValue value) {
  tarnArray const* array = value.array();
  if (host::holdsArray(type.fCarrier) && !array) return none();
  switch (type.fCarrier) {
    case host::Carrier::Void:
      return none();
    case host::Carrier::RawLogical:
      return Ref::shared(value.logical() ? Py_True : Py_False);
    case host::Carrier::RawInt32:
      return Ref::checked(PyLong_FromLong(value.int32()));
    case host::Carrier::Front:
      return Ref::shared(reinterpret_cast<PyObject*>(value.word()));
    case host::Carrier::Text:
      return fromText(array, false);
    case host::Carrier::NaturalText:
      return fromText(array, true);
    case host::Carrier::OptionalLogical:
      return fromElements(array, [data = tarn::dataAs<unsigned char>(array)](std::size_t i) {
        return PyBool_FromLong(data[i]);
      });
    case host::Carrier::OptionalInt32:
      return fromElements(array, [data = tarn::dataAs<std::int32_t>(array)](std::size_t i) {
        return PyLong_FromLong(data[i]);
      });
    case host::Carrier::Object:
      if (isEmbedded(array)) return Ref(objectOfElement(array->fData));
      return fromElements(
          array, [data = tarn::dataAs<void*>(array)](std::size_t i) { return objectOfElement(data[i]); });
  }
  return none();
}

Ref toPython(host::OwnedValue&& value) {
  if (value.type().isClass() && value.value().array() && isEmbedded(value.value().array())) {
    // The reference that the array holds becomes the caller's.
    void* element = value.release().array()->fData;
    return Ref(objectOf(*static_cast<host::Instance*>(static_cast<VeskInterface*>(element))));
  }
  if (value.type().fCarrier == host::Carrier::Front)
    return Ref(reinterpret_cast<PyObject*>(value.release().word()));
  return toPython(value.type(), value.value());
}

}  // namespace vesk::python
