#pragma once

#include <string_view>
#include <vector>

#include "engine/Reading.h"
#include "kelm/kernel/containers/sequence/SequenceRef.h"
#include "operations/ElementResult.h"
#include "uml_metamodel/umlmm/Boolean.h"
#include "uml_metamodel/umlmm/Integer.h"
#include "uml_metamodel/umlmm/String.h"
#include "uml_metamodel/umlmm/UnlimitedNatural.h"
#include "uml_metamodel/umlmm/detail/metamodel.h"

/// What queries take and give as the members of the interface classes see it.
namespace umlmm::operations {

using engine::Deviant;
using engine::Element;
using engine::Reading;

/// The element behind an argument; none for a null reference and for an element that is gone. It is seen in
/// the variant in which the question was asked, or, where it is of another model, in its own.
template <class Intf>
Reading given(Reading aAsked, Kelm::Handle<Intf> const& aArgument) noexcept {
  Element const* const element = aArgument.get();
  if (element == nullptr || element->model() == nullptr) return {};
  return element->model() == &aAsked.model() ? aAsked.on(*element)
                                             : Reading(*element, aArgument.getDeviant());
}

/// The elements of a sequence argument in order, repeats included, as far as they are in the model: an answer
/// holds elements of one model alone. None for a null sequence; one that is not of elements must not be
/// given. Raises what reading the sequence raises.
std::vector<Element*> givenElements(Reading aAsked, Kelm::SequenceRef const& aArgument);

/// A new counted list of references to the elements, which must be of one model; `T` is the type under which
/// they are shown and is not checked.
template <class T>
Kelm::ImmutableSequence<T> makeResult(Deviant const& aDeviant, std::vector<Element*> aElements) {
  return Kelm::ImmutableSequence<T>(new ElementResult(std::move(aElements), aDeviant), aDeviant);
}

/// A reference to an element; a null one for none, and for one that is no `T`.
template <class T>
T makeReference(Deviant const& aDeviant, Reading aElement) {
  using Intf = typename T::InterfaceType;
  return T(Kelm::queryInterface<Intf, VisitationDomain>(static_cast<Element const*>(aElement.element())),
           aDeviant);
}

/// A new counted list of copies.
Kelm::ImmutableSequence<String> makeTexts(Deviant const& aDeviant,
                                          std::vector<std::u16string_view> const& aTexts);

inline String makeText(std::u16string_view aText) { return String(std::u16string(aText)); }

}  // namespace umlmm::operations
