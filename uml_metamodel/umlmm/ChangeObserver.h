#pragma once

#include <cstddef>
#include <memory>

#include "kelm/ClassObject.h"
#include "kelm/Model.h"
#include "kelm/meta.h"
#include "lum/visibility.h"

namespace umlmm {

/// What one change has done to a model, step by step in the order in which it was done. It is there as long
/// as the observer is told of it; elements that were destroyed can still be compared, but not read.
class UMLMM_API ChangeSteps {
 public:
  enum class Kind {
    Set,       ///< A text, number, Boolean or literal came into a feature, or left it unset.
    Inserted,  ///< An element came into a feature, also as the far end of another step.
    Removed,   ///< An element left one.
    Arranged,  ///< The values of a feature took another order, or the values of a list that are no elements
               ///< changed.
    Created,
    Destroyed
  };
  struct Step {
    Kind fKind;
    Kelm::NSInterface::ClassObjectIntf* fElement;
    /// Null for `Created` and `Destroyed`.
    Kelm::NSInterface::PropertyIntf const* fProperty;
    /// What came or went; null for other steps.
    Kelm::NSInterface::ClassObjectIntf* fValue;
  };

  virtual std::size_t size() const noexcept = 0;
  /// `aIndex` counts from 0.
  virtual Step at(std::size_t aIndex) const noexcept = 0;

 protected:
  ~ChangeSteps() = default;
};

/// Is told of every change in a model, once it is made for good: of several steps that belong together at
/// once, and of none that was refused or taken back. Observes from construction until it or the model ends. A
/// model that nobody observes pays nothing.
class UMLMM_API ChangeObserver {
 public:
  /// Raises for a model that is closed.
  explicit ChangeObserver(Kelm::Model const& aModel);
  ChangeObserver(ChangeObserver const&) = delete;
  ChangeObserver& operator=(ChangeObserver const&) = delete;
  virtual ~ChangeObserver();

 protected:
  /// Called in the thread that made the change, before the call that made it returns. It may change the
  /// model, which is a change of its own, and end itself or other observers, but not close the model.
  virtual void changed(ChangeSteps const& aSteps) noexcept = 0;

 private:
  class Listener;
  std::unique_ptr<Listener> fListener;
};

}  // namespace umlmm
