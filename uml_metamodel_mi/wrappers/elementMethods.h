#pragma once

#include <memory>

#include "frame/addTypedMethod.h"
#include "uml_metamodel/umlmm/detail/metamodel.h"
#include "uml_metamodel_mi/wrappers/ElementDescription.h"
#include "uml_metamodel_mi/wrappers/metaclasses.h"
#include "vesk/factory/BindingRegistry.h"

/// The typed functions that are the same for all metaclasses.
namespace umlmm::mi {

/// What scripts get to reach the meta properties of a metaclass. `ImmutableX` is its read-only reference
/// class.
template <ElementReference ImmutableX>
struct MetaPropertyMarker {
  std::unique_ptr<typename ImmutableX::MetaProperty> fMarker;
};

namespace detail {

/// `aOther` if its object has the interface, else a null reference; the deviant is kept.
Kelm::Object narrow(Kelm::ImmutableObject const& aOther,
                    Kelm::CooperativeVisitor::internal::ClassInfo const& aTags);

/// The property of an id through the accessor table of one metaclass, in the variant of its class object.
Kelm::ImmutableProperty propertyOf(Kelm::IntrospectiveMethods const& aMethods, unsigned aId, unsigned aBound,
                                   char const* aSource, Kelm::ImmutableClass (*aMetaClass)());

/// Opens the object for writing in its deviant.
void unlock(Kelm::ReferenceCountingIntf const* aObject, Kelm::Deviant const& aDeviant);

template <ElementReference ImmutableX>
MetaPropertyMarker<ImmutableX> makeMarker() {
  return {std::make_unique<typename ImmutableX::MetaProperty>()};
}

template <ElementReference X, class To, class From>
To cast(From aOther) {
  return narrow(aOther, Kelm::tagPair<typename X::InterfaceType, VisitationDomain>());
}

template <ElementReference X>
X asDeviant(X const& aSelf, Kelm::ImmutableModel const& aModel) {
  return X(aSelf.get(), aModel.getDeviant());
}

template <ElementReference X, ElementReference ImmutableX>
ImmutableX asImmutable(X const& aSelf) {
  return aSelf;
}

template <ElementReference X, ElementReference ImmutableX>
X asMutable(ImmutableX const& aSelf) {
  unlock(aSelf.get(), aSelf.getDeviant());
  return Kelm::queryHandle<X, VisitationDomain>(aSelf);
}

}  // namespace detail

/// The accessor of a metaclass's own meta properties; ids above the greatest raise.
template <ElementReference ImmutableX>
Kelm::ImmutableProperty metaProperty(unsigned aId) {
  constexpr MetaclassBinding const& row = metaclassOf<ImmutableX>();
  return detail::propertyOf(ImmutableX::InterfaceType::sIntrospectiveMethods, aId, row.fFeatureCount,
                            row.fSource, &ImmutableX::MetaClass);
}
/// The same for the features of the kernel's class above `Element`.
Kelm::ImmutableProperty kernelMetaProperty(unsigned aId);

template <ElementReference X, ElementReference ImmutableX>
inline constexpr CommonMethods kCommonMethods{
    &Kelm::mi::bindFunction<&ImmutableX::MetaClass>,
    &Kelm::mi::bindFunction<&detail::makeMarker<ImmutableX>>,
    &Kelm::mi::bindFunction<&detail::cast<X, Kelm::Object, Kelm::Object>>,
    &Kelm::mi::bindFunction<&detail::cast<X, Kelm::ImmutableObject, Kelm::ImmutableObject>>,
    &Kelm::mi::bindFunction<&detail::cast<X, Kelm::ImmutableObject, Kelm::Object>>,
};

template <ElementReference X, ElementReference ImmutableX>
inline constexpr RedeclaredMethods kRedeclaredMethods{
    {&Kelm::mi::bindMember<&X::isvalid, X>, &Kelm::mi::bindMember<&ImmutableX::isvalid, ImmutableX>},
    &Kelm::mi::bindMember<&X::destroy, X>,
    {&Kelm::mi::bindFunction<&detail::asDeviant<X>>, &Kelm::mi::bindFunction<&detail::asDeviant<ImmutableX>>},
    {&Kelm::mi::bindFunction<&detail::asImmutable<X, ImmutableX>>,
     &Kelm::mi::bindFunction<&detail::asImmutable<ImmutableX, ImmutableX>>},
    &Kelm::mi::bindFunction<&detail::asMutable<X, ImmutableX>>,
};

/// A query of the read-only reference class, which the changeable class runs too.
template <ElementReference X, ElementReference ImmutableX, auto Member>
inline constexpr BindPair kQuery{&Kelm::mi::bindMember<Member, X>, &Kelm::mi::bindMember<Member, ImmutableX>};

/// Picks the member with these parameters from overloads: `With<A const&>::of(&X::f)`.
template <class... Parameters>
struct With {
  template <class Result, class Owner>
  static constexpr auto of(Result (Owner::*aMember)(Parameters...) const) {
    return aMember;
  }
  template <class Result>
  static constexpr auto of(Result (*aFunction)(Parameters...)) {
    return aFunction;
  }
};

}  // namespace umlmm::mi

template <class ImmutableX>
struct Kelm::mi::Boxer<umlmm::mi::MetaPropertyMarker<ImmutableX>> {
  static vesk::VeskValue box(umlmm::mi::MetaPropertyMarker<ImmutableX> aMarker) {
    static vesk::VeskInterned const name =
        umlmm::mi::metaPropertyClassName(umlmm::mi::metaclassOf<ImmutableX>().fName);
    void* const marker = aMarker.fMarker.get();
    vesk::VeskValue const value = vesk::factory::basic::BindingRegistry::announce(marker, name);
    // From here on the host object owns the marker.
    static_cast<void>(aMarker.fMarker.release());
    return value;
  }
};
