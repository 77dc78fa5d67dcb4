#pragma once

#include <array>
#include <cstdint>

#include "RefClass.h"
#include "vesk/VeskClass.h"

namespace Kelm::mi {

/// The types in the signatures of sequence and iterator methods, settled by the class that has the method.
enum class RefType : std::uint8_t {
  None,
  Void,
  Logical,
  Int32,
  Self,
  Element,
  Iterator,
  Model,
  ImmutableModel
};

/// How a method is declared: with a receiver, as a function that takes the receiver as its first argument, or
/// without one.
enum class RefForm : std::uint8_t { Member, SelfFirst, Static };

/// One call: what the host gave, and what is given back. Slots and count as in vesk::VeskMethodInfo::invoke.
struct RefCall {
  RefClass const& fClass;
  vesk::VeskValue const* fArguments;
  vesk::VeskValue* fResults;
  int& fResultCount;

  void give(vesk::VeskValue aResult) const {
    fResults[0] = aResult;
    if (fResultCount == 0) fResultCount = 1;
  }
};

/// A row of the method list of a kind of class. Any sequence class may have any of them.
struct RefRow {
  char const* fName;
  RefForm fForm;
  /// The method stands for all methods of its name further up: it takes or gives what they don't.
  bool fOverrides;
  RefType fResult;
  std::array<RefType, 3> fParameters;
  void (*fRun)(RefCall const& aCall);
};

/// Gives a class the method of a row. `aInfo` must live as long as the class.
void addRefMethod(vesk::VeskClass* aClass, RefRow const& aRow, RefClass const& aInfo);

}  // namespace Kelm::mi
