#include "vesk/host/Attributes.h"

#include <string>

#include "vesk/VeskError.h"
#include "vesk/host/Instance.h"

namespace vesk::host {

namespace {

AttributeAccess sAccess;

Instance& instanceOf(VeskInterface& any, VeskInterned name) {
  auto* const instance = dynamic_cast<Instance*>(&any);
  if (!instance || !sAccess.fRead || !sAccess.fWrite)
    throw VeskError("Property '" + std::string(name.view()) + "' cannot be reached by its name");
  return *instance;
}

}  // namespace

void setAttributeAccess(AttributeAccess access) noexcept { sAccess = access; }

VeskValue readAttribute(VeskInterface& instance, VeskInterned name) {
  return sAccess.fRead(instanceOf(instance, name), name);
}

void writeAttribute(VeskInterface& instance, VeskInterned name, VeskValue value) {
  sAccess.fWrite(instanceOf(instance, name), name, value);
}

}  // namespace vesk::host
