#include <cstdlib>

#include "foundation/except.h"
#include "lum/lum.h"
#include "vesk/Detail.h"
#include "vesk/VeskClass.h"
#include "vesk/VeskClassInfo.h"
#include "vesk/VeskClient.h"
#include "vesk/VeskError.h"
#include "vesk/VeskMethodInfo.h"
#include "vesk/VeskPackage.h"
#include "vesk/VeskPackageInfo.h"
#include "vesk/VeskPropInfo.h"

namespace vesk {

VeskError::VeskError(std::string const& text, Kind kind) : std::runtime_error(text), fKind(kind) {}
VeskError::~VeskError() = default;

VeskClient::VeskClient(std::string name) : fName(std::move(name)) {}
VeskClient::~VeskClient() = default;

VeskPackage::~VeskPackage() = default;
void VeskPackage::addClassAlias(char const*, char const*) {}
void VeskPackage::setHelpText(char const*) {}

VeskClass::~VeskClass() = default;
void VeskClass::addEvent(char const*) {}

SequenceHook::~SequenceHook() = default;
VeskValue SequenceHook::shownObject(VeskInterface*) const { return {}; }
bool SequenceHook::splice(VeskInterface*, std::size_t, std::size_t, VeskValue const*, std::size_t) const {
  return false;
}

ObjectHook::~ObjectHook() = default;
lum::HostPlace* ObjectHook::hostPlace(void const*) const { return nullptr; }
VeskValue ObjectHook::copy(void const*, void const*) const { return {}; }
void ObjectHook::letGo(void const*) const {}
bool ObjectHook::openDoor(VeskPropInfo const&, PropertyDoor&) const { return false; }

bool SequenceHook::append(VeskInterface*, VeskValue) const { return false; }

VeskPackageInfo::~VeskPackageInfo() = default;
bool VeskPackageInfo::attemptToLoadSubPackage(char const*) { return false; }
void VeskPackageInfo::throwErrorForDefinitionOfExistingName(char const* name) {
  throw VeskError("'" + std::string(name) + "' is already defined in package '" + getName() + "'");
}
bool VeskPackageInfo::attemptToLoadClass(char const*) { return false; }
bool VeskPackageInfo::attemptToLoadFunction(char const*) { return false; }
bool VeskPackageInfo::attemptToLoadType(char const*) { return false; }

VeskClassInfo::~VeskClassInfo() = default;
bool VeskClassInfo::isPropertyNameReservedByThisClass(char const*) const { return false; }
bool VeskClassInfo::canOtherClassContainThisClass(VeskInterned) const { return true; }
bool VeskClassInfo::canThisClassContainOtherClass(VeskInterned) const { return true; }
bool VeskClassInfo::attemptToLoadProperty(char const*) { return false; }
bool VeskClassInfo::attemptToLoadMethod(char const*) { return false; }
bool VeskClassInfo::attemptToLoadEvent(char const*) { return false; }
void VeskClassInfo::instanceLoaded(VeskInterfacePtr, VeskLoadInfo const*) {}
bool VeskClassInfo::customSave(VeskInterfacePtr, VeskValue&, VeskDataTypePtr&) { return false; }
bool VeskClassInfo::customLoad(VeskInterfacePtr&, VeskValue, VeskDataTypePtr) { return false; }
std::vector<VeskInterfacePtr> VeskClassInfo::getChildrenOfInstance(VeskInterface*) { return {}; }
bool VeskClassInfo::visitMemberNames(std::function<void(char const*)> const&) const { return false; }

VeskMethodInfo::~VeskMethodInfo() = default;
ExtendedAccess VeskMethodInfo::getExtendedAccess() const { return {getMemberAccess(), {}, {}}; }

VeskMethodSignature::VeskMethodSignature(VeskInterned names, VeskInterned result, VeskInterned receiver,
                                         std::span<char const* const> argumentTypes)
    : fNames(names), fResult(result), fReceiver(receiver) {
  fArguments.reserve(argumentTypes.size());
  for (char const* type : argumentTypes) fArguments.push_back(internal::intern(type));
}

Detailed::~Detailed() = default;

VeskPropInfo::VeskPropInfo() = default;
VeskPropInfo::VeskPropInfo(char const* name, char const* description, factory::PropertyAttributes attributes)
    : fName(name), fDescription(description), fWord(attributes.fWord) {}
VeskPropInfo::~VeskPropInfo() = default;
ExtendedAccess VeskPropInfo::getExtendedGetAccess() const { return {getMemberGetAccess(), {}, {}}; }
ExtendedAccess VeskPropInfo::getExtendedSetAccess() const { return {getMemberSetAccess(), {}, {}}; }
std::vector<VeskInterfacePtr> VeskPropInfo::getInterfaces(VeskClient const*, VeskInterface*) { return {}; }
std::vector<tarnArray*> VeskPropInfo::getSarnArrays(VeskClient const*, VeskInterface*) { return {}; }

// What the host frees by the deleting destructor is zero-filled memory of the C heap, on both sides.

namespace {

inline void* allocateRecord(std::size_t size) {
  void* memory = ::calloc(size, 1);
  if (!memory) throw foundation::core::except::bad_alloc();
  return memory;
}

}  // namespace

void* VeskPackageInfo::operator new(std::size_t size) { return allocateRecord(size); }
void VeskPackageInfo::operator delete(void* memory) noexcept { lumFree(memory); }
void* VeskClassInfo::operator new(std::size_t size) { return allocateRecord(size); }
void VeskClassInfo::operator delete(void* memory) noexcept { lumFree(memory); }
void* VeskMethodInfo::operator new(std::size_t size) { return allocateRecord(size); }
void VeskMethodInfo::operator delete(void* memory) noexcept { lumFree(memory); }
void* VeskPropInfo::operator new(std::size_t size) { return allocateRecord(size); }
void VeskPropInfo::operator delete(void* memory) noexcept { lumFree(memory); }

}  // namespace vesk
