#pragma once

#include "kelm_mi/PropHelperBase.h"
#include "uml_metamodel/umlmm/AggregationKind.h"
#include "uml_metamodel/umlmm/CallConcurrencyKind.h"
#include "uml_metamodel/umlmm/ConnectorKind.h"
#include "uml_metamodel/umlmm/InteractionOperatorKind.h"
#include "uml_metamodel/umlmm/MessageKind.h"
#include "uml_metamodel/umlmm/MessageSort.h"
#include "uml_metamodel/umlmm/ParameterDirectionKind.h"
#include "uml_metamodel/umlmm/UnlimitedNatural.h"
#include "uml_metamodel/umlmm/VisibilityKind.h"

namespace Kelm::mi {

/// Converts the values of an enumeration, or of UnlimitedNatural, for the descriptor of a property. A
/// literal's script value is the instance bound to its object; a natural number's is its text.
template <class T>
class UMLMM_API PropHelper final : public PropHelperBase {
 public:
  vesk::VeskValue unboxAndReturn(Object aValue, char const* aTypeName) override;
  bool boxAndSet(Kelm::ClassObject* aObject, vesk::VeskValue& aValue, IntrospectiveMethods const* aMethods,
                 unsigned aId) override;
  ~PropHelper() override;
};

extern template class PropHelper<umlmm::AggregationKind>;
extern template class PropHelper<umlmm::CallConcurrencyKind>;
extern template class PropHelper<umlmm::ConnectorKind>;
extern template class PropHelper<umlmm::InteractionOperatorKind>;
extern template class PropHelper<umlmm::MessageKind>;
extern template class PropHelper<umlmm::MessageSort>;
extern template class PropHelper<umlmm::ParameterDirectionKind>;
extern template class PropHelper<umlmm::VisibilityKind>;
extern template class PropHelper<umlmm::UnlimitedNatural>;

}  // namespace Kelm::mi
