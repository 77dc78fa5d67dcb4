#include <dlfcn.h>

#include <algorithm>
#include <filesystem>

#include "vesk/VeskError.h"
#include "vesk/host/PackageRecord.h"

namespace vesk::host {

namespace {

namespace fs = std::filesystem;

struct Library {
  std::string fName;
  void* fHandle;
  std::vector<PackageRecord*> fPackages;
};

struct Libraries {
  std::vector<Library> fLoaded;
  std::vector<fs::path> fDirectories;
};

Libraries& libraries() {
  static Libraries& sLibraries = *new Libraries;
  return sLibraries;
}

fs::path ownDirectory() {
  Dl_info info;
  if (!dladdr(reinterpret_cast<void const*>(&libraries), &info) || !info.dli_fname) return {};
  return fs::path(info.dli_fname).parent_path();
}

/// The path of the library in a known directory, or its bare file name for the loader to find. Where nobody
/// links with libraries, they have the name that ends with a version alone.
std::string locate(std::string const& name) {
  std::string const file = "lib" + name + ".so";
  std::vector<fs::path> directories = libraries().fDirectories;
  directories.push_back(ownDirectory());
  std::error_code ignored;
  for (fs::path const& directory : directories)
    for (std::string const& known : {file, file + "." UMLMM_SOVERSION})
      if (fs::exists(directory / known, ignored)) return (directory / known).string();
  return file;
}

std::string lastLoaderError() {
  char const* text = dlerror();
  return text ? text : "no reason given";
}

using EntryPoint = void (*)();

EntryPoint findEntryPoint(Library const& library, std::string const& prefix) {
  return reinterpret_cast<EntryPoint>(dlsym(library.fHandle, (prefix + library.fName).c_str()));
}

}  // namespace

std::vector<PackageRecord*> load(std::string const& name) {
  auto& loaded = libraries().fLoaded;
  auto const known = std::ranges::find(loaded, name, &Library::fName);
  if (known != loaded.end()) return known->fPackages;

  void* handle = dlopen(locate(name).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle)
    throw VeskError("Library '" + name + "' cannot be loaded: " + lastLoaderError(), VeskError::Kind::Load);
  Library library{name, handle, {}};
  EntryPoint const initialize = findEntryPoint(library, "SarnInitialize_");
  if (!initialize)
    throw VeskError("Library '" + name + "' has no entry point 'SarnInitialize_" + name + "'",
                    VeskError::Kind::Load);
  std::size_t const before = packages().size();
  initialize();
  auto const added = packages().subspan(before);
  library.fPackages.assign(added.begin(), added.end());
  loaded.push_back(library);
  return library.fPackages;
}

void addLibraryDirectory(std::string const& path) { libraries().fDirectories.emplace_back(path); }

void terminate() {
  auto& loaded = libraries().fLoaded;
  for (auto library = loaded.rbegin(); library != loaded.rend(); ++library)
    if (EntryPoint const end = findEntryPoint(*library, "SarnTerminate_")) end();
}

}  // namespace vesk::host
