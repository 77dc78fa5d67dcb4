#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "lum/visibility.h"
#include "vesk/fwd.h"

namespace Kelm::mi {

/// What other libraries add to classes while these are filled, by class name.
class UMLMM_API VeskExtensionsRegistryImpl {
 public:
  using NonConstCallback = std::function<void(vesk::VeskClass*, vesk::VeskClient const*)>;

  /// `aClassName` is the full name of a metaclass's changeable class ("umlmm.Comment"); the callback runs
  /// while its read-only twin is filled, behind the properties. Classes of package "Kelm" run those of their
  /// own name. One for a class that is filled already never runs: `executedOn` tells.
  void addNonConstCallback(std::string const& aClassName, NonConstCallback aCallback);
  /// Runs the callbacks of a class in the order in which they were added. What one throws passes on, and
  /// those behind it don't run; a class that is filled again runs all again. Callbacks may add callbacks.
  void executeNonConstCallbacks(std::string const& aClassName, vesk::VeskClass* aClass,
                                vesk::VeskClient const* aClient);
  /// The class on which the callbacks have begun to run; null if they have not.
  [[nodiscard]] vesk::VeskClass* executedOn(std::string const& aClassName) const;
  [[nodiscard]] bool hasCallbacks(std::string const& aClassName) const;

 private:
  struct Entry {
    std::vector<NonConstCallback> fCallbacks;
    vesk::VeskClass* fClass = nullptr;
  };
  std::map<std::string, Entry> fEntries;
};

/// The one of the process, used by the host's thread.
class UMLMM_API VeskExtensionsRegistry : public VeskExtensionsRegistryImpl {
 public:
  static VeskExtensionsRegistry& instance();

 private:
  VeskExtensionsRegistry() = default;
};

}  // namespace Kelm::mi
