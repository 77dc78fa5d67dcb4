#pragma once

#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "vesk/VeskClient.h"
#include "vesk/VeskPackage.h"
#include "vesk/host/ClassRecord.h"

namespace vesk::host {

/// A package of the host: made for a provider, filled by it at the package's first use.
class UMLMM_API PackageRecord final : public VeskPackage {
 public:
  explicit PackageRecord(VeskPackageInfo* provider);
  ~PackageRecord() override;

  [[nodiscard]] VeskPackageInfo& provider() const noexcept { return *fProvider; }
  [[nodiscard]] VeskInterned name() const noexcept { return fName; }
  /// Whether scripts may not replace members of the package.
  [[nodiscard]] bool isLocked() const;

  /// Lets the provider announce the members of the package if it has not been asked yet. If it fails, every
  /// use of the package raises the same failure, unless it was for lack of memory: then it is asked again.
  void ensureInitialized();

  // What follows initialises the package first.

  /// All classes in the order of announcement; their short names are those of their infos.
  [[nodiscard]] std::span<ClassRecord* const> classes();
  [[nodiscard]] std::span<Member* const> functions();
  /// Null for no such member.
  [[nodiscard]] ClassRecord* findClass(std::string_view shortName);
  [[nodiscard]] Member const* findFunction(VeskInterned name);

  void addClass(VeskClassInfo* info, int mode) override;
  void addClassAlias(char const* alias, char const* className) override;
  void setHelpText(char const* text) override;
  void addFunction(factory::FunctionInfo* info) override;

  [[nodiscard]] std::string const& helpText() const noexcept { return fHelpText; }

 private:
  void withdrawMembers() noexcept;
  [[nodiscard]] ClassRecord* findOwnClass(std::string_view shortName) const;

  VeskPackageInfo* fProvider;
  VeskInterned fName;
  std::exception_ptr fFailure;
  bool fIsInitialized = false;
  std::vector<ClassRecord*> fClasses;
  std::map<std::string, std::string, std::less<>> fAliases;
  std::vector<Member*> fFunctions;
  std::string fHelpText;
};

/// Packages in the order in which their providers were added.
[[nodiscard]] UMLMM_API std::span<PackageRecord* const> packages();
/// Null for no such package. Does not initialise the package.
[[nodiscard]] UMLMM_API PackageRecord* findPackage(std::string_view name);
/// Classes that belong to no package, in the order of announcement.
[[nodiscard]] UMLMM_API std::span<ClassRecord* const> globalClasses();

/// Loads the library `name` (lib<name>.so beside this library, in a directory added below, or where the
/// loader finds it) and runs its SarnInitialize_<name>. A second load of a name does nothing. Answers the
/// packages that the library has added. Throws a VeskError of kind Load.
UMLMM_API std::vector<PackageRecord*> load(std::string const& name);
UMLMM_API void addLibraryDirectory(std::string const& path);
/// Runs SarnTerminate_<name> of all loaded libraries, last first. Libraries stay loaded.
UMLMM_API void terminate();

/// The client in whose name the host calls.
[[nodiscard]] UMLMM_API VeskClient const* client() noexcept;

/// Observers of the two static announcements, called before the host takes the object over; null removes.
using PackageObserver = void (*)(VeskPackageInfo* provider, void* context);
using GlobalClassObserver = void (*)(VeskClassInfo* info, void* context);
UMLMM_API void setPackageObserver(PackageObserver observer, void* context) noexcept;
UMLMM_API void setGlobalClassObserver(GlobalClassObserver observer, void* context) noexcept;

}  // namespace vesk::host
