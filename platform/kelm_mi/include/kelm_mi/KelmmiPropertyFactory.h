#pragma once

#include "kelm/meta.h"
#include "kelm_mi/PropHelperBase.h"
#include "kelm_mi/codes.h"
#include "vesk/VeskClass.h"
#include "vesk/VeskPropInfo.h"

namespace Kelm::mi {

/// Adds properties to a class that is being filled. Each operation makes a descriptor from the three fields
/// and its own arguments and gives it to the class. Texts are not copied: they must live as long as the
/// class.
struct UMLMM_API KelmmiPropertyFactory {
  vesk::VeskClass* veskClass;
  /// Full name of the class.
  char const* className;
  IntrospectiveMethods const* methods;

  /// A feature typed by a metaclass. `aTypeName` is the read-only class of the value ("umlmm.ImmutableType"),
  /// or the read-only sequence class if there are many.
  void ClassObject(char const* aName, Multiplicity aMultiplicity, Mutability aMutability, unsigned aId,
                   char const* aTypeName, vesk::factory::PropertyAttributes aAttributes) const;
  /// A feature typed by a data type, converted by `aHelper`, which the descriptor takes over (also when
  /// making the descriptor fails).
  void DataType(char const* aName, Multiplicity aMultiplicity, Mutability aMutability, unsigned aId,
                char const* aTypeName, PropHelperBase* aHelper,
                vesk::factory::PropertyAttributes aAttributes) const;
  /// A many-valued feature of a value type. `aTypeName` is the read-only sequence class.
  void PrimitiveSequence(char const* aName, Multiplicity aMultiplicity, Mutability aMutability, unsigned aId,
                         char const* aTypeName, vesk::factory::PropertyAttributes aAttributes) const;
  /// A static method that answers `aGetter(aId)`.
  void addMetaProperty(char const* aName, ImmutableProperty (*aGetter)(unsigned aId), unsigned aId) const;
};

}  // namespace Kelm::mi
