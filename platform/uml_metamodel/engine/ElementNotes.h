#pragma once

#include <memory>
#include <unordered_map>

#include "engine/FeatureSequence.h"

namespace umlmm::engine {

/// A sequence that is noted for its element.
class NotedSequence : public FeatureSequence {
 public:
  using FeatureSequence::FeatureSequence;

  /// The next of the same element.
  std::unique_ptr<NotedSequence> fNext;
};

/// What few elements of a model have beside their slots: the sequences of computed features that somebody
/// asked for, and texts of other tools. It is kept with the model, made when first needed, and a mark on the
/// element tells that there is something.
class ElementNotes final : public Kelm::ModelCompanion {
 public:
  using Sequences = std::unique_ptr<NotedSequence>;
  using Texts = std::unordered_map<Element const*, Kelm::String>;

  /// The notes of an open model.
  static ElementNotes& of(Kelm::ModelObject& aModel) {
    if (aModel.notes() == nullptr) [[unlikely]]
      aModel.setNotes(std::make_unique<ElementNotes>());
    return static_cast<ElementNotes&>(*aModel.notes());
  }

  /// The first sequence of an element; null if it has none yet.
  Sequences& sequences(Element const& aElement) { return fSequences[&aElement]; }
  /// Tells the element that there is something.
  static void note(Element& aElement, Element::Mark aMark) noexcept {
    auto& marks = Kelm::ElementState::marks(aElement);
    marks = static_cast<std::uint8_t>(marks | aMark);
  }
  /// Of one kind, by element.
  Texts& toolTexts(std::size_t aKind) noexcept { return fToolTexts[aKind]; }

  /// The element goes from its model. Its sequences stay with it in place of the references to it, as they
  /// may be held as long as the element itself.
  static void noteGone(Element& aElement) noexcept {
    if ((aElement.marks() & (Element::HasComputed | Element::HasToolTexts)) != 0) [[unlikely]]
      of(*aElement.model()).remove(aElement);
  }
  /// The memory of an element that has gone is given back.
  static void noteFreed(Element& aElement) noexcept {
    if ((aElement.marks() & Element::HasComputed) != 0) [[unlikely]]
      delete reinterpret_cast<NotedSequence*>(Kelm::ElementState::referrers(aElement));
  }

 private:
  void remove(Element& aElement) noexcept;

  std::unordered_map<Element const*, Sequences> fSequences;
  Texts fToolTexts[2];
};

}  // namespace umlmm::engine
