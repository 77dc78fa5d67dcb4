#include "engine/HeldElements.h"

#include "engine/ElementRef.h"

namespace umlmm::engine {

HeldElements::HeldElements(std::vector<Element*> aElements) noexcept : fElements(std::move(aElements)) {
  if (!fElements.empty()) enter(fElements.front()->model()->links());
}

void HeldElements::letGo() noexcept {
  if (isLinked()) {
    leave();
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
  leave();
}

}  // namespace umlmm::engine
