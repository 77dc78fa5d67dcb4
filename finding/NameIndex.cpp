#include "finding/NameIndex.h"

#include <memory>
#include <vector>

#include "kelm/ModelElementIntf.h"
#include "kelm/kernel/containers/Ref.h"
#include "uml_metamodel/umlmm/NamedElement.h"
#include "uml_metamodel/umlmm/String.h"

namespace umlmm::finding {

namespace {

using Element = NameIndex::Element;
using Kelm::NSInterface::ModelElementIntf;

constexpr char kKey = 0;

/// Empty for an element that has none.
std::string nameOf(Element const& aElement, Kelm::Deviant const& aDeviant) {
  auto* const named = Kelm::queryInterface<NSInterface::NamedElementIntf, VisitationDomain>(&aElement);
  if (named == nullptr) return {};
  return Kelm::toUtf8(ImmutableNamedElement(named, aDeviant).getName().text());
}

Element* ownerOf(Element const& aElement, Kelm::Deviant const& aDeviant) {
  return Kelm::queryHandle<Kelm::ClassObject, Kelm::VisitationDomain>(
             aElement.getKernelEntry(aDeviant, ModelElementIntf::ContainerKelm))
      .get();
}

}  // namespace

NameIndex::NameIndex(Kelm::Model const& aModel)
    : ChangeObserver(aModel), fModel(aModel.object()), fDeviant(aModel.getDeviant()) {}

NameIndex& NameIndex::of(Kelm::Model const& aModel) {
  Kelm::ModelObject& model = aModel.object();
  if (auto* const known = static_cast<NameIndex*>(model.attachment(&kKey))) return *known;
  std::unique_ptr<NameIndex> made(new NameIndex(aModel));
  NameIndex& index = *made;
  model.attach(&kKey, std::move(made));
  return index;
}

NameIndex::Element* NameIndex::find(Element const* aOwner, std::string_view aPath) {
  constexpr std::string_view kSeparator = "::";
  for (;;) {
    std::size_t const end = aPath.find(kSeparator);
    Element* const found = part(aOwner, aPath.substr(0, end));
    if (found == nullptr || end == std::string_view::npos) return found;
    aOwner = found;
    aPath.remove_prefix(end + kSeparator.size());
  }
}

NameIndex::Element* NameIndex::part(Element const* aOwner, std::string_view aName) {
  if (aName.empty()) return nullptr;
  auto const [first, last] = partsOf(aOwner).equal_range(aName);
  if (first == last) return nullptr;
  if (std::next(first) == last) return first->second;
  std::unordered_set<Element const*> called;
  for (auto at = first; at != last; ++at) called.insert(at->second);
  Element* found = nullptr;
  forEachPart(aOwner, [&](Element* aPart) {
    if (found == nullptr && called.contains(aPart)) found = aPart;
  });
  return found;
}

NameIndex::Parts& NameIndex::partsOf(Element const* aOwner) {
  auto const known = fParts.find(aOwner);
  if (known != fParts.end()) return known->second;
  Parts& parts = fParts[aOwner];
  try {
    forEachPart(aOwner, [&](Element* aPart) { add(aOwner, parts, aPart); });
  } catch (...) {
    drop(aOwner);
    throw;
  }
  return parts;
}

template <class Visit>
void NameIndex::forEachPart(Element const* aOwner, Visit aVisit) const {
  if (aOwner == nullptr) {
    // Where one has left its entry stays behind for a while.
    if (fModel.roots() != nullptr)
      for (Element* const root : *fModel.roots())
        if (root != nullptr) aVisit(root);
    return;
  }
  auto const& parts = *aOwner->getKernelSequence(fDeviant, ModelElementIntf::ContaineeKelm);
  std::vector<Kelm::Generic::Loan> loans(static_cast<std::size_t>(parts.generic_size(fDeviant)));
  parts.readBlock(fDeviant, 0, static_cast<int>(loans.size()), loans.data());
  for (auto const& loan : loans) aVisit(Kelm::Generic::RefAccess<Kelm::ClassObject>::get(loan).get());
}

void NameIndex::add(Element const* aOwner, Parts& aParts, Element* aElement) {
  std::string name = nameOf(*aElement, fDeviant);
  if (name.empty()) return;
  Place& place = fPlaces[aElement];
  try {
    place = {aOwner, aParts.emplace(std::move(name), aElement)};
  } catch (...) {
    fPlaces.erase(aElement);
    throw;
  }
}

void NameIndex::forget(Element const* aElement) {
  auto const place = fPlaces.find(aElement);
  if (place == fPlaces.end()) return;
  fParts.at(place->second.fOwner).erase(place->second.fAt);
  fPlaces.erase(place);
}

void NameIndex::follow(Element* aElement) {
  forget(aElement);
  Element const* const owner = ownerOf(*aElement, fDeviant);
  auto const parts = fParts.find(owner);
  if (parts != fParts.end()) add(owner, parts->second, aElement);
}

void NameIndex::drop(Element const* aOwner) {
  auto const parts = fParts.find(aOwner);
  if (parts == fParts.end()) return;
  for (auto const& [name, element] : parts->second) fPlaces.erase(element);
  fParts.erase(parts);
}

void NameIndex::changed(ChangeSteps const& aSteps) noexcept try {
  using Kind = ChangeSteps::Kind;
  // What has been destroyed can't be read, at whatever step it is met.
  std::unordered_set<Element const*> gone;
  for (std::size_t at = 0; at < aSteps.size(); ++at) {
    ChangeSteps::Step const step = aSteps.at(at);
    if (step.fKind != Kind::Destroyed) continue;
    gone.insert(step.fElement);
    forget(step.fElement);
    drop(step.fElement);
  }
  for (std::size_t at = 0; at < aSteps.size(); ++at) {
    ChangeSteps::Step const step = aSteps.at(at);
    bool const isLink = step.fKind == Kind::Inserted || step.fKind == Kind::Removed;
    Element* const moved = isLink ? step.fValue : step.fElement;
    if (step.fKind == Kind::Arranged || step.fKind == Kind::Destroyed || gone.contains(moved)) continue;
    follow(moved);
  }
} catch (...) {
  // It is made anew when somebody asks.
  fPlaces.clear();
  fParts.clear();
}

}  // namespace umlmm::finding
