#pragma once

#include "kelm_mi/marshal/KelmmiOptionalPrimitiveProperty.h"
#include "kelm_mi/marshal/KelmmiPrimitiveProperty.h"
#include "kelm_mi/marshal/KelmmiStringProperty.h"
#include "kelm_mi/marshal/PropHelper.h"
#include "uml_metamodel_mi/wrappers/ElementDescription.h"

/// The kinds of property descriptors, as the last column of a PropertyRow names them.
namespace umlmm::mi {

namespace detail {

template <class Descriptor>
void addDescriptor(Kelm::mi::KelmmiPropertyFactory const& aFactory, PropertyRow const& aRow) {
  auto descriptor = std::make_unique<Descriptor>(aFactory.className, aRow.fName, aFactory.methods, aRow.fId,
                                                 aRow.fType, aRow.fMultiplicity, aRow.fMutability,
                                                 vesk::factory::PropertyAttributes(0));
  aFactory.veskClass->addProperty(descriptor.release());
}

}  // namespace detail

/// References to elements, one or many.
void classObject(Kelm::mi::KelmmiPropertyFactory const& aFactory, PropertyRow const& aRow);
/// Many values of a primitive type.
void primitiveSequence(Kelm::mi::KelmmiPropertyFactory const& aFactory, PropertyRow const& aRow);

/// One value of an enumeration, or an UnlimitedNatural.
template <class T>
void dataType(Kelm::mi::KelmmiPropertyFactory const& aFactory, PropertyRow const& aRow) {
  aFactory.DataType(aRow.fName, aRow.fMultiplicity, aRow.fMutability, aRow.fId, aRow.fType,
                    new Kelm::mi::PropHelper<T>(), vesk::factory::PropertyAttributes(0));
}

/// A Boolean or Integer that is always there.
template <class T>
inline constexpr PropertyRow::Add primitive = &detail::addDescriptor<Kelm::mi::KelmmiPrimitiveProperty<T>>;
/// A Boolean or Integer that may be absent.
template <class T>
inline constexpr PropertyRow::Add optionalPrimitive =
    &detail::addDescriptor<Kelm::mi::KelmmiOptionalPrimitiveProperty<T>>;
inline constexpr PropertyRow::Add string =
    &detail::addDescriptor<Kelm::mi::KelmmiStringProperty<umlmm::String>>;

}  // namespace umlmm::mi
