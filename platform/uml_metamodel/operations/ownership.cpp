#include "engine/ElementRef.h"
#include "engine/words.h"
#include "operations/queries.h"
#include "operations/results.h"
#include "uml_metamodel/umlmm/Element.h"
#include "uml_metamodel/umlmm/NamedElement.h"
#include "uml_metamodel/umlmm/Package.h"

namespace umlmm {

namespace {

constexpr char kSource[] = "uml_metamodel/operations/ownership";

}  // namespace

namespace queries {

namespace {}  // namespace

Element* nearestOwner(Element const& aElement, int aMetaclass) noexcept {
  Element* owner = aElement.container();
  while (owner != nullptr && !isA(*owner, aMetaclass)) owner = owner->container();
  return owner;
}

Elements allOwnedElements(Element const& aElement) {
  // The parts of one element stand together in the result; what is open is a part of it that was not followed
  // yet.
  struct Block {
    std::size_t fNext;
    std::size_t fEnd;
  };
  Elements all;
  std::vector<Block> open;
  engine::collectContents(aElement, all);
  open.push_back({0, all.size()});
  while (!open.empty()) {
    if (open.back().fNext == open.back().fEnd) {
      open.pop_back();
      continue;
    }
    engine::prefetch(all, open.back().fNext);
    Element const& next = *all[open.back().fNext++];
    std::size_t const start = all.size();
    engine::collectContents(next, all);
    if (all.size() != start) open.push_back({start, all.size()});
  }
  return all;
}

bool mustBeOwned(Element const& aElement) noexcept { return !isA(aElement, ids::metaclass::Package); }

Elements allOwningPackages(Element const& aElement) {
  Elements packages;
  Element* owner = nearestOwner(aElement, ids::metaclass::Package);
  for (; owner != nullptr; owner = nearestOwner(*owner, ids::metaclass::Package)) packages.push_back(owner);
  return packages;
}

}  // namespace queries

namespace NSInterface {

using queries::makeResult;

Kelm::ImmutableSequence<ImmutableElement> ElementIntf::allOwnedElements(Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return makeResult<ImmutableElement>(aDeviant, queries::allOwnedElements(*this));
}

Boolean ElementIntf::mustBeOwned(Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::mustBeOwned(*this);
}

Boolean PackageIntf::mustBeOwned(Kelm::Deviant const& aDeviant) const {
  return ElementIntf::mustBeOwned(aDeviant);
}

Kelm::ImmutableSequence<ImmutablePackage> NamedElementIntf::allOwningPackages(
    Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return makeResult<ImmutablePackage>(aDeviant, queries::allOwningPackages(*this));
}

}  // namespace NSInterface

}  // namespace umlmm
