#pragma once

#include <utility>

#include "kelm/kernel/containers/iterator/IteratorProxy.h"

namespace Kelm {

class LiveIterator;

/// The iterators that stand in one sequence. A change of the sequence looks at each, to move it along with
/// its element or to end it: what is freed may be used again at once, so an address does not tell afterwards
/// whether the element is still the same. So a change takes time for each iterator there is, which are few:
/// the passes of C++ and of hosts go in blocks, without iterators.
class LiveIterators {
 public:
  LiveIterators() noexcept = default;
  LiveIterators(LiveIterators const&) = delete;
  LiveIterators& operator=(LiveIterators const&) = delete;
  inline ~LiveIterators();

  /// Calls `aVisit` with each iterator; all are of the class that the sequence makes.
  template <class Iterator, class Visit>
  void forEach(Visit aVisit) const;

 private:
  friend class LiveIterator;

  LiveIterator* fFirst = nullptr;
};

/// Base of iterators that their sequence knows from their making to their end. Either may end first, but only
/// the end of an iterator is safe then: all else looks into the sequence.
class LiveIterator : public IteratorProxy {
 public:
  /// The element is gone: every use raises from now on.
  void end() noexcept { fIsGone = true; }
  bool isGone() const noexcept { return fIsGone; }

 protected:
  explicit LiveIterator(LiveIterators& aAll) noexcept { enter(&aAll); }
  LiveIterator(LiveIterator const& aOther) : IteratorProxy(aOther), fIsGone(aOther.fIsGone) {
    enter(aOther.fAll);
  }
  ~LiveIterator() override {
    if (fAll == nullptr) return;
    (fPrevious == nullptr ? fAll->fFirst : fPrevious->fNext) = fNext;
    if (fNext != nullptr) fNext->fPrevious = fPrevious;
  }
  /// The iterator was put at an element that is there.
  void revive() noexcept { fIsGone = false; }

 private:
  friend class LiveIterators;

  void enter(LiveIterators* aAll) noexcept {
    fAll = aAll;
    if (aAll == nullptr) return;
    fNext = std::exchange(aAll->fFirst, this);
    if (fNext != nullptr) fNext->fPrevious = this;
  }

  LiveIterators* fAll = nullptr;
  LiveIterator* fPrevious = nullptr;
  LiveIterator* fNext = nullptr;
  bool fIsGone = false;
};

LiveIterators::~LiveIterators() {
  for (LiveIterator* next = fFirst; next != nullptr; next = next->fNext) next->fAll = nullptr;
}

template <class Iterator, class Visit>
void LiveIterators::forEach(Visit aVisit) const {
  for (LiveIterator* next = fFirst; next != nullptr; next = next->fNext)
    aVisit(static_cast<Iterator&>(*next));
}

}  // namespace Kelm
