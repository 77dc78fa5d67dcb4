#include "operations/answers.h"
#include "queries/queries.h"
#include "uml_metamodel/umlmm/LiteralBoolean.h"
#include "uml_metamodel/umlmm/LiteralInteger.h"
#include "uml_metamodel/umlmm/LiteralNull.h"
#include "uml_metamodel/umlmm/LiteralString.h"
#include "uml_metamodel/umlmm/LiteralUnlimitedNatural.h"
#include "uml_metamodel/umlmm/OpaqueExpression.h"

/// What values can be computed: the literals' own, and neutral answers for all others.
namespace umlmm::NSInterface {

namespace {

constexpr char kSource[] = "uml_metamodel/operations/literals";

}  // namespace

using engine::checkReadable;
using engine::readable;

Boolean ValueSpecificationIntf::isComputable(Kelm::Deviant const& aDeviant) const {
  checkReadable(*this, aDeviant, kSource);
  return false;
}
Boolean LiteralBooleanIntf::isComputable(Kelm::Deviant const& aDeviant) const {
  checkReadable(*this, aDeviant, kSource);
  return true;
}
Boolean LiteralIntegerIntf::isComputable(Kelm::Deviant const& aDeviant) const {
  checkReadable(*this, aDeviant, kSource);
  return true;
}
Boolean LiteralNullIntf::isComputable(Kelm::Deviant const& aDeviant) const {
  checkReadable(*this, aDeviant, kSource);
  return true;
}
Boolean LiteralStringIntf::isComputable(Kelm::Deviant const& aDeviant) const {
  checkReadable(*this, aDeviant, kSource);
  return true;
}
Boolean LiteralUnlimitedNaturalIntf::isComputable(Kelm::Deviant const& aDeviant) const {
  checkReadable(*this, aDeviant, kSource);
  return true;
}

Boolean ValueSpecificationIntf::booleanValue(Kelm::Deviant const& aDeviant) const {
  checkReadable(*this, aDeviant, kSource);
  return false;
}
Boolean LiteralBooleanIntf::booleanValue(Kelm::Deviant const& aDeviant) const {
  return readable(*this, aDeviant, kSource).flag(ids::LiteralBoolean::Value);
}

Boolean ValueSpecificationIntf::isNull(Kelm::Deviant const& aDeviant) const {
  checkReadable(*this, aDeviant, kSource);
  return false;
}
Boolean LiteralNullIntf::isNull(Kelm::Deviant const& aDeviant) const {
  checkReadable(*this, aDeviant, kSource);
  return true;
}

Integer ValueSpecificationIntf::integerValue(Kelm::Deviant const& aDeviant) const {
  checkReadable(*this, aDeviant, kSource);
  return 0;
}
Integer LiteralIntegerIntf::integerValue(Kelm::Deviant const& aDeviant) const {
  return static_cast<int>(readable(*this, aDeviant, kSource).number(ids::LiteralInteger::Value));
}

String ValueSpecificationIntf::stringValue(Kelm::Deviant const& aDeviant) const {
  checkReadable(*this, aDeviant, kSource);
  return {};
}
String LiteralStringIntf::stringValue(Kelm::Deviant const& aDeviant) const {
  return Kelm::String(readable(*this, aDeviant, kSource).record(ids::LiteralString::Value));
}

UnlimitedNatural ValueSpecificationIntf::unlimitedValue(Kelm::Deviant const& aDeviant) const {
  checkReadable(*this, aDeviant, kSource);
  return {};
}
UnlimitedNatural LiteralUnlimitedNaturalIntf::unlimitedValue(Kelm::Deviant const& aDeviant) const {
  return UnlimitedNatural(readable(*this, aDeviant, kSource).number(ids::LiteralUnlimitedNatural::Value));
}

Integer OpaqueExpressionIntf::value(Kelm::Deviant const& aDeviant) const {
  checkReadable(*this, aDeviant, kSource);
  return 0;
}
Boolean OpaqueExpressionIntf::isIntegral(Kelm::Deviant const& aDeviant) const {
  checkReadable(*this, aDeviant, kSource);
  return false;
}
Boolean OpaqueExpressionIntf::isPositive(Kelm::Deviant const& aDeviant) const {
  checkReadable(*this, aDeviant, kSource);
  return false;
}
Boolean OpaqueExpressionIntf::isNonNegative(Kelm::Deviant const& aDeviant) const {
  checkReadable(*this, aDeviant, kSource);
  return false;
}

}  // namespace umlmm::NSInterface
