#pragma once

#include <array>
#include <atomic>
#include <span>
#include <vector>

#include "engine/Feature.h"

namespace umlmm::queries {

/// The stored features at the bottom of a derived union, by metaclass, in the order in which the union lists
/// their values: what a walk over many elements reads in place of the union itself. Made for a metaclass when
/// first asked, by whichever thread; when memory fails, again when asked again. Members that are computed are
/// not among them. Instances live as long as the process.
class UnionLeaves {
 public:
  constexpr explicit UnionLeaves(engine::FeatureIndex aUnion) noexcept : fUnion(aUnion) {}

  /// Roots; none for a metaclass without the union. Good until `forgetAll`.
  std::span<engine::FeatureIndex const> of(int aMetaclass) {
    if (aMetaclass >= engine::kMetaclassCount) [[unlikely]]
      return ofAdded(aMetaclass);
    auto const* const leaves = fLeaves[static_cast<std::size_t>(aMetaclass)].load(std::memory_order_acquire);
    return leaves == nullptr ? make(aMetaclass) : *leaves;
  }

  /// All are made again when asked: an extension has changed what unions list. Nobody reads one meanwhile.
  static void forgetAll() noexcept;

 private:
  std::vector<engine::FeatureIndex> list(int aMetaclass) const;
  std::vector<engine::FeatureIndex> const& make(int aMetaclass);
  std::span<engine::FeatureIndex const> ofAdded(int aMetaclass);

  engine::FeatureIndex fUnion;
  /// The next of those that have made any.
  UnionLeaves* fNext = nullptr;
  std::atomic<bool> fIsListed = false;
  // Kept for the length of the process.
  std::array<std::atomic<std::vector<engine::FeatureIndex> const*>, engine::kMetaclassCount> fLeaves{};
};

/// The features that a union lists on a metaclass, computed ones among them; none if it has no such union.
std::span<engine::FeatureIndex const> unionMembers(int aMetaclass, engine::FeatureIndex aUnion) noexcept;

}  // namespace umlmm::queries
