#pragma once

#include <span>
#include <utility>
#include <vector>

#include "engine/slots.h"

namespace umlmm::engine {

/// Living elements that stay readable as long as they are held, in whatever state. Counts are taken when
/// something is about to be destroyed, and not before: most answers of queries are gone by then.
class HeldElements {
 public:
  explicit HeldElements(std::vector<Element*> aElements) noexcept;
  HeldElements(HeldElements const&) = delete;
  HeldElements& operator=(HeldElements const&) = delete;
  ~HeldElements() { letGo(); }

  std::span<Element* const> all() const noexcept { return fElements; }
  void letGo() noexcept;

  /// To be called before any element goes.
  static void countAll() noexcept {
    while (sUncounted != nullptr) sUncounted->count();
  }

 private:
  void count() noexcept;
  void leaveChain() noexcept;

  /// The chain of those without counts.
  static HeldElements* sUncounted;

  std::vector<Element*> fElements;
  bool fIsCounted = false;
  HeldElements* fPrevious = nullptr;
  HeldElements* fNext = nullptr;
};

}  // namespace umlmm::engine
