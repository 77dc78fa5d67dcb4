#include "vesk/host/PackageRecord.h"

#include <algorithm>
#include <vector>

#include "vesk/VeskClassInfo.h"
#include "vesk/VeskError.h"
#include "vesk/VeskPackageInfo.h"
#include "vesk/factory/FunctionInfo.h"

namespace vesk::host {

namespace {

// Never destroyed: what libraries handed over is in use until the process ends.
struct Registry {
  std::vector<PackageRecord*> fPackages;
  std::vector<ClassRecord*> fGlobalClasses;
  VeskClient fClient{"host"};
  PackageObserver fPackageObserver = nullptr;
  void* fPackageContext = nullptr;
  GlobalClassObserver fClassObserver = nullptr;
  void* fClassContext = nullptr;
};

Registry& registry() {
  static Registry& sRegistry = *new Registry;
  return sRegistry;
}

/// Makes the record of a class and lets its name lead to it; the name must be free.
ClassRecord& announceClass(VeskInterned fullName, std::unique_ptr<VeskClassInfo> info, PackageRecord* package,
                           int mode) {
  auto* record = new ClassRecord(fullName, info.get(), package, mode);
  static_cast<void>(info.release());
  fullName.record()->fType = record;
  return *record;
}

}  // namespace

PackageRecord::PackageRecord(VeskPackageInfo* provider)
    : fProvider(provider), fName(internal::intern(provider->getName())) {}

PackageRecord::~PackageRecord() = default;

bool PackageRecord::isLocked() const { return fProvider->isLocked(); }

void PackageRecord::ensureInitialized() {
  if (fFailure) std::rethrow_exception(fFailure);
  if (fIsInitialized) return;
  fIsInitialized = true;
  try {
    fProvider->initializePackage(this);
  } catch (std::bad_alloc const&) {
    // Memory may be back at the next use: what was announced is announced anew.
    withdrawMembers();
    fIsInitialized = false;
    throw;
  } catch (...) {
    fFailure = std::current_exception();
    throw;
  }
}

void PackageRecord::withdrawMembers() noexcept {
  for (ClassRecord* cls : fClasses) {
    cls->fName.record()->fType = nullptr;
    delete &cls->info();
    delete cls;
  }
  for (Member* function : fFunctions) {
    for (MethodRecord const* method : function->fMethods) {
      delete method->fInfo;
      delete method;
    }
    delete function;
  }
  fClasses.clear();
  fFunctions.clear();
  fAliases.clear();
}

std::span<ClassRecord* const> PackageRecord::classes() {
  ensureInitialized();
  return fClasses;
}

std::span<Member* const> PackageRecord::functions() {
  ensureInitialized();
  return fFunctions;
}

ClassRecord* PackageRecord::findOwnClass(std::string_view shortName) const {
  std::string fullName(fName.view());
  fullName.append(1, '.').append(shortName);
  VeskInterned const token = internal::findInterned(fullName);
  Type* type = token ? token.record()->fType : nullptr;
  return type && type->isClass() ? static_cast<ClassRecord*>(type) : nullptr;
}

ClassRecord* PackageRecord::findClass(std::string_view shortName) {
  ensureInitialized();
  if (ClassRecord* cls = findOwnClass(shortName)) return cls;
  auto const alias = fAliases.find(std::string(shortName));
  if (alias != fAliases.end()) return findOwnClass(alias->second);
  return fProvider->attemptToLoadClass(std::string(shortName).c_str()) ? findOwnClass(shortName) : nullptr;
}

Member const* PackageRecord::findFunction(VeskInterned name) {
  ensureInitialized();
  auto const found = std::ranges::find(fFunctions, name, &Member::fName);
  return found == fFunctions.end() ? nullptr : *found;
}

void PackageRecord::addClass(VeskClassInfo* info, int mode) {
  std::unique_ptr<VeskClassInfo> owner(info);
  std::string fullName(fName.view());
  fullName.append(1, '.').append(info->getName());
  VeskInterned const token = internal::makeInterned(std::move(fullName));
  if (token.record()->fType) fProvider->throwErrorForDefinitionOfExistingName(info->getName());
  fClasses.push_back(nullptr);  // room first: what is announced must not get lost
  try {
    fClasses.back() = &announceClass(token, std::move(owner), this, mode);
  } catch (...) {
    fClasses.pop_back();
    throw;
  }
}

void PackageRecord::addClassAlias(char const* alias, char const* className) { fAliases[alias] = className; }

void PackageRecord::setHelpText(char const* text) { fHelpText = text; }

void PackageRecord::addFunction(factory::FunctionInfo* info) {
  std::unique_ptr<VeskMethodInfo> owner(info);
  auto method = std::make_unique<MethodRecord>(info, nullptr);
  auto const found = std::ranges::find(fFunctions, method->fName, &Member::fName);
  auto added = found == fFunctions.end() ? std::make_unique<Member>() : nullptr;
  Member& function = added ? *added : **found;
  function.fName = method->fName;
  fFunctions.reserve(fFunctions.size() + 1);
  function.fMethods.push_back(method.get());
  static_cast<void>(method.release());
  static_cast<void>(owner.release());
  if (added) fFunctions.push_back(added.release());
}

std::span<PackageRecord* const> packages() { return registry().fPackages; }

PackageRecord* findPackage(std::string_view name) {
  auto const& all = registry().fPackages;
  auto const found = std::ranges::find_if(all, [name](PackageRecord* p) { return p->name().view() == name; });
  return found == all.end() ? nullptr : *found;
}

std::span<ClassRecord* const> globalClasses() { return registry().fGlobalClasses; }

VeskClient const* client() noexcept { return &registry().fClient; }

void setPackageObserver(PackageObserver observer, void* context) noexcept {
  registry().fPackageObserver = observer;
  registry().fPackageContext = context;
}

void setGlobalClassObserver(GlobalClassObserver observer, void* context) noexcept {
  registry().fClassObserver = observer;
  registry().fClassContext = context;
}

}  // namespace vesk::host

namespace vesk {

void VeskPackage::addPackage(VeskPackageInfo* provider) {
  std::unique_ptr<VeskPackageInfo> owner(provider);
  auto& all = host::registry();
  if (all.fPackageObserver) all.fPackageObserver(provider, all.fPackageContext);
  if (host::findPackage(provider->getName()))
    throw VeskError("Package '" + std::string(provider->getName()) + "' is already defined");
  all.fPackages.push_back(new host::PackageRecord(provider));
  static_cast<void>(owner.release());
}

void VeskClass::addGlobalClass(VeskClassInfo* info) {
  std::unique_ptr<VeskClassInfo> owner(info);
  auto& all = host::registry();
  if (all.fClassObserver) all.fClassObserver(info, all.fClassContext);
  VeskInterned const name = internal::intern(info->getName());
  if (name.record()->fType) throw VeskError("Class '" + std::string(name.view()) + "' is already defined");
  all.fGlobalClasses.push_back(&host::announceClass(name, std::move(owner), nullptr, 2));
}

}  // namespace vesk
