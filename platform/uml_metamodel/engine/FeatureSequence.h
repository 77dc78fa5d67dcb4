#pragma once

#include <memory>
#include <span>
#include <vector>

#include "engine/slots.h"

namespace umlmm::engine {

/// The live sequence of a many-valued reference feature of one element: what scripts and typed handles read
/// and change. It shares the element's count, so that there is one object for an element and feature as long
/// as anybody needs it, and no cost for features that nobody looks at. Values are element references in the
/// caller's variant.
///
/// Every change goes through the engine, so far ends, subsets and containers follow. All lists of elements
/// are unique: adding what is there changes nothing. A refused change changes nothing, nor does one that
/// finds no memory. Positions count from 0, also here where they are unsigned.
///
/// Access by position takes constant time, after erases once the time to close holes; a computed feature is
/// computed anew once for each revision of its model that it is asked in. Iterators look their element up
/// again after changes, from where it stood last outwards.
class FeatureSequence : public Kelm::Generic::SequenceIntf {
 public:
  /// The sequence of a feature with a list, or of a computed one.
  static FeatureSequence& of(Element& aElement, Feature const& aFeature);

  Element& element() const noexcept { return fElement; }
  Feature const& shownFeature() const noexcept { return fFeature; }

  /// Replaces all values; repeated ones are dropped, the first kept, and what stays is not unlinked. Raises
  /// with nothing changed.
  virtual void assign(Deviant const& aDeviant, std::vector<Element*> const& aValues) = 0;

  int incRef() const override { return fElement.incRef(); }
  int decRef() const override { return fElement.decRef(); }
  int numRef() const override { return fElement.numRef(); }

  Kelm::Generic::Ref generic_at(Deviant const& aDeviant, int aIndex) const override;
  Kelm::Generic::Ref generic_front(Deviant const& aDeviant) const override;
  Kelm::Generic::Ref generic_back(Deviant const& aDeviant) const override;
  Kelm::Generic::IteratorPtr generic_begin(Deviant const& aDeviant) const override;
  Kelm::Generic::IteratorPtr generic_end(Deviant const& aDeviant) const override;
  void generic_clear(Deviant const& aDeviant) override;
  int generic_size(Deviant const& aDeviant) const override;
  void generic_insert(Deviant const& aDeviant, int aIndex, Kelm::Generic::Ref aValue) override;
  Kelm::Generic::IteratorPtr generic_insert(Deviant const& aDeviant,
                                            Kelm::Generic::IteratorIntf const* aPosition,
                                            Kelm::Generic::Ref aValue) override;
  Kelm::Generic::IteratorPtr generic_erase(Deviant const& aDeviant,
                                           Kelm::Generic::IteratorIntf const* aPosition) override;
  Kelm::Generic::IteratorPtr generic_erase(Deviant const& aDeviant, Kelm::Generic::IteratorIntf const* aFirst,
                                           Kelm::Generic::IteratorIntf const* aLast) override;
  void generic_erase(Deviant const& aDeviant, int aIndex) override;
  void generic_pop_back(Deviant const& aDeviant) override;
  void generic_pop_front(Deviant const& aDeviant) override;
  void generic_push_back(Deviant const& aDeviant, Kelm::Generic::Ref aValue) override;
  void generic_push_front(Deviant const& aDeviant, Kelm::Generic::Ref aValue) override;
  void generic_replace(Deviant const& aDeviant, int aIndex, Kelm::Generic::Ref aValue) override;
  bool generic_contains(Deviant const& aDeviant, Kelm::Generic::Ref aValue) const override;
  char const* generic_getVeskName(bool, bool, char const* aName) const override { return aName; }
  int generic_removeAll(Deviant const& aDeviant, Kelm::Generic::Ref aValue) override;
  std::uint64_t stamp(Deviant const& aDeviant) const override;
  int readBlock(Deviant const& aDeviant, int aIndex, int aCount, Kelm::Generic::Loan* aOut) const override;
  int indexOf(Deviant const& aDeviant, Kelm::Generic::Ref const& aValue, int aFrom) const override;
  /// Takes values at the end alone: anywhere else each comes and goes with what follows from that.
  bool splice(Deviant const& aDeviant, int aFirst, int aRemoved,
              std::vector<Kelm::Generic::Ref> const& aValues) override;
  /// As `assign`: what stays is not unlinked.
  void specialized_assign(Kelm::Generic::SequenceIntf const* aOther, Deviant const& aDeviant,
                          bool& aResult) override;
  /// No link is touched: containers, far ends and supersets stay as they are.
  void generic_rearrange(Deviant const& aDeviant, std::span<int const> aFrom,
                         std::span<int const> aTo) override;
  bool isUnique() const override { return true; }
  Element* shownElement() const override { return &fElement; }

 protected:
  class Iterator;
  static constexpr std::uint32_t kNowhere = UINT32_MAX;

  FeatureSequence(Element& aElement, Feature const& aFeature) noexcept
      : fElement(aElement), fFeature(aFeature) {}

  // Positions count from 0 and are in range; changes come with a writable variant.
  virtual std::uint32_t size(Deviant const& aDeviant) const = 0;
  virtual Element* at(Deviant const& aDeviant, std::uint32_t aPosition) const = 0;
  /// All values in order, if there are any; valid until the next change.
  virtual std::span<Element* const> all(Deviant const& aDeviant) const = 0;
  /// Position of a living element, or kNowhere.
  virtual std::uint32_t find(Deviant const& aDeviant, Element const& aValue) const = 0;
  virtual bool contains(Deviant const& aDeviant, Element const& aValue) const = 0;
  /// Raises when the feature can't take the value, which is not in it.
  virtual void check(Element const& aValue, Element const* aReplaced) const = 0;
  virtual void insert(Deviant const& aDeviant, std::uint32_t aPosition, Element& aValue) = 0;
  virtual void erase(Deviant const& aDeviant, Element& aValue) = 0;
  virtual void rearrange(Deviant const& aDeviant, std::span<int const> aFrom, std::span<int const> aTo) = 0;
  /// Differs whenever positions may have moved; never 0.
  virtual std::uint64_t changes(Deviant const& aDeviant) const = 0;

  // Failures name the caller's line.
  std::uint32_t checkedPosition(Deviant const& aDeviant, int aIndex, std::uint32_t aLimit,
                                int aLine = std::source_location::current().line()) const;
  /// Position of an iterator of this sequence; raises for others.
  std::uint32_t positionOf(Deviant const& aDeviant, Kelm::Generic::IteratorIntf const* aIterator) const;
  /// The element there with a count for the caller; null behind the last.
  Element* counted(Deviant const& aDeviant, std::uint32_t aPosition) const;
  Kelm::Generic::IteratorPtr iteratorAt(Deviant const& aDeviant, std::uint32_t aPosition) const;
  /// Adds the value unless it is there.
  Element& add(Deviant const& aDeviant, std::uint32_t aPosition, Kelm::Generic::Ref const& aValue);
  void checkChange(Deviant const& aDeviant, int aLine = std::source_location::current().line()) const;

  Element& fElement;
  Feature const& fFeature;
};

/// A sequence that is kept beside its element, in a chain.
class NotedSequence : public FeatureSequence {
 public:
  using FeatureSequence::FeatureSequence;

  /// The next of the same element.
  std::unique_ptr<NotedSequence> fNext;
};

/// The element that a value of a sequence names, or null for anything else.
Element* elementOf(Kelm::Generic::Loan const& aValue);
Element* elementOf(Kelm::ImmutableObject const& aObject);

}  // namespace umlmm::engine
