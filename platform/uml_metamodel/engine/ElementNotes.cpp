#include "engine/ElementNotes.h"

namespace umlmm::engine {

void ElementNotes::remove(Element& aElement) noexcept {
  for (Texts& texts : fToolTexts) texts.erase(&aElement);
  if ((aElement.fMarks & Element::HasComputed) == 0) return;
  auto const entry = fSequences.find(&aElement);
  aElement.fReferrers = reinterpret_cast<std::uintptr_t>(entry->second.release());
  fSequences.erase(entry);
}

}  // namespace umlmm::engine
