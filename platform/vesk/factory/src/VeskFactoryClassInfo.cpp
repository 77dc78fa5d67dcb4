#include "vesk/factory/VeskFactoryClassInfo.h"

namespace vesk::factory {

VeskFactoryClassInfo::VeskFactoryClassInfo(std::string const& name, std::string const& description)
    : fName(name), fDescription(description) {}

VeskFactoryClassInfo::~VeskFactoryClassInfo() = default;

}  // namespace vesk::factory
