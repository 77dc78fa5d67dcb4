#include "queries/UnionLeaves.h"

#include <memory>

namespace umlmm::queries {

using engine::FeatureIndex;

std::span<FeatureIndex const> unionMembers(int aMetaclass, FeatureIndex aUnion) noexcept {
  for (engine::Union const& candidate : engine::kMetaclasses[aMetaclass].fUnions)
    if (candidate.fFeature == aUnion) return candidate.fMembers;
  return {};
}

std::vector<FeatureIndex> const& UnionLeaves::make(int aMetaclass) {
  auto leaves = std::make_unique<std::vector<FeatureIndex>>();
  for (FeatureIndex const member : unionMembers(aMetaclass, fUnion))
    if (engine::feature(member).fStorage != engine::Storage::Computed)
      leaves->push_back(engine::feature(member).fRoot);
  std::vector<FeatureIndex> const* known = nullptr;
  auto& place = fLeaves[static_cast<std::size_t>(aMetaclass)];
  if (!place.compare_exchange_strong(known, leaves.get(), std::memory_order_acq_rel)) return *known;
  return *leaves.release();
}

}  // namespace umlmm::queries
