#pragma once

#include "kelm_mi/KelmmiProperty.h"
#include "uml_metamodel/umlmm/String.h"

namespace Kelm::mi {

/// A text of UTF-16 code units, read up to the first zero. An absent one reads as an empty text; setting an
/// empty text removes an optional one and is stored in a required one.
template <class T>
class UMLMM_API KelmmiStringProperty final : public KelmmiProperty {
 public:
  using KelmmiProperty::KelmmiProperty;
  ~KelmmiStringProperty() override;

  void setValue(vesk::VeskInterface* aInstance, vesk::VeskValue aValue) override;
  void releaseValue(vesk::VeskInterface* aInstance, vesk::VeskValue aValue) override;
  vesk::VeskValue getSingleValuedValue(Kelm::ClassObject& aObject) override;
};

extern template class KelmmiStringProperty<umlmm::String>;

}  // namespace Kelm::mi
