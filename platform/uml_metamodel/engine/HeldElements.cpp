#include "engine/HeldElements.h"

#include "engine/ElementRef.h"

namespace umlmm::engine {

HeldElements* HeldElements::sUncounted = nullptr;

HeldElements::HeldElements(std::vector<Element*> aElements) noexcept
    : fElements(std::move(aElements)), fNext(sUncounted) {
  if (fNext != nullptr) fNext->fPrevious = this;
  sUncounted = this;
}

void HeldElements::letGo() noexcept {
  if (!fIsCounted) {
    leaveChain();
    fIsCounted = true;
  } else {
    for (std::size_t at = 0; at < fElements.size(); ++at) {
      prefetch(fElements, at);
      fElements[at]->decRef();
    }
  }
  fElements.clear();
}

void HeldElements::count() noexcept {
  for (std::size_t at = 0; at < fElements.size(); ++at) {
    prefetch(fElements, at);
    fElements[at]->incRef();
  }
  leaveChain();
  fIsCounted = true;
}

void HeldElements::leaveChain() noexcept {
  (fPrevious == nullptr ? sUncounted : fPrevious->fNext) = fNext;
  if (fNext != nullptr) fNext->fPrevious = fPrevious;
  fPrevious = fNext = nullptr;
}

}  // namespace umlmm::engine
