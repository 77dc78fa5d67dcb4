#pragma once

#include <span>

#include "ReadOnlyProperty.h"
#include "frame/ElementClassInfo.h"
#include "frame/addTypedMethod.h"
#include "kelm_mi/families.h"

namespace Kelm::mi {

/// A class of the script package "Kelm". All texts and rows are constants, which classes refer to.
struct KelmClass {
  /// The kind of thing that the class refers to, and what it lets one do with it.
  char const* fKind;
  Access fAccess;
  char const* fDescription;
  /// Full names, in order.
  std::span<char const* const> fSuperclasses;
  std::span<MethodRow const> fMethods;
  std::span<ComputedProperty const> fProperties = {};
  /// Adds what is neither; null for nothing.
  void (*fAddMore)(vesk::VeskClass* aClass) = nullptr;

  vesk::ClassFamily const& family() const { return classFamily("Kelm", fKind); }
};

/// The classes of references to elements and to objects of any kind, those of models and factories, and those
/// of the metamodel's own objects.
std::span<KelmClass const> objectClasses();
std::span<KelmClass const> modelClasses();
std::span<KelmClass const> metaClasses();

}  // namespace Kelm::mi
