#pragma once

#include <limits>
#include <string>
#include <variant>
#include <vector>

#include "vesk/VeskError.h"
#include "vesk/host/Call.h"

namespace vesk::testing {

/// The empty value, as a script writes `[]`.
struct Empty {};
using Argument = std::variant<Empty, bool, int, double, std::u16string, host::Instance*>;

/// A small front: values of C++ as arguments.
class Arguments final : public host::ArgumentSource {
 public:
  Arguments(std::initializer_list<Argument> values) : fValues(values) {}

  int size() const { return static_cast<int>(fValues.size()); }

  int conversionCost(int index, host::Type const& wanted) override {
    Argument const& value = fValues[static_cast<std::size_t>(index)];
    if (std::holds_alternative<Empty>(value)) return holdsArray(wanted.fCarrier) ? 0 : host::cost::kNone;
    switch (wanted.fCarrier) {
      case host::Carrier::RawLogical:
        if (std::holds_alternative<bool>(value)) return host::cost::kExact;
        return std::holds_alternative<int>(value) ? host::cost::kCoercion : host::cost::kNone;
      case host::Carrier::RawInt32:
        if (std::holds_alternative<int>(value)) return host::cost::kExact;
        return std::holds_alternative<bool>(value) ? host::cost::kCoercion : host::cost::kNone;
      case host::Carrier::Front:
        return std::holds_alternative<bool>(value) ? host::cost::kExact : host::cost::kNone;
      case host::Carrier::Text:
        return std::holds_alternative<std::u16string>(value) ? host::cost::kExact : host::cost::kNone;
      case host::Carrier::Object:
        if (auto const* instance = std::get_if<host::Instance*>(&value))
          return (*instance)->classRecord().distanceTo(static_cast<host::ClassRecord const&>(wanted));
        return host::cost::kNone;
      default:
        return host::cost::kNone;
    }
  }

  VeskValue convert(int index, host::Type const& wanted) override {
    Argument const& value = fValues[static_cast<std::size_t>(index)];
    if (conversionCost(index, wanted) < 0) throw VeskError("The value does not fit", VeskError::Kind::Match);
    if (std::holds_alternative<Empty>(value)) return makeEmpty(wanted);
    if (auto const* logical = std::get_if<bool>(&value)) return VeskValue::ofLogical(*logical);
    if (auto const* number = std::get_if<int>(&value)) return VeskValue::ofInt32(*number);
    if (auto const* text = std::get_if<std::u16string>(&value)) return tarnCreateString_UTF16(text->c_str());
    return std::get<host::Instance*>(value)->newReference();
  }

  std::string describe(int index) override {
    static constexpr char const* kNames[] = {"[]", "bool", "int", "float", "str", "object"};
    return kNames[fValues[static_cast<std::size_t>(index)].index()];
  }

 private:
  std::vector<Argument> fValues;
};

}  // namespace vesk::testing
