#pragma once

#include <string>

#include "uml_metamodel_mi/wrappers/ElementClass.h"
#include "vesk/VeskClassInfo.h"
#include "vesk/VeskPackage.h"

/// How the units of the package announce their classes. Nothing is filled by it.
namespace umlmm::mi {

using MakeClassInfo = vesk::VeskClassInfo* (*)(std::string const& aShortName,
                                               std::string const& aDescription);

template <class Wrapper>
vesk::VeskClassInfo* makeClassInfo(std::string const& aShortName, std::string const& aDescription) {
  return new Wrapper(aShortName, aDescription);
}

/// Announces a class; without a package as a global class.
void announceClass(vesk::VeskPackage* aPackage, vesk::VeskClassInfo* aInfo);

/// The eleven classes of a metaclass. Without a package nothing happens.
void announceElementClasses(vesk::VeskPackage* aPackage, ElementClass const& aDescription,
                            MakeClassInfo aImmutable, MakeClassInfo aMutable, MakeClassInfo aMetaProperty);

}  // namespace umlmm::mi
