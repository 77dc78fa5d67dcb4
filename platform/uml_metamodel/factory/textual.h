#pragma once

#include <string_view>

#include "kelm/Model.h"

/// Elements and literals from text.
namespace umlmm::factory::textual {

/// Makes what the text describes: a metaclass, optionally after "umlmm.", optionally with a name (a bare word
/// or quoted) and features in braces, `Class Order { isAbstract = true; }`. Values are numbers, true, false,
/// quoted text, `*`, literal names, qualified names of elements, or a list of them in brackets. Everything is
/// read before anything is made; an error names the position.
Kelm::Object create(Kelm::Model const& aModel, std::u16string_view aText);

/// An element of a metaclass whose name (or body, value or symbol, where it has no name) is the text; or the
/// literal of an enumeration.
Kelm::Object create(Kelm::Model const& aModel, std::u16string_view aType, std::u16string_view aText);

}  // namespace umlmm::factory::textual
