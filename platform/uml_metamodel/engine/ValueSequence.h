#pragma once

#include "engine/slots.h"

namespace umlmm::engine {

/// The live sequence of a many-valued feature of values. It shares the element's count, checks the variant,
/// and, for a unique feature, ignores a value that is there already.
Kelm::Generic::SequenceIntf& valueSequence(Element& aElement, Feature const& aRoot);

/// Empties such a sequence of an element that has gone, so that no iterator answers for it any more.
void forgetValues(Kelm::Generic::SequenceIntf& aSequence) noexcept;

/// Replaces all values, all or nothing; null clears. Assigning the sequence itself changes nothing.
void assignValues(Element& aElement, Feature const& aRoot, Deviant const& aDeviant,
                  Kelm::Generic::SequenceIntf const* aValues, Deviant const& aValuesDeviant);

}  // namespace umlmm::engine
