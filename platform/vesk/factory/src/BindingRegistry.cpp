#include "vesk/factory/BindingRegistry.h"

#include "vesk/VeskError.h"
#include "vesk/host/Bindings.h"
#include "vesk/host/Instance.h"

namespace vesk::factory {

namespace basic {

using host::Instance;
namespace bindings = host::bindings;

namespace {

host::ClassRecord& classToMake(VeskInterned className) {
  if (className.empty()) throw VeskError("An object without a class name cannot be given to the host");
  return host::classOf(className);
}

}  // namespace

Instance* BindingRegistry::find(void const* id) noexcept {
  Instance* instance = bindings::lookUp(id);
  return instance && instance->isBound() ? instance : nullptr;
}

std::size_t BindingRegistry::size() noexcept { return bindings::size(); }

VeskValue BindingRegistry::announce(void* id, VeskInterned className, bool& created) {
  created = false;
  if (!id) return host::makeEmpty(host::typeOf(className));
  if (Instance* instance = find(id)) return instance->newReference();
  VeskInterfacePtr made = VeskInterfacePtr::adopt(host::makeInstance(classToMake(className)));
  // Making an instance may fill its class, and that may run anything.
  if (Instance* instance = find(id)) return instance->newReference();
  auto* instance = static_cast<Instance*>(static_cast<VeskInterface*>(made));
  bindings::store(id, *instance);
  created = true;
  return instance->newReference();
}

VeskValue BindingRegistry::announce(void* id, VeskInterned className) {
  bool created = false;
  return announce(id, className, created);
}

VeskValue BindingRegistry::announce(void const* id, VeskInterned className) {
  return announce(const_cast<void*>(id), className);
}

void BindingRegistry::announceForConstructor(void* id, VeskInterned, tarnArray* object, bool) {
  Instance* instance = Instance::fromArray(object);
  if (!id || !instance) throw VeskError("There is no object to bind");
  if (find(id) || instance->state() != Instance::State::Unbound) throw VeskError("object is already bound");
  bindings::store(id, *instance);
}

void BindingRegistry::remove(void const* id) {
  Instance* instance = id ? bindings::lookUp(id) : nullptr;
  if (!instance) return;
  // The id may have been given to a new instance while the old one is being released.
  if (instance->isBound() && Instance::findReleasing(id)) return;
  bindings::erase(id);
}

}  // namespace basic

namespace detail {

void initStringDataTypes() {
  [[maybe_unused]] static bool const sDone = [] {
    host::registerDataType("char vector", host::Carrier::Text);
    host::registerDataType("char", host::Carrier::Text);
    return true;
  }();
}

}  // namespace detail

}  // namespace vesk::factory
