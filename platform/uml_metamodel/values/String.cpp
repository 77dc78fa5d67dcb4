#include "uml_metamodel/umlmm/String.h"

#include "kelm/Asserter.h"
#include "kelm/values.h"

namespace umlmm {

namespace {

Kelm::StringObject const* recordOf(Kelm::ImmutableObject const& aObject) {
  Kelm::StringObject const* const record = Kelm::asString(aObject);
  if (record == nullptr) kelm::Error_IncorrectType(String::kName);
  return record;
}

}  // namespace

String::String(Kelm::ImmutableObject const& aObject) : Kelm::String(recordOf(aObject)) {}

String::String(Kelm::Object&& aObject) : Kelm::String(recordOf(aObject), Counted()) { aObject.release(); }

String::operator Kelm::Object() const { return Kelm::Object(record(), Kelm::Deviant()); }

}  // namespace umlmm
