#pragma once

#include <span>
#include <utility>
#include <vector>

#include "engine/slots.h"

namespace umlmm::engine {

/// Living elements of one model that stay readable as long as they are held, in whatever state. Counts are
/// taken when something in the model is about to be destroyed, and not before: most answers of queries are
/// gone by then. Those without counts stand in the model's chain.
class HeldElements : private Kelm::ModelLink {
 public:
  explicit HeldElements(std::vector<Element*> aElements) noexcept;
  ~HeldElements() { letGo(); }

  std::span<Element* const> all() const noexcept { return fElements; }
  void letGo() noexcept;

  /// To be called before any element of the model goes.
  static void countAll(Kelm::ModelObject& aModel) noexcept {
    while (Kelm::ModelLink* const first = aModel.links()) static_cast<HeldElements*>(first)->count();
  }

 private:
  void count() noexcept;

  std::vector<Element*> fElements;
};

}  // namespace umlmm::engine
