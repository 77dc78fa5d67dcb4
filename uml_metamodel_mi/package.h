#pragma once

#include "lum/visibility.h"
#include "vesk/VeskPackageInfo.h"

namespace umlmm::mi {

/// Tells the host that there is a package "umlmm". The host owns it.
class umlmmPackageWrapper final : public vesk::VeskPackageInfo {
 public:
  char const* getName() const override { return "umlmm"; }
  /// Keeps the package and announces its members. Nothing but the host's calling it once keeps them from
  /// being announced twice.
  void initializePackage(vesk::VeskPackage* aPackage) override;
};

/// Gives the provider to the host, once; a failure is not repaired by a later call. The argument is not read.
UMLMM_API void initumlmmPackageWrapper(vesk::VeskPackage* aPackage);
/// The package that the host made for the provider; null until its first use.
UMLMM_API vesk::VeskPackage* getumlmmVeskPackage();
/// Announces all classes, then adds the package's function. Without a package, classes of data types and of
/// the factory are announced as global ones and the rest is left out.
UMLMM_API void umlmmStaticInitializePackage(vesk::VeskPackage* aPackage);

}  // namespace umlmm::mi

/// What the host calls when it loads and unloads the library.
extern "C" {
UMLMM_API void SarnInitialize_uml_metamodel_mi();
UMLMM_API void SarnTerminate_uml_metamodel_mi();
}
