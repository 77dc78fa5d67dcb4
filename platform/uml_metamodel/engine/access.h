#pragma once

#include "engine/slots.h"

/// Reading and writing any feature of an element by its record, checks included: what the accessor tables
/// call.
namespace umlmm::engine {

/// The value of a feature, in the caller's variant; a null object when it is unset or many-valued.
Kelm::Object read(Element const& aElement, Deviant const& aDeviant, Feature const& aFeature);
bool isSet(Element const& aElement, Deviant const& aDeviant, Feature const& aFeature);
/// Sets a single value. Raises, with nothing changed, when the feature can't take it.
void write(Element& aElement, Deviant const& aDeviant, Feature const& aFeature, Kelm::Object const& aValue);
/// Takes the value away; a required value goes back to its default, a many-valued feature becomes empty.
void unset(Element& aElement, Deviant const& aDeviant, Feature const& aFeature);
/// The live sequence of a many-valued feature.
Kelm::Generic::SequenceIntf* sequence(Element const& aElement, Deviant const& aDeviant,
                                      Feature const& aFeature);
/// Replaces all values of a many-valued feature, all or nothing; null clears.
void assign(Element& aElement, Deviant const& aDeviant, Feature const& aFeature,
            Kelm::Generic::SequenceIntf const* aValues, Deviant const& aValuesDeviant);

/// Sets a single reference without checks of variant and mutability; null unsets.
void setReference(Element& aElement, Feature const& aRoot, Element* aValue);

}  // namespace umlmm::engine
