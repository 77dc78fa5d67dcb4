#include "operations/answers.h"
#include "queries/queries.h"
#include "uml_metamodel/umlmm/ExtensionEnd.h"
#include "uml_metamodel/umlmm/MultiplicityElement.h"

namespace umlmm {

namespace {

constexpr char kSource[] = "uml_metamodel/operations/multiplicity";

}  // namespace

namespace NSInterface {

using engine::readable;
using operations::given;

Boolean MultiplicityElementIntf::isMultivalued(Kelm::Deviant const& aDeviant) const {
  return queries::upperBound(readable(*this, aDeviant, kSource)) > 1;
}

Boolean MultiplicityElementIntf::includesCardinality(Kelm::Deviant const& aDeviant, Integer aC) const {
  return queries::includesCardinality(readable(*this, aDeviant, kSource), aC.value());
}

Boolean MultiplicityElementIntf::includesMultiplicity(Kelm::Deviant const& aDeviant,
                                                      ImmutableMultiplicityElement const& aM) const {
  engine::Reading const self = readable(*this, aDeviant, kSource);
  return queries::includesMultiplicity(self, given(self, aM));
}

Integer MultiplicityElementIntf::lowerBound(Kelm::Deviant const& aDeviant) const {
  return queries::lowerBound(readable(*this, aDeviant, kSource));
}

Integer ExtensionEndIntf::lowerBound(Kelm::Deviant const& aDeviant) const {
  return MultiplicityElementIntf::lowerBound(aDeviant);
}

UnlimitedNatural MultiplicityElementIntf::upperBound(Kelm::Deviant const& aDeviant) const {
  return UnlimitedNatural(queries::upperBound(readable(*this, aDeviant, kSource)));
}

Boolean MultiplicityElementIntf::compatibleWith(Kelm::Deviant const& aDeviant,
                                                ImmutableMultiplicityElement const& aOther) const {
  engine::Reading const self = readable(*this, aDeviant, kSource);
  return queries::isCompatibleWith(self, given(self, aOther));
}

Boolean MultiplicityElementIntf::is(Kelm::Deviant const& aDeviant, Integer aLowerbound,
                                    Integer aUpperbound) const {
  engine::Reading const self = readable(*this, aDeviant, kSource);
  if (aUpperbound.value() < -1) return false;
  // As an unsigned number, -1 is the unlimited bound.
  return queries::lowerBound(self) == aLowerbound.value() &&
         queries::upperBound(self) == static_cast<std::uint32_t>(aUpperbound.value());
}

}  // namespace NSInterface

}  // namespace umlmm
