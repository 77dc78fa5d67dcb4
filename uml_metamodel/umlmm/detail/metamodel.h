#pragma once

#include <span>

#include "kelm/Model.h"
#include "kelm/ModelElementIntf.h"
#include "kelm/meta.h"
#include "kelm/values.h"
#include "lum/visibility.h"

/// What the generated reference classes call in the metamodel's implementation. Metaclasses are named by
/// their index (`XIntf::kMetaclassIndex`), features by the declaring metaclass's accessor table and id.
namespace umlmm {

/// Domain of the metaclass interfaces; see kelm/tags.h.
struct VisitationDomain {};

namespace NSInterface {
class ElementIntf;
}

namespace detail {

/// A new element of a concrete metaclass in the model, without an owner. `aRequired` holds the required
/// references in the order of the meta-property list; null ones leave their feature unset. Raises the
/// null-reference failure for a null model and the variant's for a closed or read-only one; for a reference
/// that is refused too, with nothing made. The answer is counted by the model or its container alone.
UMLMM_API Kelm::NSInterface::ModelElementIntf* createElement(int aMetaclass, Kelm::Model const& aModel,
                                                             std::span<Kelm::Object const> aRequired = {});

/// The class object of a metaclass; immortal.
UMLMM_API Kelm::ImmutableClass metaClass(int aMetaclass);

/// The literals of an enumeration, as objects; null for a primitive type and for a type of another metamodel.
UMLMM_API Kelm::EnumerationType const* enumerationType(Kelm::NSInterface::DataTypeIntf const& aType);

/// An element seen as one of its interfaces, or null. What `queryInterface` answers, without a virtual call.
template <class Intf>
Intf const* interfaceOf(Kelm::NSInterface::ModelElementIntf const* aElement) {
  if (aElement == nullptr) return nullptr;
  return static_cast<Intf const*>(aElement->cast(Kelm::tagPair<Intf, VisitationDomain>()));
}

/// A reference to a metaclass interface as a reference to any object, in the same variant.
template <class Intf>
Kelm::Object asObject(Kelm::Handle<Intf> const& aReference) {
  return Kelm::Object(aReference.get(), aReference.getDeviant());
}

/// `X::create`: a reference of class `X` to a new element.
template <class X, class... References>
X create(Kelm::Model const& aModel, References const&... aReferences) {
  Kelm::Object const required[] = {Kelm::Object(), Kelm::Object(asObject(aReferences))...};
  auto* const element =
      createElement(X::InterfaceType::kMetaclassIndex, aModel, std::span(required).subspan(1));
  return X(Kelm::queryInterface<typename X::InterfaceType, VisitationDomain>(element), aModel.getDeviant());
}

}  // namespace detail

/// The metamodel's package object.
UMLMM_API Kelm::ImmutablePackage MetaPackage();

}  // namespace umlmm
