#pragma once

#include "frame/ScriptClass.h"
#include "uml_metamodel/umlmm/Factory.h"

template <>
struct Kelm::mi::ScriptClass<umlmm::Factory> : Kelm::mi::NamedScriptClass<"umlmm.Factory", false> {};
template <>
struct Kelm::mi::ScriptClass<umlmm::ImmutableFactory>
    : Kelm::mi::NamedScriptClass<"umlmm.ImmutableFactory", true> {};
