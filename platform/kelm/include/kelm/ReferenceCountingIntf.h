#pragma once

#include <atomic>
#include <vector>

#include "kelm/fwd.h"
#include "kelm/tags.h"
#include "lum/visibility.h"

namespace Kelm {

/// The path that `getVisitMethod` takes; nothing else uses it.
template <class T>
using LightVector = std::vector<T>;

/// Nothing of its own: the root that libraries of the binding expect to link against.
class UMLMM_API Cleanup {
 protected:
  Cleanup() noexcept = default;
  ~Cleanup() = default;
};

/// Base of everything that can be given an id. Counting is plain, not atomic: an object stays with its model
/// on one thread at a time; those that all models share are immortal. Counts are taken through read-only
/// handles too, so the counting operations are const.
class UMLMM_API ReferenceCountingIntf : public Cleanup {
 public:
  ReferenceCountingIntf() noexcept = default;
  ReferenceCountingIntf(ReferenceCountingIntf const&) = delete;
  ReferenceCountingIntf& operator=(ReferenceCountingIntf const&) = delete;

  /// Retracts the object's ids when it has any.
  virtual ~ReferenceCountingIntf();
  /// Adds a count; answers the new one (0 for objects that nobody counts).
  virtual int incRef() const;
  /// Gives a count back; the last one deletes the object. May throw on a broken count.
  virtual int decRef() const;
  /// The counts now; 0 for objects that nobody counts.
  virtual int numRef() const;
  // No object of the house has an answer to these two: null.
  virtual void const* getListOfReferences() const;
  virtual void const* getVisitMethod(LightVector<LightVector<unsigned long>> const& aPath) const;
  /// The object seen as the interface that the tags name, or null. It takes no count: the answer is good as
  /// long as the object.
  virtual void* cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const;

 private:
  friend class DeviantRegistry;
  /// Atomic for the sake of immortal objects, which get ids from any thread and keep them.
  mutable std::atomic<IdRecord*> fIds = nullptr;

 public:
  /// Set once the object has an id in the registry.
  mutable bool fIsRegistered = false;
};

/// `aObject` seen as `Interface`, or null. Null-safe; takes no count.
template <class Interface, class Domain = VisitationDomain>
Interface* queryInterface(ReferenceCountingIntf const* aObject) {
  return aObject == nullptr ? nullptr : static_cast<Interface*>(aObject->cast(tagPair<Interface, Domain>()));
}

}  // namespace Kelm
