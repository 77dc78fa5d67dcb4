#include "engine/computed.h"

#include <algorithm>
#include <unordered_set>

#include "engine/FeatureSequence.h"
#include "engine/failures.h"
#include "engine/links.h"

namespace umlmm::engine {

namespace {

constexpr char kSource[] = "uml_metamodel/engine/computed";

Union const* unionOn(Reading aElement, FeatureIndex aFeature) noexcept {
  for (Union const& candidate : metaclass(aElement.metaclass()).fUnions)
    if (candidate.fFeature == aFeature) return &candidate;
  return nullptr;
}

/// Drops repeats from `aStart` on, the first of each kept.
void dropRepeats(std::vector<Element*>& aValues, std::size_t aStart) {
  constexpr std::ptrdiff_t kShort = 16;
  auto const first = aValues.begin() + static_cast<std::ptrdiff_t>(aStart);
  auto keep = first;
  if (aValues.end() - first <= kShort) {
    for (auto next = first; next != aValues.end(); ++next)
      if (std::find(first, keep, *next) == keep) *keep++ = *next;
  } else {
    std::unordered_set<Element*> seen;
    seen.reserve(static_cast<std::size_t>(aValues.end() - first));
    for (auto next = first; next != aValues.end(); ++next)
      if (seen.insert(*next).second) *keep++ = *next;
  }
  aValues.erase(keep, aValues.end());
}

void unionValues(Reading aElement, Feature const& aFeature, std::vector<Element*>& aOut) {
  Union const* const own = unionOn(aElement, indexOf(aFeature));
  if (own == nullptr) return;
  std::size_t const start = aOut.size();
  std::size_t contributors = 0;
  for (FeatureIndex const member : own->fMembers) {
    std::size_t const before = aOut.size();
    valuesOf(aElement, feature(member), aOut);
    if (aOut.size() != before) ++contributors;
  }
  // The parts of an element are held by one containment each, so only other unions can repeat a value.
  if (contributors > 1 && !aFeature.fComposite) dropRepeats(aOut, start);
}

/// Null for stored features and unions, among them all that extensions have added.
Derivation const* derivationIn(Feature const& aFeature) noexcept {
  return isAdded(indexOf(aFeature)) ? nullptr : kDerivations[indexOf(aFeature)];
}
Derivation const& derivationOf(Feature const& aFeature) noexcept { return *derivationIn(aFeature); }
bool hasDerivation(Feature const& aFeature) noexcept { return derivationIn(aFeature) != nullptr; }

}  // namespace

void computeValues(Reading aElement, Feature const& aFeature, std::vector<Element*>& aOut) {
  if (&aFeature == &kAppliedStereotypeInstance) return;
  if (!hasDerivation(aFeature)) return unionValues(aElement, aFeature, aOut);
  Derivation const& derivation = derivationOf(aFeature);
  if (derivation.fValues != nullptr) return derivation.fValues(aElement, aOut);
  if (Element* const value = elementOf(derivation.fValue(aElement))) aOut.push_back(value);
}

Kelm::Object computeValue(Reading aElement, Feature const& aFeature) {
  if (hasDerivation(aFeature)) return derivationOf(aFeature).fValue(aElement);
  std::vector<Element*> values;
  unionValues(aElement, aFeature, values);
  return values.empty() ? Kelm::Object() : aElement.on(values.front()).object();
}

void setComputed(Reading aElement, Feature const& aFeature, Kelm::Object const& aValue) {
  Change change(aElement.model());
  derivationOf(aFeature).fSet(aElement, aValue);
  change.commit();
}

void checkComputed(Element const& aElement, Feature const& aFeature, Element const& aValue) {
  if (aValue.model() != aElement.model()) failures::raiseOtherModel(kSource, aFeature, aValue);
  if (!isA(aValue, aFeature.fType)) failures::raiseWrongType(kSource, aFeature, aValue);
  // A filtered view of a containment takes what the containment takes.
  if (aFeature.fComposite && aFeature.fContainment != kNoFeature)
    checkLink(aElement, feature(aFeature.fContainment), aValue);
}

void insertComputed(Reading aElement, Feature const& aFeature, Element& aValue, Element* aBefore) {
  Change change(aElement.model());
  derivationOf(aFeature).fInsert(aElement, aValue, aBefore);
  change.commit();
}

void eraseComputed(Reading aElement, Feature const& aFeature, Element& aValue) {
  Change change(aElement.model());
  derivationOf(aFeature).fErase(aElement, aValue);
  change.commit();
}

void assignComputed(Reading aElement, Feature const& aFeature, std::vector<Element*> const& aValues) {
  std::vector<Element*> const old = valuesOf(aElement, aFeature);
  std::unordered_set<Element*> const held(old.begin(), old.end());
  for (Element* const value : aValues)
    if (!held.contains(value)) checkComputed(*aElement, aFeature, *value);
  std::unordered_set<Element*> const staying(aValues.begin(), aValues.end());
  Change change(aElement.model());
  for (Element* const value : old)
    if (!staying.contains(value)) eraseComputed(aElement, aFeature, *value);
  for (Element* const value : aValues)
    if (!held.contains(value)) insertComputed(aElement, aFeature, *value, nullptr);
  if (auto const arrange = derivationOf(aFeature).fArrange;
      arrange != nullptr && valuesOf(aElement, aFeature) != aValues)
    arrange(aElement, aValues);
  change.commit();
}

void arrangeComputed(Reading aElement, Feature const& aFeature, std::vector<Element*> const& aOrder) {
  if (!hasDerivation(aFeature) || derivationOf(aFeature).fArrange == nullptr)
    failures::raise(kSource, failures::nameOf(aFeature) + " is computed, and so is its order");
  Change change(aElement.model());
  derivationOf(aFeature).fArrange(aElement, aOrder);
  change.commit();
}

void valuesOf(Reading aElement, Feature const& aFeature, std::vector<Element*>& aOut) {
  if (aFeature.fStorage == Storage::Computed) return computeValues(aElement, aFeature, aOut);
  aElement.collect(aFeature.fRoot, aOut);
}

}  // namespace umlmm::engine
