#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "engine/FeatureSequence.h"

namespace umlmm::engine {

/// What few elements of a model have beside their slots: the sequences of computed features that somebody
/// asked for, and texts of other tools. It is kept with the model, made when first needed, and a mark on the
/// element tells that there is something.
class ElementNotes final : public Kelm::ModelCompanion {
 public:
  using Sequences = std::vector<std::unique_ptr<FeatureSequence>>;
  using Texts = std::unordered_map<Element const*, Kelm::String>;

  /// The notes of an open model.
  static ElementNotes& of(Kelm::ModelObject& aModel);

  Sequences& sequences(Element& aElement);
  /// Of one kind, by element.
  Texts& toolTexts(std::size_t aKind) noexcept { return fToolTexts[aKind]; }

  /// The element goes from its model. Its sequences stay with it in place of the references to it, as they
  /// may be held as long as the element itself.
  static void noteGone(Element& aElement) noexcept {
    if ((aElement.fMarks & (Element::HasComputed | Element::HasToolTexts)) != 0) [[unlikely]]
      of(*aElement.fModel).remove(aElement);
  }
  /// The memory of an element that has gone is given back.
  static void noteFreed(Element& aElement) noexcept {
    if ((aElement.fMarks & Element::HasComputed) != 0) [[unlikely]]
      delete reinterpret_cast<Sequences*>(aElement.fReferrers);
  }

 private:
  void remove(Element& aElement) noexcept;

  std::unordered_map<Element const*, std::unique_ptr<Sequences>> fSequences;
  Texts fToolTexts[2];
};

}  // namespace umlmm::engine
