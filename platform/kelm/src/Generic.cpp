#include "kelm/Generic.h"

#include <algorithm>
#include <array>
#include <vector>

#include "asks.h"
#include "kelm/Asserter.h"

namespace Kelm::Generic {

namespace {

constexpr char kSource[] = "kelm/kernel/containers/sequence/SequenceProxy";
constexpr int kBlock = 32;

bool equalValues(Ref const& aLeft, Ref const& aRight) {
  return aLeft.fHolder == aRight.fHolder ||
         (aLeft.fEquals != nullptr && aLeft.fEquals(aLeft.fHolder, aRight.fHolder));
}

std::vector<Ref> allValues(SequenceIntf const& aSequence, Deviant const& aDeviant) {
  std::vector<Ref> values(aSequence.generic_size(aDeviant));
  std::uint64_t stamp = 0;
  for (int done = 0; done < std::ssize(values);) {
    int const read = aSequence.readBlock(aDeviant, done, static_cast<int>(std::ssize(values)) - done,
                                         values.data() + done, stamp);
    if (read <= 0) raiseFailure(words::kIndexOutOfBounds, kSource);
    done += read;
  }
  return values;
}

}  // namespace

SequenceIntf::~SequenceIntf() = default;
IteratorIntf::~IteratorIntf() = default;

void* SequenceIntf::cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const {
  return asksFor<SequenceIntf>(aClassInfo) ? castAnswer(this) : ReferenceCountingIntf::cast(aClassInfo);
}

void* IteratorIntf::cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const {
  return asksFor<IteratorIntf>(aClassInfo) ? castAnswer(this) : ReferenceCountingIntf::cast(aClassInfo);
}

bool SequenceIntf::generic_empty(Deviant const& aDeviant) const { return generic_size(aDeviant) == 0; }

void SequenceIntf::specialized_equal(SequenceIntf const* aOther, Deviant const& aDeviant, bool& aResult) {
  aResult = aOther == this;
  if (aResult || aOther == nullptr) return;
  int const size = generic_size(aDeviant);
  if (aOther->generic_size(aDeviant) != size) return;

  std::array<Ref, kBlock> mine;
  std::array<Ref, kBlock> theirs;
  std::uint64_t myStamp = 0;
  std::uint64_t theirStamp = 0;
  for (int done = 0; done < size;) {
    int const wanted = std::min(kBlock, size - done);
    int const read = readBlock(aDeviant, done, wanted, mine.data(), myStamp);
    if (read <= 0 || aOther->readBlock(aDeviant, done, read, theirs.data(), theirStamp) != read) return;
    if (!std::equal(mine.begin(), mine.begin() + read, theirs.begin(), equalValues)) return;
    done += read;
  }
  aResult = true;
}

void SequenceIntf::specialized_assign(SequenceIntf const* aOther, Deviant const& aDeviant, bool& aResult) {
  if (aOther != this) {
    // Read first: the other sequence may be a view of this one.
    std::vector<Ref> values;
    if (aOther != nullptr) values = allValues(*aOther, aDeviant);
    generic_clear(aDeviant);
    for (Ref& value : values) generic_push_back(aDeviant, std::move(value));
  }
  aResult = true;
}

int SequenceIntf::readBlock(Deviant const& aDeviant, int aIndex, int aCount, Ref* aOut,
                            std::uint64_t& aStamp) const {
  int const size = generic_size(aDeviant);
  std::uint64_t const stamp = static_cast<std::uint64_t>(size) + 1;
  if (aIndex < 0) raiseFailure(words::kIndexNotPositive, kSource);
  if (aStamp != 0 && aStamp != stamp) raiseFailure(words::kIndexOutOfBounds, kSource);
  aStamp = stamp;
  int const count = std::clamp(size - aIndex, 0, std::max(aCount, 0));
  for (int i = 0; i < count; ++i) aOut[i] = generic_at(aDeviant, aIndex + i);
  return count;
}

}  // namespace Kelm::Generic
