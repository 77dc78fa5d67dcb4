#pragma once

#include "engine/Feature.h"
#include "kelm/IntrospectiveMethods.h"
#include "kelm/meta.h"

namespace umlmm::engine {

/// What the accessors of every metaclass do, given the feature's number.
namespace accessors {
using Element = Kelm::NSInterface::ClassObjectIntf;

Kelm::Object getEntry(Element const* aElement, Kelm::Deviant const& aDeviant, int aMetaclass, unsigned aId);
bool isSetEntry(Element const* aElement, Kelm::Deviant const& aDeviant, int aMetaclass, unsigned aId);
void setEntry(Element* aElement, Kelm::Deviant const& aDeviant, int aMetaclass, unsigned aId,
              Kelm::Object const& aValue);
Kelm::Generic::SequenceIntf* getSequenceEntry(Element const* aElement, Kelm::Deviant const& aDeviant,
                                              int aMetaclass, unsigned aId);
void unsetEntry(Element* aElement, Kelm::Deviant const& aDeviant, int aMetaclass, unsigned aId);
void setSequenceEntry(Element* aElement, Kelm::Deviant const& aDeviant, int aMetaclass, unsigned aId,
                      Kelm::Generic::SequenceIntf const* aValues, Kelm::Deviant const& aValuesDeviant);
bool isReadOnlyEntry(int aMetaclass, unsigned aId);
}  // namespace accessors

/// Stands in accessors for the metaclass of an extension.
inline constexpr int kAddedMetaclass = kMetaclassCount;

/// The class objects and meta-property tables, filled at start-up. The table of a metaclass starts at its
/// first feature's number plus its own, so that each has an entry 0 that names no property.
extern Kelm::NSInterface::ClassIntf const* metaClasses[kMetaclassCount];
extern Kelm::MetaPropertyRecord metaProperties[kFeatureCount + kMetaclassCount];

/// The accessor table of a metaclass, without code of its own beyond naming itself.
template <int Metaclass, int FirstFeature>
constexpr Kelm::IntrospectiveMethods accessorsOf() {
  using Kelm::Deviant;
  using Kelm::Object;
  using Sequence = Kelm::Generic::SequenceIntf;
  using Element = accessors::Element;
  return {
      [](Element const* e, Deviant const& d, unsigned id) {
        return accessors::getEntry(e, d, Metaclass, id);
      },
      [](Element const* e, Deviant const& d, unsigned id) {
        return accessors::isSetEntry(e, d, Metaclass, id);
      },
      [](Element* e, Deviant const& d, unsigned id, Object const& v) {
        accessors::setEntry(e, d, Metaclass, id, v);
      },
      [](Element const* e, Deviant const& d, unsigned id) {
        return accessors::getSequenceEntry(e, d, Metaclass, id);
      },
      [](Element* e, Deviant const& d, unsigned id) { accessors::unsetEntry(e, d, Metaclass, id); },
      [](Element* e, Deviant const& d, unsigned id, Sequence const* v, Deviant const& vd) {
        accessors::setSequenceEntry(e, d, Metaclass, id, v, vd);
      },
      [](Element const*, Deviant const&, unsigned id) { return accessors::isReadOnlyEntry(Metaclass, id); },
      &metaClasses[Metaclass],
      &metaProperties[FirstFeature + Metaclass],
  };
}

}  // namespace umlmm::engine
