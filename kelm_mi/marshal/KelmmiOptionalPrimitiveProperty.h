#pragma once

#include "kelm_mi/KelmmiProperty.h"
#include "uml_metamodel/umlmm/Boolean.h"
#include "uml_metamodel/umlmm/Integer.h"

namespace Kelm::mi {

/// A Boolean or Integer that may be absent (bounds 0..1). It travels as an array; an absent one is the host's
/// empty value of the data type.
template <class T>
class UMLMM_API KelmmiOptionalPrimitiveProperty final : public KelmmiProperty {
 public:
  using KelmmiProperty::KelmmiProperty;
  ~KelmmiOptionalPrimitiveProperty() override;

  /// An empty array unsets the feature; more than one element raises, and nothing has changed.
  void setValue(vesk::VeskInterface* aInstance, vesk::VeskValue aValue) override;
  void releaseValue(vesk::VeskInterface* aInstance, vesk::VeskValue aValue) override;
  /// Absent is what is unset: a value equal to the default is there.
  vesk::VeskValue getSingleValuedValue(Kelm::ClassObject& aObject) override;
};

extern template class KelmmiOptionalPrimitiveProperty<umlmm::Boolean>;
extern template class KelmmiOptionalPrimitiveProperty<umlmm::Integer>;

}  // namespace Kelm::mi
