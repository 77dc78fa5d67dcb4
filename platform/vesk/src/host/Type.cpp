#include "vesk/host/Type.h"

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
  switch (type.fCarrier) {
    case Carrier::Text:
    case Carrier::NaturalText:
      return tarnCreateEmpty(charClassId);
    case Carrier::OptionalLogical:
      return tarnCreateEmpty(logicalClassId);
    case Carrier::OptionalInt32:
      return tarnCreateEmpty(int32ClassId);
    case Carrier::Object:
      return tarnCreateEmpty(objectClassId);
    default:
      break;
  }
  throw VeskError("A value of type '" + std::string(type.fName.view()) + "' cannot be empty",
                  VeskError::Kind::Match);
}

}  // namespace vesk::host
