#pragma once

#include "kelm/kernel/containers/sequence/SequenceCreator.h"
#include "kelm/kernel/containers/sequence/list/ListQImplForPrimitives.h"
#include "kelm/kernel/containers/sequence/multi_index/MultiIndexImplForPrimitives.h"

/// The implementations themselves; slow to compile, so include SequenceCreator.h to make sequences. Those who
/// call these own what they get: it isn't counted.
namespace Kelm::detail {

template <class T>
Generic::SequenceIntf* SequenceImplementations<T>::makeList() {
  return new ListQImpl<T>();
}

template <class T>
Generic::SequenceIntf* SequenceImplementations<T>::makeList(std::vector<T> aValues) {
  return new ListQImpl<T>(std::move(aValues));
}

template <class T>
Generic::SequenceIntf* SequenceImplementations<T>::makeMultiIndex(bool aIsUnique) {
  using Key = boost::multi_index::identity<T>;
  if (aIsUnique) return new MultiIndexImpl<T, true, Key>();
  return new MultiIndexImpl<T, false, Key>();
}

}  // namespace Kelm::detail
