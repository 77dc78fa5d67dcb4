#include "kelm/tags.h"

#include <map>
#include <mutex>
#include <typeindex>
#include <utility>

namespace Kelm::CooperativeVisitor::internal {

namespace {

using Numbers = std::map<std::pair<std::type_index, std::type_index>, Tag>;

// Never destroyed: objects that die at exit still ask for tags.
Numbers& numbers() {
  static Numbers& sNumbers = *new Numbers;
  return sNumbers;
}

constinit std::mutex sGuard;

}  // namespace

Tag GetTag(std::type_info const& aType, std::type_info const& aDomain) {
  std::lock_guard const guard(sGuard);
  Numbers& all = numbers();
  return all.try_emplace({aDomain, aType}, all.size() + 1).first->second;
}

Tag tagLimit() noexcept {
  std::lock_guard const guard(sGuard);
  return numbers().size() + 1;
}

}  // namespace Kelm::CooperativeVisitor::internal
