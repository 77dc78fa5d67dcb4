#pragma once

#include <cstdint>
#include <typeinfo>

#include "lum/visibility.h"

namespace Kelm::CooperativeVisitor::internal {

using Tag = std::uintptr_t;

/// The pair of tags by which `cast` finds an interface on an object.
struct ClassInfo {
  Tag fDomain;
  Tag fType;
};

/// Domain of the domains themselves.
struct RootVisitationDomain {};

/// A number for `aType` in `aDomain`, stable for the process: dense from 1, so that class tables can be
/// indexed by it. Only libkelm hands out numbers; equal type records (by name) give equal numbers.
UMLMM_API Tag GetTag(std::type_info const& aType, std::type_info const& aDomain);

/// One more than the greatest number handed out so far.
UMLMM_API Tag tagLimit() noexcept;

}  // namespace Kelm::CooperativeVisitor::internal

namespace Kelm {

namespace detail {

template <class Domain>
CooperativeVisitor::internal::Tag domainTag() {
  using namespace CooperativeVisitor::internal;
  static Tag const tag = GetTag(typeid(Domain), typeid(RootVisitationDomain));
  return tag;
}

}  // namespace detail

/// The tags of `Interface` in `Domain`, cached per library; the answer has static lifetime.
template <class Interface, class Domain>
CooperativeVisitor::internal::ClassInfo const& tagPair() {
  using namespace CooperativeVisitor::internal;
  static ClassInfo const pair{detail::domainTag<Domain>(), GetTag(typeid(Interface), typeid(Domain))};
  return pair;
}

}  // namespace Kelm
