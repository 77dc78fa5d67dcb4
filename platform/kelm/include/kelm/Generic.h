#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <typeinfo>
#include <utility>
#include <vector>

#include "kelm/Deviant.h"
#include "kelm/ReferenceCountingIntf.h"

/// The type-erased sequence, iterator and value: what a library or host uses that does not know the value
/// type. Who knows it uses the handles of kelm/kernel/containers/sequence/SequenceRef.h.
namespace Kelm::Generic {

/// A value that a sequence lends: it holds no count and is good until something else is asked of the sequence
/// or any code runs that could. `fHolder` points at the value. An element reference is the element itself in
/// `fHolder` with its deviant in `fReserved` (see RefAccess in kelm/kernel/containers/Ref.h).
struct Loan {
  void* fHolder;
  std::uintptr_t fReserved;
};

/// A value behind a pointer, passed by value: as lent, but counted in its holder, in which it stands first.
/// An element reference counts the element, so that it needs no allocation. The count is plain: a Ref and its
/// copies stay on one thread.
class Ref : public Loan {
 public:
  /// Adds or gives back one count; the last one ends the holder.
  using Manager = void (*)(void* aHolder, bool aIncrement);
  /// Compares two holders of the same value type.
  using Equals = bool (*)(void const* aLeft, void const* aRight);

  Ref() noexcept : Loan{nullptr, 0} {}
  /// Takes over a holder whose count stands at 0 and counts it.
  Ref(void* aHolder, std::uintptr_t aReserved, Manager aManager, Equals aEquals)
      : Loan{aHolder, aReserved}, fManager(aManager), fEquals(aEquals) {
    if (aManager != nullptr) aManager(aHolder, true);
  }
  // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): the analyzer does not follow the base
  Ref(Ref const& aOther) : Ref(aOther.fHolder, aOther.fReserved, aOther.fManager, aOther.fEquals) {}
  Ref(Ref&& aOther) noexcept
      : Loan{std::exchange(aOther.fHolder, nullptr), aOther.fReserved},
        fManager(std::exchange(aOther.fManager, nullptr)),
        fEquals(aOther.fEquals) {}
  Ref& operator=(Ref aOther) noexcept {
    std::swap(fHolder, aOther.fHolder);
    std::swap(fReserved, aOther.fReserved);
    std::swap(fManager, aOther.fManager);
    std::swap(fEquals, aOther.fEquals);
    return *this;
  }
  ~Ref() {
    // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): likewise
    if (fManager != nullptr) fManager(fHolder, false);
  }

  Manager fManager = nullptr;
  Equals fEquals = nullptr;
};

static_assert(sizeof(Ref) == 4 * sizeof(void*));

/// Deletes the iterator unless it was released.
using IteratorPtr = std::unique_ptr<IteratorIntf>;

/// A sequence of values of one type, in order. It is used by one thread at a time, with the model it shows.
///
/// *Kinds.* A live sequence (`isLive`) shows a feature of an element: it is counted with the element and
/// refuses a deviant in which the element does not exist, or may not be changed. All others are
/// free-standing; what they hold is their own, and the deviant takes no part.
///
/// *Positions* count from 0. A negative index raises "sequence index must be positive", one past the end
/// "sequence index out of bounds"; front, back and the pops of an empty sequence raise "sequence is empty".
/// A position given as an iterator must come from this sequence and stand at what is still there: null raises
/// the null-reference failure, any other one "sequence index out of bounds".
///
/// *Values* given must have been made for `valueType()`, which nothing here checks. A unique sequence leaves
/// out a value that it holds already; that is no failure, and it stays as it is.
///
/// *Failure.* An operation that raises, for want of memory too, leaves contents and iterators as they were.
///
/// *Iterators* given belong to the caller. Changes move them along with their values; one whose value went
/// raises from then on. They keep a counted sequence alive; one that is not counted must outlive them.
class UMLMM_API SequenceIntf : public ReferenceCountingIntf {
 public:
  ~SequenceIntf() override;
  void* cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const override;

  /// A copy of the value; values other than references to objects take memory for it.
  virtual Ref generic_at(Deviant const&, int aIndex) const = 0;
  virtual Ref generic_front(Deviant const&) const = 0;
  virtual Ref generic_back(Deviant const&) const = 0;
  virtual IteratorPtr generic_begin(Deviant const&) const = 0;
  virtual IteratorPtr generic_end(Deviant const&) const = 0;
  virtual void generic_clear(Deviant const&) = 0;
  virtual int generic_size(Deviant const&) const = 0;
  virtual bool generic_empty(Deviant const&) const;
  /// Puts the value before the index; the size itself appends. Takes time for each value behind it.
  virtual void generic_insert(Deviant const&, int aIndex, Ref aValue) = 0;
  /// The same before an iterator. Answers where the value stands now, or the equal one that kept it out.
  virtual IteratorPtr generic_insert(Deviant const&, IteratorIntf const* aPosition, Ref aValue) = 0;
  /// Answers the position of what followed; the end raises.
  virtual IteratorPtr generic_erase(Deviant const&, IteratorIntf const* aPosition) = 0;
  /// Erases from `aFirst` to before `aLast`, which must not stand before it.
  virtual IteratorPtr generic_erase(Deviant const&, IteratorIntf const* aFirst,
                                    IteratorIntf const* aLast) = 0;
  virtual void generic_erase(Deviant const&, int aIndex) = 0;
  virtual void generic_pop_back(Deviant const&) = 0;
  virtual void generic_pop_front(Deviant const&) = 0;
  virtual void generic_push_back(Deviant const&, Ref aValue) = 0;
  virtual void generic_push_front(Deviant const&, Ref aValue) = 0;
  /// A unique sequence that holds the value, at whatever index, stays as it is.
  virtual void generic_replace(Deviant const&, int aIndex, Ref aValue) = 0;
  /// Linear in lists of values and in computed features; elsewhere, over many calls, logarithmic at most.
  virtual bool generic_contains(Deviant const&, Ref aValue) const = 0;
  /// Full name of the script class that shows the sequence, the read-only one if so asked; `aName` where the
  /// sequence knows none. Lives as long as the process, or as `aName`.
  virtual char const* generic_getVeskName(bool aImmutable, bool aImmutableElements,
                                          char const* aName) const = 0;
  /// Answers how many values went.
  virtual int generic_removeAll(Deviant const&, Ref aValue) = 0;
  /// Whether `aOther` holds equal values in the same order, into `aResult`. Values of another type are none.
  virtual void specialized_equal(SequenceIntf const* aOther, Deviant const&, bool& aResult);
  /// Replaces the contents by those of `aOther`, which may show the same values, or by none for null;
  /// `aResult` becomes true. Raises the incorrect-type failure, with nothing changed, for values of another
  /// type. All or nothing for a sequence that takes `splice`; one that is unique keeps the values that stay.
  virtual void specialized_assign(SequenceIntf const* aOther, Deviant const&, bool& aResult);

  /// The state of the contents: another one whenever values came, went or moved; never 0.
  virtual std::uint64_t stamp(Deviant const&) const = 0;
  /// Lends up to `aCount` values from `aIndex` on and answers how many, fewer only at the end: iteration in
  /// blocks, without an iterator object and without counts. Raises for a negative index.
  virtual int readBlock(Deviant const&, int aIndex, int aCount, Loan* aOut) const = 0;
  /// Index of the first value from `aFrom` on, which must not be negative, that equals `aValue`, or -1.
  /// References are equal that name the same object, in whatever variant.
  virtual int indexOf(Deviant const&, Ref const& aValue, int aFrom) const;
  /// Puts `aValues` in the place of the `aRemoved` values from `aFirst` on, all of them or, when it raises,
  /// none; takes time for each value of the sequence once. A unique sequence leaves out what it holds
  /// already. Answers false, with nothing changed, for a sequence that is changed value by value only, as
  /// this one does.
  virtual bool splice(Deviant const&, int aFirst, int aRemoved, std::vector<Ref> const& aValues);

  /// Gives values other places: the one at `aFrom[i]` comes to `aTo[i]`. Both must name the same indices,
  /// each once. No value comes or goes, and iterators stay with their values where they do so anyway. Raises,
  /// with nothing changed, for an index outside.
  virtual void generic_rearrange(Deviant const&, std::span<int const> aFrom, std::span<int const> aTo);
  /// Whether the sequence refuses a value that it holds.
  virtual bool isUnique() const { return false; }
  /// The element whose feature the sequence shows, so that a change of it is one of the element; null for one
  /// that has values of its own.
  virtual NSInterface::ModelElementIntf* shownElement() const { return nullptr; }
  bool isLive() const { return shownElement() != nullptr; }
  /// The type of the values as they are stored, the same in all libraries: a holder of one type must not be
  /// read as another. References to objects, as Kelm::Object, unless a sequence says otherwise.
  virtual std::type_info const& valueType() const;

 protected:
  /// Raises unless all indices are those of a sequence that has `aSize` values.
  static void checkPlaces(std::span<int const> aPlaces, std::size_t aSize);
  /// How many values `readBlock` lends of a sequence that has `aSize`.
  static int blockLength(int aIndex, int aCount, std::size_t aSize);
};

/// A position in a sequence, at a value or behind the last. Whoever shares one sees it move, so the handles
/// of kelm/kernel/containers/iterator/Iterator.h clone it when they are copied.
class UMLMM_API IteratorIntf : public ReferenceCountingIntf {
 public:
  ~IteratorIntf() override;
  void* cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const override;

  // All three raise "sequence index out of bounds" for a position that is none: the end has no value and no
  // next one, the beginning no previous one, and what went has neither.
  virtual Ref current(Deviant const&) const = 0;
  virtual void next(Deviant const&) = 0;
  virtual void previous(Deviant const&) = 0;
  /// At the same position, without a count of its own yet; it keeps the sequence alive as this one does.
  virtual IteratorPtr clone() const = 0;
  /// Whether `aOther` stands at the same place of the same sequence; false for null.
  virtual bool equal(IteratorIntf const* aOther) const = 0;
};

}  // namespace Kelm::Generic
