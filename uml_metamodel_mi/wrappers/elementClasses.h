#pragma once

#include <string>

#include "uml_metamodel_mi/wrappers/ElementDescription.h"
#include "vesk/VeskClassInfo.h"
#include "vesk/VeskPackage.h"

/// How the unit of a metaclass announces its classes. Nothing is filled by it.
namespace umlmm::mi {

using MakeClassInfo = vesk::VeskClassInfo* (*)(std::string const& aShortName,
                                               std::string const& aDescription);

template <class Wrapper>
vesk::VeskClassInfo* makeClassInfo(std::string const& aShortName, std::string const& aDescription) {
  return new Wrapper(aShortName, aDescription);
}

/// The eleven classes of a metaclass. Without a package nothing happens.
void announceElementClasses(vesk::VeskPackage* aPackage, ElementDescription const& aDescription,
                            MakeClassInfo aImmutable, MakeClassInfo aMutable, MakeClassInfo aMetaProperty);

}  // namespace umlmm::mi
