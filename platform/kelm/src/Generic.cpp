#include "kelm/Generic.h"

#include <algorithm>
#include <array>
#include <vector>

#include "asks.h"
#include "kelm/Asserter.h"
#include "kelm/Object.h"

namespace Kelm::Generic {

namespace {

constexpr char kSource[] = "kelm/kernel/containers/sequence/SequenceProxy";
constexpr int kBlock = 32;

bool areEqual(Ref const& aLeft, Loan const& aRight) {
  return aLeft.fHolder == aRight.fHolder ||
         (aLeft.fEquals != nullptr && aLeft.fEquals(aLeft.fHolder, aRight.fHolder));
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
  if (aResult || aOther == nullptr || aOther->valueType() != valueType()) return;
  int const size = generic_size(aDeviant);
  if (aOther->generic_size(aDeviant) != size) return;

  for (int i = 0; i < size; ++i)
    if (!areEqual(generic_at(aDeviant, i), aOther->generic_at(aDeviant, i))) return;
  aResult = true;
}

void SequenceIntf::specialized_assign(SequenceIntf const* aOther, Deviant const& aDeviant, bool& aResult) {
  if (aOther != this) {
    if (aOther != nullptr && aOther->valueType() != valueType())
      kelm::Error_IncorrectType(generic_getVeskName(false, false, "Sequence"));
    // Read first: the other sequence may be a view of this one.
    std::vector<Ref> values;
    for (int i = 0; aOther != nullptr && i < aOther->generic_size(aDeviant); ++i)
      values.push_back(aOther->generic_at(aDeviant, i));
    // At once where the sequence can: all or nothing, and a unique one keeps what stays, with its iterators.
    if (!splice(aDeviant, 0, generic_size(aDeviant), values)) {
      generic_clear(aDeviant);
      for (Ref& value : values) generic_push_back(aDeviant, std::move(value));
    }
  }
  aResult = true;
}

void SequenceIntf::generic_rearrange(Deviant const& aDeviant, std::span<int const> aFrom,
                                     std::span<int const> aTo) {
  auto const size = static_cast<std::size_t>(generic_size(aDeviant));
  checkPlaces(aFrom, size);
  checkPlaces(aTo, size);
  std::vector<Ref> values;
  for (std::size_t i = 0; i < size; ++i) values.push_back(generic_at(aDeviant, static_cast<int>(i)));
  std::vector<Ref> order(values);
  for (std::size_t i = 0; i < aTo.size(); ++i)
    order[static_cast<std::size_t>(aTo[i])] = values[static_cast<std::size_t>(aFrom[i])];
  generic_clear(aDeviant);
  for (Ref& value : order) generic_push_back(aDeviant, std::move(value));
}

int SequenceIntf::indexOf(Deviant const& aDeviant, Ref const& aValue, int aFrom) const {
  std::array<Loan, kBlock> block;
  int read = kBlock;
  for (int index = aFrom; read == kBlock; index += read) {
    read = readBlock(aDeviant, index, kBlock, block.data());
    for (int i = 0; i < read; ++i)
      if (areEqual(aValue, block[static_cast<std::size_t>(i)])) return index + i;
  }
  return -1;
}

void SequenceIntf::checkPlaces(std::span<int const> aPlaces, std::size_t aSize) {
  for (int const place : aPlaces) {
    if (place < 0) raiseFailure(words::kIndexNotPositive, kSource);
    if (static_cast<std::size_t>(place) >= aSize) raiseFailure(words::kIndexOutOfBounds, kSource);
  }
}
bool SequenceIntf::splice(Deviant const&, int, int, std::vector<Ref> const&) { return false; }
std::type_info const& SequenceIntf::valueType() const { return typeid(Object); }

int SequenceIntf::blockLength(int aIndex, int aCount, std::size_t aSize) {
  if (aIndex < 0) raiseFailure(words::kIndexNotPositive, kSource);
  return std::clamp(static_cast<int>(aSize) - aIndex, 0, std::max(aCount, 0));
}

}  // namespace Kelm::Generic
