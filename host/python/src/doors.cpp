#include "doors.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>
#include <vector>

#include "results.h"
#include "vesk/VeskClassInfo.h"

namespace vesk::python {

namespace {

using host::Carrier;
using Kind = PropertyDoor::Kind;

/// Whether values of a type cross as a door says.
bool fits(Kind kind, Carrier carrier) noexcept {
  switch (kind) {
    case Kind::Closed:
      return false;
    case Kind::Text:
      return carrier == Carrier::Text;
    case Kind::Object:
      return carrier == Carrier::Object;
    case Kind::Logical:
      return carrier == Carrier::RawLogical || carrier == Carrier::OptionalLogical;
    case Kind::Int32:
      return carrier == Carrier::RawInt32 || carrier == Carrier::OptionalInt32;
    case Kind::Natural:
      return carrier == Carrier::NaturalText || carrier == Carrier::Text;
  }
  return false;
}

constexpr std::size_t kShortText = 128;

/// A text of a row of characters that are code units, if it is short and has no zero.
template <class Character>
bool copyUnits(Character const* text, std::size_t length, char16_t* units) noexcept {
  bool hasZero = false;
  for (std::size_t i = 0; i < length; ++i) {
    hasZero |= text[i] == 0;
    units[i] = static_cast<char16_t>(text[i]);
  }
  return !hasZero;
}

bool writeText(PropertyDoor const& door, PyInstance& instance, PyObject* text) {
  if (!PyUnicode_Check(text)) return false;
  auto const length = static_cast<std::size_t>(PyUnicode_GET_LENGTH(text));
  if (length == 0 || length > kShortText) return false;
  std::array<char16_t, kShortText> units;
  bool isPlain = false;
  if (PyUnicode_KIND(text) == PyUnicode_1BYTE_KIND)
    isPlain = copyUnits(PyUnicode_1BYTE_DATA(text), length, units.data());
  else if (PyUnicode_KIND(text) == PyUnicode_2BYTE_KIND)
    isPlain = copyUnits(PyUnicode_2BYTE_DATA(text), length, units.data());
  PropertyDoor::Value value;
  value.fText = {units.data(), length};
  return isPlain && door.write(instance.nativeId(), value);
}

bool writeNumber(PropertyDoor const& door, PyInstance& instance, PyObject* number) {
  if (!PyLong_CheckExact(number)) return false;
  int overflow = 0;
  long const wide = PyLong_AsLongAndOverflow(number, &overflow);
  PropertyDoor::Value value;
  value.fNumber = static_cast<std::int32_t>(wide);
  if (overflow != 0 || wide != value.fNumber || (door.fKind == Kind::Natural && wide < 0)) return false;
  return door.write(instance.nativeId(), value);
}

bool writeObject(PropertyDoor const& door, host::PropertyRecord const& property, PyInstance& instance,
                 PyObject* object, host::ClassRecord const*& accepted) {
  PropertyDoor::Value value;
  value.fIsAbsent = object == Py_None;
  if (!value.fIsAbsent) {
    if (!isInstance(object)) return false;
    PyInstance& given = instanceOf(object);
    host::ClassRecord& cls = given.classRecord();
    if (&cls != accepted) {
      if (cls.distanceTo(static_cast<host::ClassRecord const&>(property.type())) < 0) return false;
      accepted = &cls;
    }
    value.fObject = &given;
  }
  return door.write(instance.nativeId(), value);
}

/// The Python texts of names that were read more than once, which costs some 60 bytes a name and makes
/// reading a name again half as long. There are so many at most: the next one takes the place of the oldest.
/// A text of the library notes which is its own, and the entry who has it: so a text may end, in any thread,
/// without telling, and what it leaves here goes in its turn.
class KeptTexts {
 public:
  static constexpr std::size_t kMost = 1U << 17;
  static constexpr std::size_t kLongest = 64;

  /// A new reference; null for what the descriptor has to show.
  PyObject* get(std::u16string_view text, std::uint32_t* mark) {
    if (mark && *mark > kRead && fEntries[*mark].fOwner == mark) return Py_NewRef(fEntries[*mark].fText);
    Ref made(shortTextFromUtf16(text.data(), text.size()));
    bool const isKept = made && mark && !text.empty() && text.size() <= kLongest;
    if (isKept && std::exchange(*mark, kRead) != 0) keep(made.get(), mark);
    return made.release();
  }

 private:
  /// The mark of a text that was read once. Entries before the one behind it are not used.
  static constexpr std::uint32_t kRead = 1;
  struct Entry {
    std::uint32_t const* fOwner = nullptr;
    PyObject* fText = nullptr;
  };

  void keep(PyObject* text, std::uint32_t* mark) {
    if (fNext == kMost) fNext = kRead + 1;
    if (fNext >= fEntries.size()) fEntries.resize(std::min(kMost, 2 * fNext));
    Entry& entry = fEntries[fNext];
    *mark = static_cast<std::uint32_t>(fNext++);
    entry.fOwner = mark;
    Py_XSETREF(entry.fText, Py_NewRef(text));  // a str ends without running anything
  }

  std::vector<Entry> fEntries;
  std::size_t fNext = kRead + 1;
};

// The interpreter ends before the process does: what is kept is not given back.
constinit KeptTexts sKeptTexts;

[[gnu::noinline]] PyObject* textOf(PropertyDoor::Value const& value) {
  return sKeptTexts.get(value.fText, value.fMark);
}

/// What is mostly there: no bound, or a digit.
PyObject* shortNatural(std::int32_t number) {
  if (number < -1 || number > 9) return nullptr;
  return checked(PyUnicode_FromOrdinal(number < 0 ? '*' : '0' + number));
}

}  // namespace

bool areDoorsShut() {
  static bool const sAreShut = std::getenv("UMLMM_PUBLISHED_ROAD") != nullptr;
  return sAreShut;
}

PropertyDoor openDoor(host::PropertyRecord const& property) {
  PropertyDoor door;
  ObjectHook const* const hook = property.fOwner->info().getObjectHook();
  if (areDoorsShut() || !hook || !hook->openDoor(*property.fInfo, door)) return {};
  return fits(door.fKind, property.type().fCarrier) ? door : PropertyDoor();
}

PyObject* readThrough(PropertyDoor const& door, PyInstance& instance) {
  PropertyDoor::Value value;
  if (!door.read(instance.nativeId(), value)) return nullptr;
  if (value.fIsAbsent) return Py_NewRef(Py_None);
  switch (door.fKind) {
    case Kind::Text:
      return textOf(value);
    case Kind::Object:
      return Py_NewRef(objectOf(*value.fObject));
    case Kind::Logical:
      return Py_NewRef(value.fNumber != 0 ? Py_True : Py_False);
    case Kind::Int32:
      return checked(PyLong_FromLong(value.fNumber));
    case Kind::Natural:
      return shortNatural(value.fNumber);
    case Kind::Closed:
      break;
  }
  return nullptr;
}

bool writeThrough(PropertyDoor const& door, host::PropertyRecord const& property, PyInstance& instance,
                  PyObject* value, host::ClassRecord const*& accepted) {
  switch (door.fKind) {
    case Kind::Text:
      return writeText(door, instance, value);
    case Kind::Object:
      return writeObject(door, property, instance, value, accepted);
    case Kind::Logical: {
      PropertyDoor::Value truth;
      truth.fNumber = value == Py_True ? 1 : 0;
      return PyBool_Check(value) && door.write(instance.nativeId(), truth);
    }
    case Kind::Natural:
      if (property.type().fCarrier != Carrier::NaturalText) return false;
      [[fallthrough]];
    case Kind::Int32:
      return writeNumber(door, instance, value);
    case Kind::Closed:
      break;
  }
  return false;
}

}  // namespace vesk::python
