#pragma once

#include "kelm/ClassObject.h"
#include "kelm_mi/codes.h"
#include "vesk/Detail.h"
#include "vesk/VeskPropInfo.h"
#include "vesk/interned.h"

namespace Kelm::mi {

/// Base of all property descriptors: one structural feature, served by the accessors of the metaclass that
/// declares it. A descriptor never changes and holds nothing of an element. One descriptor serves the
/// read-only and the changeable class alike, so whether a write is allowed is asked of the instance.
class UMLMM_API KelmmiProperty : public vesk::VeskPropInfo, public vesk::Detailed {
 public:
  enum Flag : std::uint32_t { multiValued = 2, readOnly = 4, required = 8 };

  /// `aClassName` is the full name of the class that the property is added to. `aMethods` and `aDataType` are
  /// not copied; `aDataType` may be null.
  KelmmiProperty(char const* aClassName, char const* aName, IntrospectiveMethods const* aMethods,
                 unsigned aId, char const* aDataType, Multiplicity aMultiplicity, Mutability aMutability,
                 vesk::factory::PropertyAttributes aAttributes);
  ~KelmmiProperty() override;

  char const* getDataType() const override { return dataType == nullptr ? "" : dataType; }
  int getMemberGetAccess() const override { return 0; }
  /// 0 for a property that `setValue` may write, else 1. To be shown, not enforced: `setValue` tells why not.
  int getMemberSetAccess() const override { return has(readOnly) || has(multiValued) ? 1 : 0; }

  /// Fetches the element and hands on to one of the two below. Raises for a null reference, and what the
  /// accessors raise. The element is borrowed: the instance holds it for the length of the call.
  vesk::VeskValue getValue(vesk::VeskInterface* aInstance) override;

  // Each raises the internal-error failure where the class below does not have such values.
  virtual vesk::VeskValue getSingleValuedValue(ClassObject& aObject);
  virtual vesk::VeskValue getMultiValuedValue(ClassObject& aObject, vesk::VeskInterface* aInstance);

  /// A line on the feature, its id within the owner, and the two codes.
  vesk::Details details() const override;

  /// Tells the script that the instance is read-only.
  [[noreturn]] static void throwSetProhibitedException();

  [[nodiscard]] bool has(Flag aFlag) const noexcept { return (flags & aFlag) != 0; }

  IntrospectiveMethods const* const methods;
  /// Of the feature within its metaclass, as `methods` take it.
  std::uint32_t const id;
  char const* const dataType;
  std::uint32_t const flags;

 protected:
  /// What every write does before it converts the value: refuses a many-valued and a read-only feature
  /// (naming `aSource`), then an instance whose object is read-only, and answers the element. `aValueType` is
  /// the name under which the instance is asked for its object.
  Borrowed<ClassObject> openForSet(vesk::VeskInterface* aInstance, vesk::VeskInterned aValueType,
                                   char const* aSource) const;
  /// The same for descriptors that can replace all values of a many-valued feature.
  Borrowed<ClassObject> openForReplace(vesk::VeskInterface* aInstance, vesk::VeskInterned aValueType,
                                       char const* aSource) const;

  /// `dataType`, interned.
  vesk::VeskInterned const fDataTypeName;
};

}  // namespace Kelm::mi
