#pragma once

#include "uml_metamodel/umlmm/Factory.h"
#include "uml_metamodel_mi/frame/ScriptClass.h"

template <>
struct Kelm::mi::ScriptClass<umlmm::Factory> : Kelm::mi::NamedScriptClass<"umlmm.Factory", false> {};
template <>
struct Kelm::mi::ScriptClass<umlmm::ImmutableFactory>
    : Kelm::mi::NamedScriptClass<"umlmm.ImmutableFactory", true> {};
