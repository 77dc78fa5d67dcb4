#pragma once

#include "engine/slots.h"

/// The features that every element has from the kernel: container, contents, root, model, uri and identifiers
/// of other tools.
namespace umlmm::engine {

Kelm::Object kernelEntry(Element const* aElement, Deviant const& aDeviant, unsigned aId);
void setKernelEntry(Element* aElement, Deviant const& aDeviant, unsigned aId, Kelm::Object const& aValue);
Kelm::Generic::SequenceIntf* kernelSequence(Element const* aElement, Deviant const& aDeviant, unsigned aId);

/// Gives the kernel the answers to questions about whole models.
void installQueries();

}  // namespace umlmm::engine
