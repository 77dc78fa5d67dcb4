#pragma once

#include "kelm_mi/KelmmiProperty.h"
#include "uml_metamodel/umlmm/Boolean.h"
#include "uml_metamodel/umlmm/Integer.h"

namespace Kelm::mi {

/// A Boolean or Integer that every element has (bounds 1..1): an unset one reads as its default, and scripts
/// can't unset it by a value. It travels raw, without an array.
template <class T>
class UMLMM_API KelmmiPrimitiveProperty final : public KelmmiProperty {
 public:
  using KelmmiProperty::KelmmiProperty;
  ~KelmmiPrimitiveProperty() override;

  void setValue(vesk::VeskInterface* aInstance, vesk::VeskValue aValue) override;
  void releaseValue(vesk::VeskInterface*, vesk::VeskValue) override {}
  vesk::VeskValue getSingleValuedValue(Kelm::ClassObject& aObject) override;
};

extern template class KelmmiPrimitiveProperty<umlmm::Boolean>;
extern template class KelmmiPrimitiveProperty<umlmm::Integer>;

}  // namespace Kelm::mi
