#pragma once

#include <memory>

#include "kelm_mi/KelmmiProperty.h"
#include "kelm_mi/PropHelperBase.h"

/// The property kinds that KelmmiPropertyFactory makes.
namespace Kelm::mi {

/// A feature typed by a data type; its helper knows the type.
class KelmmiDataTypeProperty final : public KelmmiProperty {
 public:
  KelmmiDataTypeProperty(char const* aClassName, char const* aName, IntrospectiveMethods const* aMethods,
                         unsigned aId, char const* aDataType, Multiplicity aMultiplicity,
                         Mutability aMutability, std::unique_ptr<PropHelperBase> aHelper,
                         vesk::factory::PropertyAttributes aAttributes);
  ~KelmmiDataTypeProperty() override;

  /// An empty value unsets the feature, which then reads as its default if it must have a value.
  void setValue(vesk::VeskInterface* aInstance, vesk::VeskValue aValue) override;
  void releaseValue(vesk::VeskInterface* aInstance, vesk::VeskValue aValue) override;
  vesk::VeskValue getSingleValuedValue(Kelm::ClassObject& aObject) override;

 private:
  std::unique_ptr<PropHelperBase> fHelper;
};

/// A single reference to an element. What is read is as changeable as the instance that it is read from, so a
/// script that starts from a changeable element stays among changeable ones and a read-only view is read-only
/// all the way down.
class KelmmiClassObjectProperty final : public KelmmiProperty {
 public:
  using KelmmiProperty::KelmmiProperty;
  ~KelmmiClassObjectProperty() override;

  vesk::VeskValue getValue(vesk::VeskInterface* aInstance) override;
  /// An empty value unsets the feature. Raises the incorrect-type failure for an element of another type.
  void setValue(vesk::VeskInterface* aInstance, vesk::VeskValue aValue) override;
  void releaseValue(vesk::VeskInterface* aInstance, vesk::VeskValue aValue) override;
  /// The read-only reference: without the instance nothing more is known.
  vesk::VeskValue getSingleValuedValue(Kelm::ClassObject& aObject) override;
};

/// A many-valued feature. What is read is the live sequence: read-only from a read-only instance, else
/// changeable, so that its methods change the feature; of a feature that can't be written, a read-only
/// sequence of references as changeable as the instance. Writing replaces all values.
class KelmmiSequenceProperty final : public KelmmiProperty {
 public:
  /// `aDataType` is the read-only class. `aChangeableClass` is what a changeable instance gives; null for the
  /// read-only class.
  KelmmiSequenceProperty(char const* aClassName, char const* aName, IntrospectiveMethods const* aMethods,
                         unsigned aId, char const* aDataType, vesk::VeskInterned aChangeableClass,
                         Mutability aMutability, vesk::factory::PropertyAttributes aAttributes);
  ~KelmmiSequenceProperty() override;

  int getMemberSetAccess() const override { return has(readOnly) ? 1 : 0; }
  void setValue(vesk::VeskInterface* aInstance, vesk::VeskValue aValue) override;
  void releaseValue(vesk::VeskInterface* aInstance, vesk::VeskValue aValue) override;
  vesk::VeskValue getMultiValuedValue(Kelm::ClassObject& aObject, vesk::VeskInterface* aInstance) override;

 private:
  vesk::VeskInterned const fChangeableClass;
};

/// A single text of the kernel's own features. An empty text unsets one that need not have a value.
class KelmmiTextProperty final : public KelmmiProperty {
 public:
  using KelmmiProperty::KelmmiProperty;
  ~KelmmiTextProperty() override;

  void setValue(vesk::VeskInterface* aInstance, vesk::VeskValue aValue) override;
  void releaseValue(vesk::VeskInterface* aInstance, vesk::VeskValue aValue) override;
  vesk::VeskValue getSingleValuedValue(Kelm::ClassObject& aObject) override;
};

}  // namespace Kelm::mi
