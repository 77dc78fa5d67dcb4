#pragma once

#include <array>

#include "frame/addTypedMethod.h"
#include "kelm/kernel/containers/sequence/SequenceRef.h"

/// The methods of all script classes of sequences and iterators, each written once. A policy tells what those
/// of values and those of elements differ in:
///
/// - `Value`, the type of the elements, and `Marshal`, by which they and the handles cross;
/// - `kOverriding`, the bits of a method that takes or gives an element or a position: the class may inherit
///   one of its name for more general elements, which it then replaces;
/// - `kRemoveAll`, which binds the method that removes a value;
/// - functions that scripts call with an index, which they count from 1 (`at`, `erase`, `insert`, `replace`),
///   or without a sequence (`makeWithModel`, `makeUniqueWithModel` and the same with `Immutable`).
namespace Kelm::mi {

/// Full names of a class and of the types in its signatures. Texts must live until the rows are added.
struct ContainerNames {
  char const* fSelf;
  char const* fElement;
  /// For a sequence.
  char const* fIterator = nullptr;
};

namespace detail {

/// A row whose first type is the receiver's. There are no argument names.
inline MethodRow memberRow(char const* aName, std::uint32_t aWord, char const* aResult, char const* aReceiver,
                           std::array<char const*, SignatureTexts::kMostArguments> aArguments, Bind aBind) {
  return {aName, aWord, Form::MemberFunction, {"", aResult, aReceiver, aArguments}, aBind};
}
/// A function that takes the receiver as an ordinary first argument.
inline MethodRow selfFirstRow(char const* aName, std::uint32_t aWord, char const* aResult,
                              std::array<char const*, SignatureTexts::kMostArguments> aArguments,
                              Bind aBind) {
  return {aName,
          aWord | vesk::factory::MethodFirstArgumentIsSelf,
          Form::FreeFunction,
          {"", aResult, nullptr, aArguments},
          aBind};
}
inline MethodRow staticRow(char const* aName, std::uint32_t aWord, char const* aResult, char const* aArgument,
                           Bind aBind) {
  return {aName, aWord, Form::FreeFunction, {"", aResult, nullptr, {aArgument}}, aBind};
}

inline constexpr char kLogical[] = "logical scalar";
inline constexpr char kInt32[] = "int32 scalar";
inline constexpr char kVoid[] = "void";

}  // namespace detail

/// The methods of sequences that can be changed.
template <class Policy>
std::array<MethodRow, 24> changingMethods(ContainerNames const& aNames) {
  using namespace detail;
  using T = typename Policy::Value;
  using M = typename Policy::Marshal;
  using S = Sequence<T>;
  using I = Iterator<T>;
  constexpr SelfCheck check = SelfCheck::Reference;
  constexpr std::uint32_t word = Policy::kOverriding;
  constexpr auto insertAt = static_cast<I (S::*)(I const&, T const&) const>(&S::insert);
  constexpr auto eraseAt = static_cast<I (S::*)(I const&) const>(&S::erase);
  constexpr auto eraseRange = static_cast<I (S::*)(I const&, I const&) const>(&S::erase);
  auto const [self, element, iterator] = aNames;
  return {{
      memberRow("append", word, kVoid, self, {element}, &bindMember<&S::push_back, S, check, M>),
      memberRow("clear", word, kVoid, self, {}, &bindMember<&S::clear, S, check, M>),
      memberRow("pop_back", word, kVoid, self, {}, &bindMember<&S::pop_back, S, check, M>),
      memberRow("pop_front", word, kVoid, self, {}, &bindMember<&S::pop_front, S, check, M>),
      memberRow("push_back", word, kVoid, self, {element}, &bindMember<&S::push_back, S, check, M>),
      memberRow("push_front", word, kVoid, self, {element}, &bindMember<&S::push_front, S, check, M>),
      memberRow("removeAll", word, kInt32, self, {element}, Policy::kRemoveAll),
      memberRow("begin", word, iterator, self, {}, &bindMember<&S::begin, S, check, M>),
      memberRow("end", word, iterator, self, {}, &bindMember<&S::end, S, check, M>),
      memberRow("erase", word, iterator, self, {iterator}, &bindMember<eraseAt, S, check, M>),
      memberRow("erase", word, iterator, self, {iterator, iterator}, &bindMember<eraseRange, S, check, M>),
      selfFirstRow("erase", word, kVoid, {self, kInt32}, &bindFunction<&Policy::erase, check, M>),
      memberRow("insert", word, iterator, self, {iterator, element}, &bindMember<insertAt, S, check, M>),
      selfFirstRow("insert", word, kVoid, {self, kInt32, element}, &bindFunction<&Policy::insert, check, M>),
      selfFirstRow("replace", word, kVoid, {self, kInt32, element},
                   &bindFunction<&Policy::replace, check, M>),
      memberRow("back", word, element, self, {}, &bindMember<&S::back, S, check, M>),
      memberRow("isEmpty", 0, kLogical, self, {}, &bindMember<&S::empty, S, check, M>),
      memberRow("front", word, element, self, {}, &bindMember<&S::front, S, check, M>),
      memberRow("size", 0, kInt32, self, {}, &bindMember<&S::size, S, check, M>),
      selfFirstRow("at", word, element, {self, kInt32}, &bindFunction<&Policy::at, check, M>),
      staticRow("make", word, self, "Kelm.ImmutableModel",
                &bindFunction<&Policy::makeWithImmutableModel, check, M>),
      staticRow("make", word, self, "Kelm.Model", &bindFunction<&Policy::makeWithModel, check, M>),
      staticRow("makeUnique", word, self, "Kelm.ImmutableModel",
                &bindFunction<&Policy::makeUniqueWithImmutableModel, check, M>),
      staticRow("makeUnique", word, self, "Kelm.Model",
                &bindFunction<&Policy::makeUniqueWithModel, check, M>),
  }};
}

/// The methods of read-only sequences; of a policy nothing but `at` is used among the functions.
template <class Policy>
std::array<MethodRow, 7> readingMethods(ContainerNames const& aNames) {
  using namespace detail;
  using M = typename Policy::Marshal;
  using S = ImmutableSequence<typename Policy::Value>;
  constexpr SelfCheck check = SelfCheck::Reference;
  constexpr std::uint32_t word = Policy::kOverriding;
  auto const [self, element, iterator] = aNames;
  return {{
      memberRow("begin", word, iterator, self, {}, &bindMember<&S::begin, S, check, M>),
      memberRow("end", word, iterator, self, {}, &bindMember<&S::end, S, check, M>),
      memberRow("back", word, element, self, {}, &bindMember<&S::back, S, check, M>),
      memberRow("isEmpty", 0, kLogical, self, {}, &bindMember<&S::empty, S, check, M>),
      memberRow("front", word, element, self, {}, &bindMember<&S::front, S, check, M>),
      memberRow("size", 0, kInt32, self, {}, &bindMember<&S::size, S, check, M>),
      selfFirstRow("at", word, element, {self, kInt32}, &bindFunction<&Policy::at, check, M>),
  }};
}

namespace detail {

/// Positions are compared; deviants take no part.
template <class I>
bool areEqual(I const& aLeft, I const& aRight) {
  return aLeft.get()->equal(aRight.get());
}
template <class I>
bool areUnequal(I const& aLeft, I const& aRight) {
  return !areEqual(aLeft, aRight);
}

}  // namespace detail

/// The methods of iterators. Of the policy they use the marshal, the type `Position` of the iterators, and
/// the functions `clone`, `getNext` and `getPrev`. All but `clone` go straight to the iterator object, so it
/// must be there.
template <class Policy>
std::array<MethodRow, 6> iteratorMethods(ContainerNames const& aNames) {
  using namespace detail;
  using M = typename Policy::Marshal;
  using I = typename Policy::Position;
  constexpr SelfCheck check = SelfCheck::Implementation;
  char const* const self = aNames.fSelf;
  return {{
      selfFirstRow("clone", 0, self, {self}, &bindFunction<&Policy::clone, SelfCheck::Reference, M>),
      memberRow("eq", 0, kLogical, self, {self}, &bindFunction<&areEqual<I>, check, M>),
      memberRow("ne", 0, kLogical, self, {self}, &bindFunction<&areUnequal<I>, check, M>),
      selfFirstRow("getNext", 0, kVoid, {self}, &bindFunction<&Policy::getNext, check, M>),
      selfFirstRow("getPrev", 0, kVoid, {self}, &bindFunction<&Policy::getPrev, check, M>),
      memberRow("item", 0, aNames.fElement, self, {}, &bindMember<&I::current, I, check, M>),
  }};
}

}  // namespace Kelm::mi
