#pragma once

#include <concepts>
#include <utility>

#include "kelm/Asserter.h"
#include "kelm/ObjectIntf.h"

namespace Kelm {

/// The two words of every reference: an interface pointer that owns one count, or null, and a deviant.
/// A null reference keeps its deviant. `Intf` must be complete where a handle is copied or destroyed.
///
/// Counts are plain, so a handle and its copies stay on the thread that uses the model. Of an element the
/// count keeps the memory, not its place in the model: who wants to know whether it is still there asks
/// `isvalid`. Members that need the object raise the null-reference failure without it.
template <class Intf>
class Handle {
 public:
  /// Named so that no metaclass has the name.
  using InterfaceType = Intf;
  /// Where `Interface` is looked up; the metamodel's reference classes name their own domain.
  using Domain = VisitationDomain;

  Handle() noexcept = default;
  Handle(Intf const* aImpl, Deviant aDeviant) : fImpl(aImpl), fDeviant(aDeviant) {
    if (isCounted()) fImpl->incRef();
  }
  Handle(Handle const& aOther) : Handle(aOther.fImpl, aOther.fDeviant) {}
  Handle(Handle&& aOther) noexcept : fImpl(std::exchange(aOther.fImpl, nullptr)), fDeviant(aOther.fDeviant) {}
  /// A reference to a derived interface is one to its base.
  template <class Derived>
  requires(!std::same_as<Derived, Intf> && std::derived_from<Derived, Intf>)
      Handle(Handle<Derived> const& aOther)
      : Handle(aOther.get(), aOther.getDeviant()) {}

  Handle& operator=(Handle aOther) noexcept {
    std::swap(fImpl, aOther.fImpl);
    std::swap(fDeviant, aOther.fDeviant);
    return *this;
  }
  // A count that breaks here has no one to report to: the process ends.
  ~Handle() {
    if (isCounted()) fImpl->decRef();
  }

  /// Not counted: good as long as the handle names the object.
  Intf const* get() const noexcept { return fImpl; }
  bool isNull() const noexcept { return fImpl == nullptr; }
  explicit operator bool() const noexcept { return fImpl != nullptr; }
  Deviant const& getDeviant() const noexcept { return fDeviant; }
  /// Neither the old nor the new deviant may be a value word.
  void setDeviant(Deviant const& aDeviant) const noexcept { fDeviant = aDeviant; }

  /// Gives the object up with the count on it, which is the caller's now; not for value words.
  Intf const* release() noexcept { return std::exchange(fImpl, nullptr); }

  /// Whether the reference names an object that exists in its variant; false for a null reference.
  bool isvalid() const { return fImpl != nullptr && fImpl->deviant_isValid(fDeviant); }

  /// The same object in the same variant; contents take no part.
  friend bool operator==(Handle const& aLeft, Handle const& aRight) noexcept {
    return aLeft.fImpl == aRight.fImpl && aLeft.fDeviant == aRight.fDeviant;
  }

 protected:
  template <class>
  friend class Borrowed;

  /// The objects of primitive values are immortal: their deviant is the value.
  bool isCounted() const noexcept { return fImpl != nullptr && !fDeviant.isValue(); }
  /// The interface of a non-null reference; raises the null-reference failure at `aSource` otherwise.
  Intf const* checked(char const* aSource, int aLine = std::source_location::current().line()) const {
    if (fImpl == nullptr) [[unlikely]]
      raiseNullReference(aSource, aLine);
    return fImpl;
  }
  /// The same for a change: also raises when the variant can't be written.
  Intf* writable(char const* aSource, int aLine = std::source_location::current().line()) const {
    checked(aSource, aLine);
    fDeviant.assertWritable(fImpl);
    return const_cast<Intf*>(fImpl);
  }

  Intf const* fImpl = nullptr;
  mutable Deviant fDeviant;
};

/// A reference that takes no count, for the length of a call in which someone else holds the object. Copies
/// of the handle count as usual; it must not be moved from.
template <class H>
class Borrowed {
  using Base = Handle<typename H::InterfaceType>;

 public:
  Borrowed(typename H::InterfaceType const* aImpl, Deviant aDeviant) : fHandle() {
    Base& base = fHandle;
    base.fImpl = aImpl;
    base.fDeviant = aDeviant;
  }
  Borrowed(Borrowed const&) = delete;
  Borrowed& operator=(Borrowed const&) = delete;
  ~Borrowed() {}

  H& operator*() noexcept { return fHandle; }
  H const* operator->() const noexcept { return &fHandle; }

 private:
  // Inside a union the handle is never destroyed.
  union {
    H fHandle;
  };
};

/// `aFrom` narrowed or widened to reference class `To` by asking the object: null if it has no such
/// interface. The deviant is kept.
template <class To, class Domain, class Intf>
To queryHandle(Handle<Intf> const& aFrom) {
  using Wanted = typename To::InterfaceType;
  return To(queryInterface<Wanted, Domain>(aFrom.get()), aFrom.getDeviant());
}

}  // namespace Kelm
