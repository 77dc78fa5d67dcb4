#pragma once

#include <string>
#include <string_view>

namespace umlmm::files::mi {

/// Bytes cross in open files, whatever is in them. Both raise Error when the system refuses.
std::string readAll(int aDescriptor);
void writeAll(int aDescriptor, std::string_view aBytes);

}  // namespace umlmm::files::mi
