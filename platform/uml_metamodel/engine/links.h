#pragma once

#include <span>
#include <vector>

#include "engine/Change.h"

/// References between elements: stored slots, their far ends, subsets and the one container of an element,
/// all driven by the table of features. Nothing here asks for writability: see featureAccess.h. A `aRoot` is
/// a feature with a slot or a container view, on the metaclass of the owner; owner and value are alive and of
/// one model.
namespace umlmm::engine {

/// The container if the containment that `aView` is the far end of holds the element, else null. `aView` may
/// be a redefinition or a narrower view of it.
Element* containerThrough(Element const& aElement, Feature const& aView) noexcept;

/// Whether the stored feature or container view holds the value. Asks the side that tells sooner: of a part
/// its container, of a pair the shorter list.
bool holds(Element const& aOwner, Feature const& aRoot, Element const& aValue);

/// Number of values of a stored or container feature.
std::uint32_t countOf(Element const& aOwner, Feature const& aRoot) noexcept;

/// Appends the values of a stored or container feature to `aOut`.
void collect(Element const& aOwner, Feature const& aRoot, std::vector<Element*>& aOut);

/// The single value of a stored or container feature, or null.
Element* single(Element const& aOwner, Feature const& aRoot) noexcept;

/// Raises, naming feature and value, when the feature of the owner can't take the value, or one of the
/// features that `link` enters with it (the far end, the supersets at both ends) can't: another model, a type
/// that does not conform, a cycle of ownership, no room in a feature that a redefinition has narrowed.
/// `aReplaced` is a value that leaves the feature in the same change; its supersets keep it.
void checkLink(Element const& aOwner, Feature const& aRoot, Element const& aValue,
               Element const* aReplaced = nullptr);

/// The same without a look at how full the feature itself is.
void checkFit(Element const& aOwner, Feature const& aRoot, Element const& aValue);

/// Raises when the supersets of a feature have no room for what several values add to them together.
void checkRoom(Element const& aOwner, Feature const& aRoot, std::span<Element* const> aValues);

/// Makes the link with all that follows from it: the far end, the supersets at both ends, the value's old
/// container, values that single ends held before. Nothing if the link stands. What `checkLink` refuses must
/// not come here; lack of memory raises, with nothing changed. `aRoot` is a root feature that is stored or a
/// container view; `aPosition` counts in the owner's list.
void link(Element& aOwner, Feature const& aRoot, Element& aValue, std::uint32_t aPosition = kAtEnd);

/// Has the value for the one or the last value of the feature, with the checks of `checkLink`; nothing if it
/// is there. What nobody owns yet comes into its owner in a third of the time.
void add(Element& aOwner, Feature const& aRoot, Element& aValue);

/// Appends values to a list where nothing else follows from it: free elements that nobody watches, in a
/// feature without supersets or stored far end. All or none, without noting each step; raises what
/// `checkLink` raises. False, with nothing done, for any other.
bool linkAtOnce(Element& aOwner, Feature const& aRoot, std::span<Element* const> aValues);

/// Takes the link away, also from the subsets at both ends; nothing if there is none. A part becomes a
/// top-level element of its model.
void unlink(Element& aOwner, Feature const& aRoot, Element& aValue);

/// Unlinks the one and links the other, each unless it is null; both or, when it raises, neither.
void replace(Element& aOwner, Feature const& aRoot, Element* aOld, Element* aValue);

/// Takes the element out of its container; it becomes a top-level element.
void leaveContainer(Element& aElement);

/// Puts values of a list, each once, into the order given; the places that they have together stay theirs.
void arrangeValues(Element& aOwner, Feature const& aRoot, std::span<Element* const> aValues);

}  // namespace umlmm::engine
