#include <algorithm>
#include <unordered_set>

#include "engine/Aside.h"
#include "engine/FeatureSequence.h"
#include "engine/computed.h"
#include "engine/failures.h"
#include "engine/links.h"

namespace umlmm::engine {

namespace {

constexpr char kSource[] = "uml_metamodel/engine/sequences";

/// The values without repetitions, the first of each kept.
std::vector<Element*> withoutRepeats(std::vector<Element*> const& aValues) {
  std::vector<Element*> kept;
  std::unordered_set<Element*> seen;
  for (Element* const value : aValues)
    if (seen.insert(value).second) kept.push_back(value);
  return kept;
}

/// A feature with a list of its own.
class StoredSequence final : public FeatureSequence {
 public:
  StoredSequence(Element& aElement, Feature const& aFeature) noexcept
      : FeatureSequence(aElement, aFeature), fRoot(rootOf(aFeature)) {}

  void assign(Deviant const&, std::vector<Element*> const& aValues) override {
    std::vector<Element*> const wanted = withoutRepeats(aValues);
    checkAssigned(wanted);
    std::unordered_set<Element*> const staying(wanted.begin(), wanted.end());
    std::vector<Element*> old;
    collect(fElement, fRoot, old);
    if (old.empty() && linkAtOnce(fElement, fRoot, wanted)) return;
    Change change(*fElement.model());
    for (Element* const value : old)
      if (!staying.contains(value)) unlink(fElement, fRoot, *value);
    for (Element* const value : wanted) link(fElement, fRoot, *value);
    if (!wanted.empty()) Change::arrange(fElement, fRoot, wanted);
    change.commit();
  }

 private:
  void checkAssigned(std::vector<Element*> const& aValues) const {
    // What is there now may give way, so the room is that of the new values.
    Feature const& seen = seenOn(fElement, fRoot);
    if (seen.fUpper > 0 && aValues.size() > static_cast<std::size_t>(seen.fUpper))
      failures::raiseTooMany(kSource, seen);
    for (Element const* const value : aValues)
      if (!holds(fElement, fRoot, *value)) checkFit(fElement, fRoot, *value);
    checkRoom(fElement, fRoot, aValues);
  }

  ElementList* list() const noexcept { return pointerSlot<ElementList>(fElement, engine::indexOf(fRoot)); }
  std::uint32_t size(Deviant const&) const override { return ElementList::size(list()); }
  Element* at(Deviant const&, std::uint32_t aPosition) const override { return list()->at(aPosition); }
  std::span<Element* const> all(Deviant const&) const override { return list()->dense(); }
  std::uint32_t find(Deviant const&, Element const& aValue) const override {
    // A part knows its owner: no search for one that is elsewhere.
    if (list() == nullptr || (ownsParts(fRoot) && !holds(fElement, fRoot, aValue))) return kNowhere;
    return withList(fElement, fRoot, [&](auto& aList) { return aList.positionOf(&aValue); });
  }
  bool contains(Deviant const&, Element const& aValue) const override {
    return holds(fElement, fRoot, aValue);
  }
  void check(Element const& aValue, Element const* aReplaced) const override {
    checkLink(fElement, fRoot, aValue, aReplaced);
  }
  void insert(Deviant const& aDeviant, std::uint32_t aPosition, Element& aValue) override {
    link(fElement, fRoot, aValue, aPosition >= size(aDeviant) ? kAtEnd : aPosition);
  }
  void erase(Deviant const&, Element& aValue) override { unlink(fElement, fRoot, aValue); }
  void rearrange(Deviant const&, std::span<int const> aFrom, std::span<int const> aTo) override {
    Change::rearrange(fElement, fRoot, aFrom, aTo);
  }
  std::uint64_t changes(Deviant const&) const override {
    return list() == nullptr ? 1 : list()->stamp() + std::uint64_t{1};
  }

  Feature const& fRoot;
};

/// A computed feature. Values are kept as long as the model does not change; they are those of every variant,
/// as there is one store.
class ComputedSequence final : public NotedSequence {
 public:
  ComputedSequence(Element& aElement, Feature const& aFeature) noexcept : NotedSequence(aElement, aFeature) {}

  void assign(Deviant const& aDeviant, std::vector<Element*> const& aValues) override {
    assignComputed({fElement, aDeviant}, fFeature, withoutRepeats(aValues));
  }

 private:
  std::vector<Element*> const& values(Deviant const& aDeviant) const {
    // A destroyed element has no model and no values; reads are refused before they come here.
    std::uint64_t const revision = fElement.model() == nullptr ? 0 : fElement.model()->revision();
    if (revision != fRevision) {
      std::vector<Element*> now;
      if (fElement.model() != nullptr) computeValues({fElement, aDeviant}, fFeature, now);
      if (now != fValues) {
        fValues = std::move(now);
        ++fChanges;
      }
      fRevision = revision;
    }
    return fValues;
  }
  std::uint32_t size(Deviant const& aDeviant) const override {
    return static_cast<std::uint32_t>(values(aDeviant).size());
  }
  Element* at(Deviant const& aDeviant, std::uint32_t aPosition) const override {
    return values(aDeviant)[aPosition];
  }
  std::span<Element* const> all(Deviant const& aDeviant) const override { return values(aDeviant); }
  std::uint32_t find(Deviant const& aDeviant, Element const& aValue) const override {
    auto const& all = values(aDeviant);
    auto const found = std::find(all.begin(), all.end(), &aValue);
    return found == all.end() ? kNowhere : static_cast<std::uint32_t>(found - all.begin());
  }
  bool contains(Deviant const& aDeviant, Element const& aValue) const override {
    return find(aDeviant, aValue) != kNowhere;
  }
  void check(Element const& aValue, Element const*) const override {
    checkComputed(fElement, fFeature, aValue);
  }
  void insert(Deviant const& aDeviant, std::uint32_t aPosition, Element& aValue) override {
    insertComputed({fElement, aDeviant}, fFeature, aValue,
                   aPosition < size(aDeviant) ? at(aDeviant, aPosition) : nullptr);
  }
  void erase(Deviant const& aDeviant, Element& aValue) override {
    eraseComputed({fElement, aDeviant}, fFeature, aValue);
  }
  void rearrange(Deviant const& aDeviant, std::span<int const> aFrom, std::span<int const> aTo) override {
    std::vector<Element*> order = values(aDeviant);
    for (std::size_t i = 0; i < aTo.size(); ++i)
      order[static_cast<std::size_t>(aTo[i])] = at(aDeviant, static_cast<std::uint32_t>(aFrom[i]));
    arrangeComputed({fElement, aDeviant}, fFeature, order);
  }
  std::uint64_t changes(Deviant const& aDeviant) const override {
    values(aDeviant);
    return fChanges;
  }

  mutable std::vector<Element*> fValues;
  mutable std::uint64_t fRevision = 0;
  /// Counts the times that other values came out, which is seldom: most changes of a model are elsewhere.
  mutable std::uint64_t fChanges = 1;
};

FeatureSequence& computedSequence(Element& aElement, Feature const& aFeature) {
  std::unique_ptr<NotedSequence>& first = Asides::at(aElement).fSequences;
  for (NotedSequence* sequence = first.get(); sequence != nullptr; sequence = sequence->fNext.get())
    if (&sequence->shownFeature() == &aFeature) return *sequence;
  auto made = std::make_unique<ComputedSequence>(aElement, aFeature);
  made->fNext = std::move(first);
  first = std::move(made);
  return *first;
}

}  // namespace

FeatureSequence& FeatureSequence::of(Element& aElement, Feature const& aFeature) {
  if (aFeature.fStorage == Storage::Computed) return computedSequence(aElement, aFeature);
  auto*& proxy = Change::list(aElement, rootOf(aFeature)).fProxy;
  if (proxy == nullptr) proxy = new StoredSequence(aElement, rootOf(aFeature));
  return static_cast<FeatureSequence&>(*proxy);
}

}  // namespace umlmm::engine
