#pragma once

/// The places that failures of the sequence kernel name, and the words that only it uses. Both are part of
/// the texts that scripts see.
namespace Kelm::sources {

inline constexpr char kSequenceRef[] = "kelm/kernel/containers/sequence/SequenceRef";
inline constexpr char kSequenceProxy[] = "kelm/kernel/containers/sequence/SequenceProxy";
inline constexpr char kSequenceCreator[] = "kelm/kernel/containers/sequence/SequenceCreator";
inline constexpr char kList[] = "kelm/kernel/containers/sequence/list/ListQImplForPrimitives";
inline constexpr char kMultiIndex[] =
    "kelm/kernel/containers/sequence/multi_index/MultiIndexImplForPrimitives";
inline constexpr char kIterator[] = "kelm/kernel/containers/iterator/Iterator";

}  // namespace Kelm::sources

namespace Kelm::words {

inline constexpr char kSequenceNotCreated[] = "sequence not created";
inline constexpr char kListCannotBeUnique[] = "cannot use STD_VECTOR and aIsUnique together";
inline constexpr char kUnknownImplementation[] = "unknown sequence implementation requested";

}  // namespace Kelm::words
