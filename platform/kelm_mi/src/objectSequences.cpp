#include "kelm/Object.h"
#include "kelm/kernel/containers/sequence/SequenceImplementations.h"

// The sequences that scripts make of object references.
template Kelm::Generic::SequenceIntf* Kelm::detail::SequenceImplementations<Kelm::Object>::makeList();
template Kelm::Generic::SequenceIntf* Kelm::detail::SequenceImplementations<Kelm::Object>::makeMultiIndex(
    bool);
