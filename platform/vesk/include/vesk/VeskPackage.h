#pragma once

#include "lum/visibility.h"
#include "vesk/fwd.h"

namespace vesk {

/// A package object: what a provider fills when its package is first used.
class UMLMM_API VeskPackage {
 public:
  virtual ~VeskPackage();

  /// Announces a class of the package under its short name without filling it; the package owns the info.
  /// Lets the provider refuse a name that is taken (throwErrorForDefinitionOfExistingName). Mode 2 is "fill
  /// on first use", which is what happens for every mode.
  virtual void addClass(VeskClassInfo* info, int mode) = 0;
  /// Gives the package a second name for one of its classes, by short names; nothing is checked before the
  /// alias is used.
  virtual void addClassAlias(char const* alias, char const* className);
  /// Gives the package its help text.
  virtual void setHelpText(char const* text);
  /// Adds a function of the package, which owns it. Functions of one name stand beside each other.
  virtual void addFunction(factory::FunctionInfo* info) = 0;

  /// Makes a package known to the host, which owns the provider and calls its initializePackage when the
  /// package is first used. Throws for a name that is taken.
  static void addPackage(VeskPackageInfo* provider);
};

}  // namespace vesk
