#pragma once

#include <ranges>

#include "kelm/kernel/containers/sequence/SequenceCreator.h"

namespace Kelm::mi {

/// A new sequence of references to the objects in a range of interface pointers, null ones left out. It
/// counts them and does not follow what becomes of the range.
template <class T, std::ranges::input_range Range>
ImmutableSequence<T> snapshot(Range const& aObjects, Deviant aDeviant) {
  Sequence<Object> const result =
      SequenceCreator::create<Object>({.aDeviant = aDeviant, .aImpl = STD_VECTOR});
  for (auto const* const object : aObjects)
    if (object != nullptr) result.push_back(Object(object, aDeviant));
  return ImmutableSequence<T>(result.get(), aDeviant);
}

}  // namespace Kelm::mi
