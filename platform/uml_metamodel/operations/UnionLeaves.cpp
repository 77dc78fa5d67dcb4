#include "operations/UnionLeaves.h"

namespace umlmm::queries {

using engine::FeatureIndex;

std::span<FeatureIndex const> unionMembers(int aMetaclass, FeatureIndex aUnion) noexcept {
  for (engine::Union const& candidate : engine::kMetaclasses[aMetaclass].fUnions)
    if (candidate.fFeature == aUnion) return candidate.fMembers;
  return {};
}

std::vector<FeatureIndex> const* UnionLeaves::make(int aMetaclass) const {
  auto* const leaves = new std::vector<FeatureIndex>();
  for (FeatureIndex const member : unionMembers(aMetaclass, fUnion))
    if (engine::feature(member).fStorage != engine::Storage::Computed)
      leaves->push_back(engine::feature(member).fRoot);
  return leaves;
}

}  // namespace umlmm::queries
