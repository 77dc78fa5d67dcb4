#pragma once

#include <cstddef>

#include "lum/visibility.h"
#include "vesk/fwd.h"

namespace vesk {

/// The provider of a package. The host owns it and asks it in its one thread.
class UMLMM_API VeskPackageInfo {
 public:
  VeskPackageInfo() = default;
  VeskPackageInfo(VeskPackageInfo const&) = delete;
  VeskPackageInfo& operator=(VeskPackageInfo const&) = delete;
  virtual ~VeskPackageInfo();

  static void* operator new(std::size_t size);
  static void operator delete(void* memory) noexcept;

  virtual char const* getName() const = 0;
  virtual char const* getDescription() const { return nullptr; }
  virtual char const* getDetailedDescription() const { return nullptr; }
  /// A last chance to bring in a member that the package does not have; true if it exists now. This host asks
  /// for classes alone.
  virtual bool attemptToLoadSubPackage(char const* name);
  /// Raises the error for a second definition of `name`.
  virtual void throwErrorForDefinitionOfExistingName(char const* name);
  /// By the short name; called when a class is looked up that was not announced.
  virtual bool attemptToLoadClass(char const* name);
  virtual bool attemptToLoadFunction(char const* name);
  virtual bool attemptToLoadType(char const* name);
  virtual void* getMethodSelector() const { return nullptr; }
  /// Announces the members of the package, at its first use. What it throws is the answer to every later use
  /// of the package too; after std::bad_alloc alone it is called again, with the package empty.
  virtual void initializePackage(VeskPackage* package) = 0;
  virtual bool isDestructible() const { return true; }
  /// Whether scripts may not replace members of the package.
  virtual bool isLocked() const { return true; }
  virtual char const* getH1Line() const { return nullptr; }
  virtual char const* getHelpText() const { return nullptr; }
};

}  // namespace vesk
