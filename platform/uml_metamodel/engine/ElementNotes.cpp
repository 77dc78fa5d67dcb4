#include "engine/ElementNotes.h"

namespace umlmm::engine {

void ElementNotes::remove(Element& aElement) noexcept {
  for (Texts& texts : fToolTexts) texts.erase(&aElement);
  if ((aElement.marks() & Element::HasComputed) == 0) return;
  auto const entry = fSequences.find(&aElement);
  Kelm::ElementState::referrers(aElement) = reinterpret_cast<std::uintptr_t>(entry->second.release());
  fSequences.erase(entry);
}

}  // namespace umlmm::engine
