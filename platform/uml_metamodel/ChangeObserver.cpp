#include "uml_metamodel/umlmm/ChangeObserver.h"

#include <algorithm>
#include <iterator>

#include "engine/Change.h"
#include "kelm/Asserter.h"
#include "reflection/reflection.h"

namespace umlmm {

namespace {

using engine::Step;
using Steps = std::span<Step const>;

/// The kind that observers are told, or nothing for a step that only keeps the books.
bool isTold(Step const& aStep) noexcept {
  switch (aStep.fKind) {
    case Step::Kind::RootAdded:
    case Step::Kind::RootRemoved:
    case Step::Kind::Unreferred:
    case Step::Kind::ReferrersArranged:
    case Step::Kind::Marked:
      return false;
    default:
      return true;
  }
}

ChangeSteps::Kind kindOf(Step const& aStep) noexcept {
  switch (aStep.fKind) {
    case Step::Kind::Stored:
      return ChangeSteps::Kind::Inserted;
    case Step::Kind::Dropped:
      return ChangeSteps::Kind::Removed;
    case Step::Kind::Arranged:
    case Step::Kind::Values:
      return ChangeSteps::Kind::Arranged;
    case Step::Kind::Created:
      return ChangeSteps::Kind::Created;
    case Step::Kind::Destroyed:
      return ChangeSteps::Kind::Destroyed;
    default:
      return ChangeSteps::Kind::Set;
  }
}

class Told final : public ChangeSteps {
 public:
  explicit Told(Steps aSteps) noexcept
      : fSteps(aSteps), fSize(static_cast<std::size_t>(std::ranges::count_if(aSteps, isTold))) {}

  std::size_t size() const noexcept override { return fSize; }
  Step at(std::size_t aIndex) const noexcept override {
    // Steps are mostly asked for one after the other.
    if (aIndex < fIndex) fIndex = fPlace = 0;
    for (;; ++fPlace) {
      if (!isTold(fSteps[fPlace])) continue;
      if (fIndex == aIndex) break;
      ++fIndex;
    }
    engine::Step const& step = fSteps[fPlace];
    Kind const kind = kindOf(step);
    bool const isLink = kind == Kind::Inserted || kind == Kind::Removed;
    return {kind, step.fElement,
            step.fFeature == engine::kNoFeature ? nullptr : reflection::metaProperty(step.fFeature),
            isLink ? static_cast<engine::Element*>(step.fHeld) : nullptr};
  }

 private:
  Steps fSteps;
  std::size_t fSize;
  /// The step that was asked for last, and where it stands among all.
  mutable std::size_t fIndex = 0;
  mutable std::size_t fPlace = 0;
};

}  // namespace

class ChangeObserver::Listener final : public engine::StepListener {
 public:
  Listener(ChangeObserver& aObserver, Kelm::ModelObject& aModel)
      : engine::StepListener(aModel), fObserver(aObserver) {}

  void changed(Steps aSteps) noexcept override {
    Told const told(aSteps);
    if (told.size() != 0) fObserver.changed(told);
  }

 private:
  ChangeObserver& fObserver;
};

ChangeObserver::ChangeObserver(Kelm::Model const& aModel) {
  Kelm::ModelObject& model = aModel.object();
  if (!model.isOpen()) Kelm::raiseFailure(Kelm::words::kNotInVariant, "uml_metamodel/umlmm/ChangeObserver");
  fListener = std::make_unique<Listener>(*this, model);
}

ChangeObserver::~ChangeObserver() = default;

}  // namespace umlmm
