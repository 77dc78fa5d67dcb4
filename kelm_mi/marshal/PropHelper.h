#pragma once

#include "kelm_mi/PropHelperBase.h"

namespace Kelm::mi {

/// Converts the values of an enumeration, or of UnlimitedNatural, for the descriptor of a property. A
/// literal's script value is the instance bound to its object; a natural number's is its text. Defined in
/// PropHelperImplementation.h, which is only for the units that instantiate it: one for each value type. A
/// helper keeps nothing, so what PropHelperBase promises of values and failures is all that there is.
template <class T>
class UMLMM_API PropHelper final : public PropHelperBase {
 public:
  vesk::VeskValue unboxAndReturn(Object aValue, char const* aTypeName) override;
  bool boxAndSet(Kelm::ClassObject* aObject, vesk::VeskValue& aValue, IntrospectiveMethods const* aMethods,
                 unsigned aId) override;
  ~PropHelper() override;
};

}  // namespace Kelm::mi
