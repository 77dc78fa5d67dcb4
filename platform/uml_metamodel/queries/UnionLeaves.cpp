#include "queries/UnionLeaves.h"

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <new>

namespace umlmm::queries {

using engine::FeatureIndex;

namespace {

constinit std::atomic<UnionLeaves*> sFirst = nullptr;

/// Of metaclasses that extensions have added, by union.
struct Added {
  std::mutex fMutex;
  std::map<std::pair<FeatureIndex, int>, std::vector<FeatureIndex>> fLeaves;
};
/// Never destroyed, and made without memory that could fail.
Added& added() noexcept {
  alignas(Added) static std::byte sMemory[sizeof(Added)];
  static Added& all = *new (sMemory) Added();
  return all;
}

}  // namespace

std::span<FeatureIndex const> unionMembers(int aMetaclass, FeatureIndex aUnion) noexcept {
  for (engine::Union const& candidate : engine::metaclass(aMetaclass).fUnions)
    if (candidate.fFeature == aUnion) return candidate.fMembers;
  return {};
}

std::vector<FeatureIndex> UnionLeaves::list(int aMetaclass) const {
  std::vector<FeatureIndex> leaves;
  for (FeatureIndex const member : unionMembers(aMetaclass, fUnion))
    if (engine::feature(member).fStorage != engine::Storage::Computed)
      leaves.push_back(engine::feature(member).fRoot);
  return leaves;
}

std::span<FeatureIndex const> UnionLeaves::ofAdded(int aMetaclass) {
  std::lock_guard const lock(added().fMutex);
  auto& leaves = added().fLeaves;
  auto known = leaves.find({fUnion, aMetaclass});
  // Listed first: an entry is one that is right, also where memory fails.
  if (known == leaves.end()) known = leaves.emplace(std::pair(fUnion, aMetaclass), list(aMetaclass)).first;
  return known->second;
}

void UnionLeaves::forgetAll() noexcept {
  added().fLeaves.clear();
  for (UnionLeaves* leaves = sFirst; leaves != nullptr; leaves = leaves->fNext)
    for (auto& known : leaves->fLeaves) delete known.exchange(nullptr);
}

std::vector<FeatureIndex> const& UnionLeaves::make(int aMetaclass) {
  if (!fIsListed.exchange(true)) {
    fNext = sFirst;
    while (!sFirst.compare_exchange_weak(fNext, this)) {
    }
  }
  auto leaves = std::make_unique<std::vector<FeatureIndex>>(list(aMetaclass));
  std::vector<FeatureIndex> const* known = nullptr;
  auto& place = fLeaves[static_cast<std::size_t>(aMetaclass)];
  if (!place.compare_exchange_strong(known, leaves.get(), std::memory_order_acq_rel)) return *known;
  return *leaves.release();
}

}  // namespace umlmm::queries
