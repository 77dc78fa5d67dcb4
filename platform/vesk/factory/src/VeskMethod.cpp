#include "vesk/factory/VeskMethod.h"

namespace vesk::factory {

MethodAttributes::~MethodAttributes() = default;

VeskMethod::VeskMethod(char const* name, MethodAttributes attributes, char const* description)
    : fName(name), fDescription(description), fWord(attributes.word()) {}

VeskMethod::~VeskMethod() = default;

int VeskMethod::getMemberAccess() const {
  if (has(MethodAccessCode1)) return 1;
  if (has(MethodAccessCode2)) return 2;
  return has(MethodAccessCode5) ? 5 : 0;
}

}  // namespace vesk::factory
