#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "model_files/store/ModelFiles.h"

/// Applied stereotypes: their tags in the text, and what was changed since.
namespace umlmm::files {

/// Whether an attribute or child of an application's tag is a value.
bool isValue(std::string_view aName) noexcept;
/// The value that a child of an application's tag is: the address if it is a reference.
std::string_view valueOf(pugi::xml_node aChild);
/// What was not saved yet included.
StereotypeApplication told(ModelFiles& aFiles, Application const& aApplication);

/// The model of an element; raises Error for one that is gone.
Kelm::Model modelOf(Kelm::ClassObject const& aElement);

}  // namespace umlmm::files
