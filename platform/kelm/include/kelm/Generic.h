#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "kelm/Deviant.h"
#include "kelm/ReferenceCountingIntf.h"

/// The type-erased sequence, iterator and value. All indices count from 0.
namespace Kelm::Generic {

/// A value behind a pointer, passed by value. `fHolder` points at the value, which stands first in its
/// holder. An element reference travels as the element itself in `fHolder` with its deviant in `fReserved`,
/// so that it needs no allocation (see RefAccess in kelm/kernel/containers/sequence/Ref.h).
class Ref {
 public:
  using Manager = void (*)(void* aHolder, bool aIncrement);
  using Equals = bool (*)(void const* aLeft, void const* aRight);

  Ref() noexcept = default;
  /// Takes over a holder whose count stands at 0 and counts it.
  Ref(void* aHolder, std::uintptr_t aReserved, Manager aManager, Equals aEquals)
      : fHolder(aHolder), fReserved(aReserved), fManager(aManager), fEquals(aEquals) {
    if (fManager != nullptr) fManager(fHolder, true);
  }
  Ref(Ref const& aOther) : Ref(aOther.fHolder, aOther.fReserved, aOther.fManager, aOther.fEquals) {}
  Ref(Ref&& aOther) noexcept
      : fHolder(std::exchange(aOther.fHolder, nullptr)),
        fReserved(aOther.fReserved),
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
    if (fManager != nullptr) fManager(fHolder, false);
  }

  void* fHolder = nullptr;
  std::uintptr_t fReserved = 0;
  Manager fManager = nullptr;
  Equals fEquals = nullptr;
};

static_assert(sizeof(Ref) == 4 * sizeof(void*));

/// Deletes the iterator unless it was released.
using IteratorPtr = std::unique_ptr<IteratorIntf>;

class UMLMM_API SequenceIntf : public ReferenceCountingIntf {
 public:
  ~SequenceIntf() override;
  void* cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const override;

  virtual Ref generic_at(Deviant const&, int aIndex) const = 0;
  virtual Ref generic_front(Deviant const&) const = 0;
  virtual Ref generic_back(Deviant const&) const = 0;
  virtual IteratorPtr generic_begin(Deviant const&) const = 0;
  virtual IteratorPtr generic_end(Deviant const&) const = 0;
  virtual void generic_clear(Deviant const&) = 0;
  virtual int generic_size(Deviant const&) const = 0;
  virtual bool generic_empty(Deviant const&) const;
  virtual void generic_insert(Deviant const&, int aIndex, Ref aValue) = 0;
  virtual IteratorPtr generic_insert(Deviant const&, IteratorIntf const* aPosition, Ref aValue) = 0;
  virtual IteratorPtr generic_erase(Deviant const&, IteratorIntf const* aPosition) = 0;
  virtual IteratorPtr generic_erase(Deviant const&, IteratorIntf const* aFirst,
                                    IteratorIntf const* aLast) = 0;
  virtual void generic_erase(Deviant const&, int aIndex) = 0;
  virtual void generic_pop_back(Deviant const&) = 0;
  virtual void generic_pop_front(Deviant const&) = 0;
  virtual void generic_push_back(Deviant const&, Ref aValue) = 0;
  virtual void generic_push_front(Deviant const&, Ref aValue) = 0;
  virtual void generic_replace(Deviant const&, int aIndex, Ref aValue) = 0;
  virtual bool generic_contains(Deviant const&, Ref aValue) const = 0;
  virtual char const* generic_getVeskName(bool aImmutable, bool aImmutableElements,
                                          char const* aName) const = 0;
  /// Answers how many values went.
  virtual int generic_removeAll(Deviant const&, Ref aValue) = 0;
  /// Whether `aOther` holds equal values in the same order, into `aResult`.
  virtual void specialized_equal(SequenceIntf const* aOther, Deviant const&, bool& aResult);
  /// Replaces the contents by those of `aOther`; `aResult` becomes true.
  virtual void specialized_assign(SequenceIntf const* aOther, Deviant const&, bool& aResult);

  /// Copies up to `aCount` values from `aIndex` on into `aOut` and answers how many: iteration in blocks,
  /// without an iterator object. `aStamp` is 0 at the first call and comes back changed; a call with the
  /// stamp of a sequence that changed in between raises.
  virtual int readBlock(Deviant const&, int aIndex, int aCount, Ref* aOut, std::uint64_t& aStamp) const;
};

class UMLMM_API IteratorIntf : public ReferenceCountingIntf {
 public:
  ~IteratorIntf() override;
  void* cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const override;

  virtual Ref current(Deviant const&) const = 0;
  virtual void next(Deviant const&) = 0;
  virtual void previous(Deviant const&) = 0;
  virtual IteratorPtr clone() const = 0;
  virtual bool equal(IteratorIntf const* aOther) const = 0;
};

}  // namespace Kelm::Generic
