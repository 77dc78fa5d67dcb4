#include "vesk/host/Type.h"

#include <iterator>
#include <optional>

#include "tarn/tarn.h"
#include "vesk/VeskError.h"
#include "vesk/host/ClassRecord.h"

namespace vesk::host {

namespace {

struct BuiltInTypes {
  BuiltInTypes() {
    registerDataType("void", Carrier::Void);
    registerDataType("logical scalar", Carrier::RawLogical);
    registerDataType("int32 scalar", Carrier::RawInt32);
  }
};

BuiltInTypes const sBuiltInTypes;

struct CarrierRow {
  Carrier fCarrier;
  /// What its arrays hold; none where it holds none.
  std::optional<tarnClassId> fArrayClass;
};

constexpr CarrierRow kRows[] = {
    {Carrier::Void, {}},
    {Carrier::RawLogical, {}},
    {Carrier::RawInt32, {}},
    {Carrier::Front, {}},
    {Carrier::Text, charClassId},
    {Carrier::NaturalText, charClassId},
    {Carrier::OptionalLogical, logicalClassId},
    {Carrier::OptionalInt32, int32ClassId},
    {Carrier::Object, objectClassId},
};

/// Each carrier at its own place, and with arrays where it promises them.
consteval bool areInOrder() {
  for (std::size_t i = 0; i < std::size(kRows); ++i) {
    CarrierRow const& row = kRows[i];
    if (row.fCarrier != static_cast<Carrier>(i) || row.fArrayClass.has_value() != holdsArray(row.fCarrier))
      return false;
  }
  return true;
}
static_assert(areInOrder());

}  // namespace

Type& registerDataType(char const* name, Carrier carrier) {
  VeskInterned const token = internal::intern(name);
  Type*& type = token.record()->fType;
  if (!type)
    type = new Type{token, carrier};  // lives as long as the process
  else if (type->fCarrier != carrier)
    throw VeskError("Data type '" + std::string(name) + "' is already defined in another way");
  return *type;
}

bool isClassName(VeskInterned name) noexcept {
  std::string_view const text = name.view();
  return text.find('.') != text.npos || (!text.empty() && text[0] >= 'A' && text[0] <= 'Z');
}

Type& resolveType(VeskInterned name) {
  if (isClassName(name)) return classOf(name);
  if (name && name.record()->fType) return *name.record()->fType;
  throw VeskError("Data type '" + std::string(name.view()) + "' is not defined", VeskError::Kind::Name);
}

tarnArray* makeEmpty(Type const& type) {
  CarrierRow const& row = kRows[static_cast<std::size_t>(type.fCarrier)];
  if (row.fArrayClass) return tarnCreateEmpty(*row.fArrayClass);
  throw VeskError("A value of type '" + std::string(type.fName.view()) + "' cannot be empty",
                  VeskError::Kind::Match);
}

}  // namespace vesk::host
