#pragma once

#include "engine/slots.h"

/// Reading and writing any feature of an element by its record, checks included: what the accessor tables
/// call. The element's metaclass has the feature. All raise when the element does not exist in the variant;
/// those that change also when the variant can't be written or the feature is read-only, and when they raise,
/// for want of memory too, nothing has changed.
namespace umlmm::engine {

/// The value of a feature, in the caller's variant; a null object when it is unset or many-valued.
Kelm::Object read(Element const& aElement, Deviant const& aDeviant, Feature const& aFeature);
/// Whether there is a value: of numbers and of truth values that must be there always, of lists when there is
/// one in it.
bool isSet(Element const& aElement, Deviant const& aDeviant, Feature const& aFeature);
/// Sets a single value; null unsets, a many-valued feature too. Raises when the feature can't take the value.
void write(Element& aElement, Deviant const& aDeviant, Feature const& aFeature, Kelm::Object const& aValue);
/// Takes the value away; a required value goes back to its default, a many-valued feature becomes empty.
void unset(Element& aElement, Deviant const& aDeviant, Feature const& aFeature);
/// The live sequence of a many-valued feature; raises for another. It shares the element's count.
Kelm::Generic::SequenceIntf* sequence(Element const& aElement, Deviant const& aDeviant,
                                      Feature const& aFeature);
/// Replaces all values of a many-valued feature, all or nothing; null clears.
void assign(Element& aElement, Deviant const& aDeviant, Feature const& aFeature,
            Kelm::Generic::SequenceIntf const* aValues, Deviant const& aValuesDeviant);

/// Sets a truth value, literal or number of a root feature by its bits, which are a value of it, without
/// checks of variant and mutability.
void writeBits(Element& aElement, Feature const& aRoot, std::uint32_t aBits);

/// Sets a single reference without checks of variant and mutability; null unsets.
void setReference(Element& aElement, Feature const& aRoot, Element* aValue);

}  // namespace umlmm::engine
