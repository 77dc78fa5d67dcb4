#pragma once

#include <string_view>
#include <type_traits>
#include <utility>

#include "kelm/ElementQueries.h"
#include "kelm/ModelObject.h"
#include "kelm/kernel/containers/sequence/SequenceRef.h"
#include "uml_metamodel/umlmm/Element.h"

/// What a program needs beside the reference classes: models, narrowing, and questions to a whole model.
namespace umlmm {

namespace detail {

template <class Reference>
concept Changeable = !std::is_const_v<std::remove_pointer_t<decltype(std::declval<Reference>().get())>>;

template <class Reference>
using ModelFor = std::conditional_t<Changeable<Reference>, Kelm::Model, Kelm::ImmutableModel>;

/// The variant in which a reference sees what exists there; raises for any other reference.
template <class Intf>
Kelm::Deviant deviantOf(Kelm::Handle<Intf> const& aReference) {
  constexpr char kSource[] = "uml_metamodel/umlmm/models_h";
  if (aReference.isNull()) Kelm::raiseNullReference(kSource);
  if (!aReference.isvalid()) Kelm::raiseFailure(Kelm::words::kNotInVariant, kSource);
  return aReference.getDeviant();
}

}  // namespace detail

/// A new, empty model. It lives as long as a reference to it or, if it is bound to a uri, until it is closed;
/// its elements go with it.
inline Kelm::Model createNewModel() { return Kelm::NSInterface::FactoryIntf::createNewModel(); }

/// `aFrom` as a reference to the more special or more general `X`; null if the element is no X. A read-only
/// reference becomes a read-only one alone: `cast<ImmutableClass>(view)`.
template <class X, class From>
requires(!detail::ViewClass<From> && (detail::Changeable<From> || !detail::Changeable<X>)) X
    cast(From const& aFrom) {
  return Kelm::queryHandle<X, VisitationDomain>(aFrom);
}

/// A view as one of the more special `V`; a view of none if the element is no such.
template <detail::ViewClass V, detail::ViewClass From>
V cast(From const& aFrom) {
  constexpr unsigned kMetaclass = V::InterfaceType::kMetaclassIndex;
  if (!aFrom || (aFrom.element()->classTable()->fGenerals[kMetaclass / 64] >> kMetaclass % 64 & 1) == 0)
    return V();
  return V(*aFrom.element(), aFrom.getDeviant(), aFrom.guard());
}

/// The name of an element's own metaclass, such as "Class"; it lives as long as the process.
inline std::string_view metaclassName(ImmutableElement const& aElement) {
  detail::deviantOf(aElement);
  return aElement.get()->getMetaClass().get()->getName();
}

/// All elements of a model that are an X, owners before what they own, as they are now: the list is a new one
/// and does not follow the model. Raises for a null or closed model. The first question makes an index, which
/// takes a walk over the model; later ones cost what they find.
template <class X>
Kelm::ImmutableSequence<X> instancesOf(detail::ModelFor<X> const& aModel) {
  Kelm::Deviant const deviant = detail::deviantOf(aModel);
  return Kelm::ImmutableSequence<X>::adopt(
      Kelm::elementQueries().instancesOf(Kelm::Model(aModel).object(), deviant, *X::MetaClass().get()),
      deviant);
}

/// All elements that refer to an element by a stored feature, its owner aside, each once, as they are now in
/// a new list. Raises for a null or destroyed element. Costs what it finds: elements know who refers to them.
inline Kelm::ImmutableSequence<Element> referencedBy(Element const& aElement) {
  Kelm::Deviant const deviant = detail::deviantOf(aElement);
  return Kelm::ImmutableSequence<Element>::adopt(
      Kelm::elementQueries().referencedBy(*aElement.get(), deviant), deviant);
}

}  // namespace umlmm
