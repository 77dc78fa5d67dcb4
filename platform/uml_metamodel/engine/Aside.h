#pragma once

#include <map>
#include <memory>
#include <unordered_map>

#include "engine/slots.h"

namespace umlmm::engine {

class NotedSequence;

/// What few elements have beside their slots: the sequences of computed features that somebody asked for, and
/// the values of features that extensions have added.
struct Aside {
  Aside() noexcept;
  ~Aside();

  /// The first of a chain.
  std::unique_ptr<NotedSequence> fSequences;
  /// By feature with a slot; words are as slots would be, Booleans and enumerations from the lowest bit on.
  std::map<FeatureIndex, std::uint64_t> fWords;
};

/// The asides of a model's elements, and texts of other tools. They are kept with the model, made when first
/// needed, and a mark on the element tells that there is something.
class Asides final : public Kelm::ModelCompanion {
 public:
  Asides() noexcept;
  ~Asides() override;

  using Texts = std::unordered_map<Element const*, Kelm::String>;

  /// Those of an open model.
  static Asides& of(Kelm::ModelObject& aModel) {
    if (aModel.notes() == nullptr) [[unlikely]]
      aModel.setNotes(std::make_unique<Asides>());
    return static_cast<Asides&>(*aModel.notes());
  }

  /// What the element has, also when it has gone from its model; null for nothing.
  static Aside* find(Element const& aElement) noexcept {
    return (aElement.marks() & Element::HasAside) == 0 ? nullptr : lookUp(aElement);
  }
  /// What the element, which lives, has; made if there is nothing.
  static Aside& at(Element& aElement);
  /// The word of an added feature of an element that lives; made as on an element where it was never set.
  static std::uint64_t& word(Element& aElement, FeatureIndex aRoot);

  /// Of those who observe the model; null for nobody.
  std::unique_ptr<Kelm::ChangeRecord>& observed() noexcept { return fObserved; }
  /// Of one kind, by element.
  Texts& toolTexts(std::size_t aKind) noexcept { return fToolTexts[aKind]; }
  /// Tells the element that there is something.
  static void note(Element& aElement, Element::Mark aMark) noexcept {
    auto& marks = Kelm::ElementState::marks(aElement);
    marks = static_cast<std::uint8_t>(marks | aMark);
  }

  /// The element goes from its model. Its aside stays with it in place of the references to it, as its
  /// sequences may be held as long as the element itself.
  static void noteGone(Element& aElement) noexcept {
    if ((aElement.marks() & (Element::HasAside | Element::HasToolTexts)) != 0) [[unlikely]]
      of(*aElement.model()).remove(aElement);
  }
  /// The memory of an element that has gone is given back.
  static void noteFreed(Element& aElement) noexcept {
    if ((aElement.marks() & Element::HasAside) != 0) [[unlikely]]
      delete lookUp(aElement);
  }

 private:
  static Aside* lookUp(Element const& aElement) noexcept;
  void remove(Element& aElement) noexcept;

  std::unordered_map<Element const*, std::unique_ptr<Aside>> fAsides;
  std::unique_ptr<Kelm::ChangeRecord> fObserved;
  Texts fToolTexts[2];
};

}  // namespace umlmm::engine
