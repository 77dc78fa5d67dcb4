#include "engine/Aside.h"

#include "engine/ChangeRecord.h"
#include "engine/FeatureSequence.h"

namespace umlmm::engine {

namespace {

using State = Kelm::ElementState;

/// Tells an aside in the word that has the references to elements of a model.
constexpr std::uintptr_t kIsAside = 2;

}  // namespace

Aside::Aside() noexcept = default;

Aside::~Aside() {
  for (auto const& [index, word] : fWords) {
    if (word == 0) continue;
    Storage const storage = feature(index).fStorage;
    if (storage == Storage::String) reinterpret_cast<Kelm::StringObject*>(word)->decRef();
    if (storage == Storage::List) ElementList::destroy(reinterpret_cast<ElementList*>(word));
    if (storage == Storage::PrimitiveList) delete reinterpret_cast<Kelm::Generic::SequenceIntf*>(word);
  }
}

Asides::Asides() noexcept = default;
Asides::~Asides() = default;

Aside* Asides::lookUp(Element const& aElement) noexcept {
  if (aElement.model() != nullptr) {
    auto const& asides = of(*aElement.model()).fAsides;
    auto const found = asides.find(&aElement);
    return found == asides.end() ? nullptr : found->second.get();
  }
  std::uintptr_t const word = State::referrers(aElement);
  return (word & kIsAside) == 0 ? nullptr : reinterpret_cast<Aside*>(word & ~kIsAside);
}

Aside& Asides::at(Element& aElement) {
  auto& aside = of(*aElement.model()).fAsides[&aElement];
  if (aside == nullptr) aside = std::make_unique<Aside>();
  note(aElement, Element::HasAside);
  return *aside;
}

std::uint64_t& Asides::word(Element& aElement, FeatureIndex aRoot) {
  return at(aElement).fWords.try_emplace(aRoot, feature(aRoot).fUnsetBits).first->second;
}

std::uint64_t addedWord(Element const& aElement, FeatureIndex aRoot) noexcept {
  if (Aside const* const aside = Asides::find(aElement))
    if (auto const found = aside->fWords.find(aRoot); found != aside->fWords.end()) return found->second;
  return feature(aRoot).fUnsetBits;
}

void Asides::remove(Element& aElement) noexcept {
  for (Texts& texts : fToolTexts) texts.erase(&aElement);
  if ((aElement.marks() & Element::HasAside) == 0) return;
  auto const entry = fAsides.find(&aElement);
  if (entry == fAsides.end()) return;
  State::referrers(aElement) = reinterpret_cast<std::uintptr_t>(entry->second.release()) | kIsAside;
  fAsides.erase(entry);
}

}  // namespace umlmm::engine
