#pragma once

#include <boost/container/small_vector.hpp>
#include <deque>
#include <memory>
#include <span>
#include <vector>

#include "engine/Referrers.h"

namespace umlmm::engine {

/// One step of a change, with what was there before.
struct Step {
  enum class Kind : std::uint8_t {
    Text,         ///< Another text came into a slot; the record counts the old one.
    Flags,        ///< Bits of the flag word.
    Integer,      ///< Half a word.
    Stored,       ///< A value came into a reference or list, and the note of it to the value if it has one.
    Dropped,      ///< A value left one.
    RootAdded,    ///< An element came to the top level of the model.
    RootRemoved,  ///< An element left it.
    Unreferred,   ///< Such a note was struck out.
    Arranged,     ///< The values of a list took another order.
    Values,       ///< The values of a list that are no elements changed.
    ReferrersArranged,  ///< The references to an element did.
    Created,
    Marked,    ///< An element is going to be destroyed.
    Destroyed  ///< It is out of the model, and goes when the change ends.
  };

  Kind fKind;
  FeatureIndex fFeature;
  /// Old bits or number; whether there is a note, or its place; number of an order.
  std::uint32_t fNumber;
  Element* fElement;
  /// The value that came or went; a text.
  void* fHeld;
  /// What stood before it in its list.
  Element* fPrevious;
};

/// The values of a list that are no elements, as they were.
class KeptValues {
 public:
  virtual ~KeptValues() = default;
  virtual void restore() noexcept = 0;
};

/// Is told the steps of each change of a model that stays, from construction until it or the model ends.
class StepListener {
 public:
  explicit StepListener(Kelm::ModelObject& aModel);
  StepListener(StepListener const&) = delete;
  StepListener& operator=(StepListener const&) = delete;
  virtual ~StepListener();

  virtual void changed(std::span<Step const> aSteps) noexcept = 0;

 private:
  friend class Kelm::ChangeRecord;
  /// Null once the model is closed.
  Kelm::ModelObject* fModel;
};

}  // namespace umlmm::engine

/// The steps of the change that is under way in a model, in their order. Taking them back in the opposite
/// order needs no memory: whatever a step found room in is left as it is until the end.
class Kelm::ChangeRecord {
 public:
  using Step = umlmm::engine::Step;
  using Orders = std::deque<std::vector<std::uintptr_t>>;
  using Listener = umlmm::engine::StepListener;

  ChangeRecord() = default;
  ChangeRecord(ChangeRecord const&) = delete;
  ChangeRecord& operator=(ChangeRecord const&) = delete;
  ~ChangeRecord();

  // A model that is observed has a record while no change is open: it has no steps, but listeners.

  bool isIdle() const noexcept { return !fListeners.empty(); }
  void add(Listener& aListener) { fListeners.push_back(&aListener); }
  /// Answers whether any is left.
  bool remove(Listener& aListener) noexcept;
  /// Tells the listeners what another record has.
  void tell(ChangeRecord const& aDone) const noexcept;

  /// Makes room for a step, before anything changes.
  void reserve() {
    if (fSteps.size() == fSteps.capacity()) fSteps.reserve(2 * fSteps.capacity());
  }
  void note(Step const& aStep) {
    reserve();
    fSteps.push_back(aStep);
  }
  std::size_t size() const noexcept { return fSteps.size(); }
  Step const& at(std::size_t aIndex) const noexcept { return fSteps[aIndex]; }
  /// Where the innermost change that is open begins.
  std::size_t mark() const noexcept { return fMark; }
  void setMark(std::size_t aMark) noexcept { fMark = aMark; }
  /// Keeps values as they were; answers their number.
  std::uint32_t keep(std::unique_ptr<umlmm::engine::KeptValues> aValues) {
    fValues.push_back(std::move(aValues));
    return static_cast<std::uint32_t>(fValues.size() - 1);
  }
  /// Keeps an order as it was; answers its number.
  std::uint32_t keep(std::vector<std::uintptr_t> aOrder) {
    fOrders.push_back(std::move(aOrder));
    return static_cast<std::uint32_t>(fOrders.size() - 1);
  }
  /// Takes back the steps from `aMark` on, the last first.
  void takeBack(std::size_t aMark) noexcept;
  /// Ends the steps: what they kept for taking them back goes, and so do the elements that were destroyed.
  void finish() noexcept;

 private:
  static constexpr std::size_t kFew = 16;

  void takeBack(Step const& aStep) noexcept;

  boost::container::small_vector<Step, kFew> fSteps;
  Orders fOrders;
  std::deque<std::unique_ptr<umlmm::engine::KeptValues>> fValues;
  std::size_t fMark = 0;
  std::vector<Listener*> fListeners;
};
