#pragma once

#include <string>

#include "python.h"
#include "vesk/host/Call.h"

namespace vesk::python {

/// What it costs to take a Python object as a value of a type; host::cost::kNone if it is none. The answer
/// follows from types alone, so a number out of range is found by convert.
[[nodiscard]] int conversionCost(PyObject* object, host::Type const& wanted);
/// The object as a value of the type, whose array is the caller's. Throws a VeskError of kind Range for a
/// value that does not fit, and one of kind Match for an object that has no conversion.
[[nodiscard]] VeskValue convert(PyObject* object, host::Type const& wanted);

/// The same for an object that fits as it stands, such as a str for a text; false, with `value` as it was,
/// for one that has to be looked at more closely. Throws only for want of memory.
[[nodiscard]] bool convertAtOnce(PyObject* object, host::Type const& wanted, VeskValue& value);

/// Whether the element of a list that is equal to an object in Python, if there is one, is found by the value
/// that the object converts to: no class of scripts decides what it is equal to.
[[nodiscard]] bool isPlain(PyObject* object, host::Type const& wanted);

/// Whether an object is a read-only view of a `wanted`, which its published `asMutable` gives.
[[nodiscard]] bool isViewOf(PyObject* object, host::Type const& wanted);

/// The values of any iterable as a tuple. The items of a list are those that it has now.
[[nodiscard]] Ref itemsOf(PyObject* iterable);

/// None, [] or (): how a script says that there is no value.
[[nodiscard]] bool isEmpty(PyObject* object) noexcept;

/// What a type takes, for messages: "a str", "umlmm.Class or None"; as an element of a list, "umlmm.Class".
[[nodiscard]] std::string acceptedValues(host::Type const& wanted);
[[nodiscard]] std::string acceptedElements(host::Type const& wanted);
/// That a value is none of those accepted: "3 is not accepted: a str is expected".
[[nodiscard]] std::string refusal(PyObject* object, std::string const& accepted);

/// The arguments of one call, borrowed.
class Arguments final : public host::ArgumentSource {
 public:
  explicit Arguments(PyObject* const* objects) noexcept : fObjects(objects) {}

  int conversionCost(int index, host::Type const& wanted) override {
    return python::conversionCost(fObjects[index], wanted);
  }
  int receiverCost(int index, host::ClassRecord const& wanted) override;
  VeskValue convert(int index, host::Type const& wanted) override {
    return python::convert(fObjects[index], wanted);
  }
  std::string describe(int index) override;
  std::string remedy(int index, host::Type const& wanted) override;

 private:
  PyObject* const* fObjects;
};

}  // namespace vesk::python
