#pragma once

#include <memory>
#include <string>

#include "kelm/String.h"
#include "kelm/kernel/containers/sequence/SequenceImplementations.h"

/// Value types of the tests.
namespace sequence_suite {

struct Number {
  int fValue = 0;
  int value() const { return fValue; }
  static constexpr char const* kName = "Number";
};

/// A string as the metamodel's: a kernel string with a name.
struct Text : Kelm::String {
  using String::String;
  static constexpr char const* kName = "Text";
};

/// Copies count and can be told to fail; moves may throw as well, being copies.
struct Fragile {
  explicit Fragile(int aValue) : fValue(aValue) { ++sAlive; }
  Fragile(Fragile const& aOther) : fValue(aOther.fValue) {
    copy();
    ++sAlive;
  }
  Fragile& operator=(Fragile const& aOther) {
    copy();
    fValue = aOther.fValue;
    return *this;
  }
  ~Fragile() { --sAlive; }
  int value() const { return fValue; }

  static inline int sAlive = 0;
  /// The copy that fails, counted from 1; 0 for none.
  static inline int sFailAt = 0;

  int fValue;

 private:
  static void copy() {
    if (sFailAt > 0 && --sFailAt == 0) throw std::runtime_error("copy");
  }
};

/// The same with safe moves.
struct Movable : Fragile {
  using Fragile::Fragile;
  Movable(Movable const&) = default;
  Movable(Movable&& aOther) noexcept : Fragile(aOther.fValue) {}
  Movable& operator=(Movable const&) = default;
  Movable& operator=(Movable&& aOther) noexcept {
    fValue = aOther.fValue;
    return *this;
  }
};

/// An object that counts its references and never dies by them.
class Thing : public Kelm::NSInterface::ObjectIntf {
 public:
  int incRef() const override { return ++fCount; }
  int decRef() const override { return --fCount; }
  int numRef() const override { return fCount; }
  char const* getVeskName(bool) const override { return "test.Thing"; }
  bool deviant_isValid(Kelm::Deviant) const override { return true; }
  mutable int fCount = 0;
};

template <class T>
using Unique = Kelm::MultiIndexImpl<T, true, boost::multi_index::identity<T>>;
template <class T>
using Repeating = Kelm::MultiIndexImpl<T, false, boost::multi_index::identity<T>>;

/// A counted handle on a new implementation.
template <class T, class Implementation>
Kelm::Sequence<T> counted(std::unique_ptr<Implementation> aImplementation) {
  return {new Kelm::GenericReferenceCountingSequenceProxy(aImplementation.release()), Kelm::Deviant()};
}
template <class T, class Implementation>
Kelm::Sequence<T> counted() {
  return counted<T>(std::make_unique<Implementation>());
}

}  // namespace sequence_suite
