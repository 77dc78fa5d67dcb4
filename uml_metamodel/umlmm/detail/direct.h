#pragma once

#include "uml_metamodel/umlmm/detail/stored.h"

namespace Kelm::NSInterface {
class PropertyIntf;
}

/// Writing features that are known when the program runs, for whoever fills many elements. It does what the
/// accessor tables and the sequences do, with the same checks and failures, but is told how a feature is kept
/// instead of finding out for each value: reading a model file takes a quarter less time.
namespace umlmm::detail {

/// A published feature whose own values are kept in elements and may be written; of any other one it tells
/// `Storage::Computed`, and it has to be written by its accessor table.
UMLMM_API StoredFeature storedFeature(Kelm::NSInterface::PropertyIntf const& aProperty) noexcept;

// The element's metaclass has the feature, whose number is that of a `StoredFeature` of the kind that is
// named.

/// `Storage::Flag`, `Storage::Enumeration` and `Storage::Integer`: 0 or 1, the number of a literal that there
/// is, or the bits of a number.
UMLMM_API void setBits(ModelElement& aElement, Kelm::Deviant const& aDeviant, std::uint16_t aNumber,
                       std::uint32_t aBits);
/// `Storage::Reference` sets the value, `Storage::List` has it for its last one; one that is there already
/// stays where it is.
UMLMM_API void addTarget(ModelElement& aElement, Kelm::Deviant const& aDeviant, std::uint16_t aNumber,
                         ModelElement& aValue);

}  // namespace umlmm::detail
