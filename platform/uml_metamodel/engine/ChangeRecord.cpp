#include "engine/ChangeRecord.h"

#include <algorithm>

#include "engine/Change.h"

using umlmm::engine::Change;
using umlmm::engine::Element;
using umlmm::engine::Feature;
using umlmm::engine::Referrers;
using Kind = umlmm::engine::Step::Kind;

Kelm::ChangeRecord::~ChangeRecord() {
  for (Listener* const listener : fListeners) listener->fModel = nullptr;
}

bool Kelm::ChangeRecord::remove(Listener& aListener) noexcept {
  std::erase(fListeners, &aListener);
  return !fListeners.empty();
}

void Kelm::ChangeRecord::tell(ChangeRecord const& aDone) const noexcept {
  for (std::size_t at = 0; at < fListeners.size();) {
    Listener* const told = fListeners[at];
    told->changed({aDone.fSteps.data(), aDone.fSteps.size()});
    // Who is told may come and go meanwhile.
    auto const found = std::find(fListeners.begin(), fListeners.end(), told);
    if (found != fListeners.end()) at = static_cast<std::size_t>(found - fListeners.begin()) + 1;
  }
}

void Kelm::ChangeRecord::takeBack(std::size_t aMark) noexcept {
  for (; fSteps.size() > aMark; fSteps.pop_back()) takeBack(fSteps.back());
}

void Kelm::ChangeRecord::takeBack(Step const& aStep) noexcept {
  Element& element = *aStep.fElement;
  auto* const value = static_cast<Element*>(aStep.fHeld);
  // For the steps that have a feature.
  auto const root = [&]() -> Feature const& { return umlmm::engine::feature(aStep.fFeature); };
  switch (aStep.fKind) {
    case Kind::Text: {
      auto*& slot = Change::pointer<StringObject>(element, aStep.fFeature);
      if (slot != nullptr) slot->decRef();
      slot = static_cast<StringObject*>(aStep.fHeld);
      break;
    }
    case Kind::Flags:
      ElementState::flags(element) = aStep.fNumber;
      break;
    case Kind::Integer:
      Change::integer(element, aStep.fFeature) = aStep.fNumber;
      break;
    case Kind::Stored:
      if (aStep.fNumber != 0) Referrers::removeLast(*value);
      Change::take(element, root(), *value);
      break;
    case Kind::Dropped:
      Change::putBack(element, root(), *value, aStep.fPrevious);
      break;
    case Kind::RootAdded:
      element.model()->removeRoot(&element);
      break;
    case Kind::RootRemoved:
      element.model()->restoreRoot(aStep.fPrevious, &element);
      break;
    case Kind::Unreferred:
      Referrers::fill(*value, {&element, aStep.fFeature}, aStep.fNumber);
      break;
    case Kind::Arranged:
      Change::reorder(element, root(), fOrders[aStep.fNumber]);
      break;
    case Kind::Values:
      fValues[aStep.fNumber]->restore();
      break;
    case Kind::ReferrersArranged:
      Referrers::restore(element, fOrders[aStep.fNumber]);
      break;
    case Kind::Created:
      element.model()->removeRoot(&element);
      return Change::letGo(element);
    case Kind::Marked:
    case Kind::Destroyed:
      Change::revive(element, *static_cast<ModelObject*>(aStep.fHeld));
      break;
  }
  element.model()->noteChange();
}

void Kelm::ChangeRecord::finish() noexcept {
  for (Step const& step : fSteps) {
    if (step.fKind == Kind::Text && step.fHeld != nullptr) static_cast<StringObject*>(step.fHeld)->decRef();
    if (step.fKind == Kind::Unreferred) Referrers::closeHoles(*static_cast<Element*>(step.fHeld));
  }
  // Innermost first, as they were noted from the outermost on.
  for (auto step = fSteps.rbegin(); step != fSteps.rend(); ++step) {
    if (step->fKind != Kind::Destroyed) continue;
    Change::revive(*step->fElement, *static_cast<ModelObject*>(step->fHeld));
    Change::letGo(*step->fElement);
  }
}
