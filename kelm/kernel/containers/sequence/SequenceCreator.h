#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "kelm/Asserter.h"
#include "kelm/kernel/containers/sequence/SequenceProxy.h"
#include "kelm/kernel/containers/sequence/SequenceRef.h"
#include "kelm/kernel/containers/sources.h"
#include "lum/visibility.h"

namespace Kelm {

/// A list shares its values with copies and finds one in linear time; a multi-index keeps each value in a
/// block of its own, can do without duplicates, and finds one in logarithmic time. A fixed width, so that a
/// number without a name is a value too and can be refused.
enum SequenceImpl : std::uint32_t { STD_VECTOR = 0, MULTI_INDEX = 1 };

/// What kind of sequence is wanted.
struct SequenceRequest {
  /// Becomes the handle's; references that are put in keep their own.
  Deviant aDeviant;
  SequenceImpl aImpl = MULTI_INDEX;
  /// The sequence refuses duplicates, silently; not for STD_VECTOR.
  bool aIsUnique = false;
  /// Wrapped in a counted proxy that owns it. A sequence that is not counted belongs to the caller, who
  /// deletes it when no handle and no iterator of it is left.
  bool aRefCounted = true;
};

namespace detail {

/// Makes implementations for values T, empty or filled at once. Defined in SequenceImplementations.h, which
/// is only for the units that instantiate it: one for each value type and one for object references.
template <class T>
struct SequenceImplementations {
  static Generic::SequenceIntf* makeList();
  static Generic::SequenceIntf* makeList(std::vector<T> aValues);
  static Generic::SequenceIntf* makeMultiIndex(bool aIsUnique);
};

}  // namespace detail

/// The one place where free-standing sequences come into being.
class SequenceCreator {
 public:
  /// A handle on a new, empty sequence. Raises for what the request can't mean: a list without duplicates, an
  /// implementation that there is none of.
  template <class T>
  static Sequence<T> create(SequenceRequest const& aRequest) {
    using Stored = typename Generic::RefAccess<T>::Stored;
    std::unique_ptr<Generic::SequenceIntf> implementation(make<Stored>(aRequest));
    if (implementation == nullptr) raiseFailure(words::kSequenceNotCreated, sources::kSequenceCreator);
    if (!aRequest.aRefCounted) return Sequence<T>(implementation.release(), aRequest.aDeviant);
    Sequence<T> const result(new GenericReferenceCountingSequenceProxy(implementation.get()),
                             aRequest.aDeviant);
    static_cast<void>(implementation.release());
    return result;
  }

 private:
  template <class Stored>
  static Generic::SequenceIntf* make(SequenceRequest const& aRequest) {
    using Implementations = detail::SequenceImplementations<Stored>;
    switch (aRequest.aImpl) {
      case STD_VECTOR:
        if (aRequest.aIsUnique) raiseFailure(words::kListCannotBeUnique, sources::kSequenceCreator);
        return Implementations::makeList();
      case MULTI_INDEX:
        return Implementations::makeMultiIndex(aRequest.aIsUnique);
      default:
        raiseFailure(words::kUnknownImplementation, sources::kSequenceCreator);
    }
  }
};

}  // namespace Kelm
