#include "engine/ElementNotes.h"

namespace umlmm::engine {

ElementNotes& ElementNotes::of(Kelm::ModelObject& aModel) {
  if (aModel.notes() == nullptr) aModel.setNotes(std::make_unique<ElementNotes>());
  return static_cast<ElementNotes&>(*aModel.notes());
}

ElementNotes::Sequences& ElementNotes::sequences(Element& aElement) {
  auto& sequences = fSequences[&aElement];
  if (sequences == nullptr) {
    sequences = std::make_unique<Sequences>();
    aElement.fMarks |= Element::HasComputed;
  }
  return *sequences;
}

void ElementNotes::remove(Element& aElement) noexcept {
  for (Texts& texts : fToolTexts) texts.erase(&aElement);
  if ((aElement.fMarks & Element::HasComputed) == 0) return;
  auto const entry = fSequences.find(&aElement);
  aElement.fReferrers = reinterpret_cast<std::uintptr_t>(entry->second.release());
  fSequences.erase(entry);
}

}  // namespace umlmm::engine
