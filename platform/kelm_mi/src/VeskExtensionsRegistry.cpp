#include "kelm_mi/VeskExtensionsRegistry.h"

#include <utility>

namespace Kelm::mi {

void VeskExtensionsRegistryImpl::addNonConstCallback(std::string const& aClassName,
                                                     NonConstCallback aCallback) {
  fEntries[aClassName].fCallbacks.push_back(std::move(aCallback));
}

void VeskExtensionsRegistryImpl::executeNonConstCallbacks(std::string const& aClassName,
                                                          vesk::VeskClass* aClass,
                                                          vesk::VeskClient const* aClient) {
  Entry& entry = fEntries[aClassName];
  entry.fClass = aClass;
  // A callback may add another: the list can move and grow while it is walked.
  for (std::size_t i = 0; i < entry.fCallbacks.size(); ++i) {
    NonConstCallback const callback = entry.fCallbacks[i];
    callback(aClass, aClient);
  }
}

vesk::VeskClass* VeskExtensionsRegistryImpl::executedOn(std::string const& aClassName) const {
  auto const found = fEntries.find(aClassName);
  return found == fEntries.end() ? nullptr : found->second.fClass;
}

bool VeskExtensionsRegistryImpl::hasCallbacks(std::string const& aClassName) const {
  auto const found = fEntries.find(aClassName);
  return found != fEntries.end() && !found->second.fCallbacks.empty();
}

VeskExtensionsRegistry& VeskExtensionsRegistry::instance() {
  // Never destroyed: classes may be filled until the process ends.
  static auto* const sInstance = new VeskExtensionsRegistry;
  return *sInstance;
}

}  // namespace Kelm::mi
