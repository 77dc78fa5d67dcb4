#include "vesk/host/ClassRecord.h"

#include <algorithm>
#include <unordered_map>

#include "Linearization.h"
#include "vesk/VeskClassInfo.h"
#include "vesk/VeskError.h"
#include "vesk/host/PackageRecord.h"

namespace vesk::host {

namespace {

/// A name that the class itself declares: index into its properties or its methods.
struct OwnMember {
  VeskInterned fName;
  std::uint32_t fIndex;
  bool fIsProperty;

  friend bool operator<(OwnMember const& a, VeskInterned name) noexcept { return a.fName < name; }
};

void checkDataType(VeskInterned name, std::string_view user) {
  if (name.empty() || isClassName(name)) return;  // classes are looked up when first used
  if (!name.record()->fType)
    throw VeskError("Data type '" + std::string(name.view()) + "' of '" + std::string(user) +
                    "' is not defined");
}

void checkTypes(MethodRecord const& method) {
  checkDataType(method.fSignature->result(), method.fName.view());
  for (VeskInterned type : method.fSignature->arguments()) {
    checkDataType(type, method.fName.view());
    if (type.view() == "void")
      throw VeskError("An argument of '" + std::string(method.fName.view()) + "' is of type 'void'");
  }
}

}  // namespace

/// What a class has from the moment at which it is filled. Owns the infos of its members.
struct ClassRecord::Body {
  ~Body();

  std::vector<ClassRecord*> fSuperclasses;
  std::vector<ClassRecord*> fLinearization;
  std::vector<PropertyRecord> fProperties;
  std::vector<MethodRecord> fMethods;
  std::vector<MethodRecord const*> fConstructors;
  std::vector<OwnMember> fOwn;  // sorted by name, stable
  std::unordered_map<VeskInterned, std::unique_ptr<Member>> fMembers;
  ClassRecord const* fLastAncestor = nullptr;
  int fLastDistance = 0;
  std::exception_ptr fFailure;

  void index();
  /// Adds what this class declares under the name; true if no further class is to be asked.
  bool addTo(Member& member) const;
};

ClassRecord::Body::~Body() {
  for (PropertyRecord const& property : fProperties) delete property.fInfo;
  for (MethodRecord const& method : fMethods) delete method.fInfo;
}

void ClassRecord::Body::index() {
  for (std::uint32_t i = 0; i < fProperties.size(); ++i) fOwn.push_back({fProperties[i].fName, i, true});
  for (std::uint32_t i = 0; i < fMethods.size(); ++i) {
    if (fMethods[i].fIsConstructor)
      fConstructors.push_back(&fMethods[i]);
    else
      fOwn.push_back({fMethods[i].fName, i, false});
  }
  std::ranges::stable_sort(fOwn, {}, [](OwnMember const& own) { return own.fName.record(); });
}

bool ClassRecord::Body::addTo(Member& member) const {
  bool isComplete = false;
  for (auto own = std::lower_bound(fOwn.begin(), fOwn.end(), member.fName);
       own != fOwn.end() && own->fName == member.fName; ++own) {
    if (own->fIsProperty) {
      if (member.fMethods.empty()) member.fProperty = &fProperties[own->fIndex];
      return true;
    }
    member.fMethods.push_back(&fMethods[own->fIndex]);
    isComplete |= member.fMethods.back()->fOverridesAll;
  }
  return isComplete;
}

ClassRecord::ClassRecord(VeskInterned fullName, VeskClassInfo* info, PackageRecord* package, int mode)
    : Type{fullName, Carrier::Object},
      fInfo(info),
      fPackage(package),
      fMode(mode),
      fQueries{info->handleQueryFirst(), info->factoryQuery(), info->handleQuerySecond()} {}

ClassRecord::~ClassRecord() = default;

void ClassRecord::fill() {
  if (fState == State::Failed) std::rethrow_exception(fBody->fFailure);
  if (fState == State::Filling)
    throw VeskError("Class '" + std::string(fName.view()) + "' is needed while it is being filled");
  fBody = std::make_unique<Body>();
  fState = State::Filling;
  try {
    fInfo->initializeClass(this, client());
    finishFilling();
    fState = State::Filled;
  } catch (std::bad_alloc const&) {
    // Memory may be back at the next use.
    fBody.reset();
    fState = State::Announced;
    throw;
  } catch (...) {
    fState = State::Failed;
    fBody->fFailure = std::current_exception();
    throw;
  }
}

void ClassRecord::finishFilling() {
  for (PropertyRecord const& property : fBody->fProperties)
    checkDataType(property.fTypeName, property.fName.view());
  for (MethodRecord const& method : fBody->fMethods) checkTypes(method);
  fBody->fLinearization = linearize(*this, fBody->fSuperclasses);
  fBody->index();
}

std::span<ClassRecord* const> ClassRecord::superclasses() {
  ensureFilled();
  return fBody->fSuperclasses;
}

std::span<ClassRecord* const> ClassRecord::linearization() {
  ensureFilled();
  return fBody->fLinearization;
}

std::span<PropertyRecord const> ClassRecord::properties() {
  ensureFilled();
  return fBody->fProperties;
}

std::span<MethodRecord const> ClassRecord::methods() {
  ensureFilled();
  return fBody->fMethods;
}

std::span<MethodRecord const* const> ClassRecord::constructors() {
  ensureFilled();
  return fBody->fConstructors;
}

Member const* ClassRecord::findMember(VeskInterned name) {
  ensureFilled();
  auto const found = fBody->fMembers.find(name);
  if (found != fBody->fMembers.end()) return found->second.get();
  auto member = std::make_unique<Member>();
  member->fName = name;
  for (ClassRecord* cls : fBody->fLinearization)
    if (cls->fBody->addTo(*member)) break;
  if (!member->fProperty && member->fMethods.empty()) return nullptr;
  return fBody->fMembers.emplace(name, std::move(member)).first->second.get();
}

int ClassRecord::findDistance(ClassRecord const& ancestor) {
  ensureFilled();
  if (fBody->fLastAncestor != &ancestor) {
    auto const& order = fBody->fLinearization;
    auto const found = std::ranges::find(order, &ancestor);
    fBody->fLastDistance = found == order.end() ? -1 : static_cast<int>(found - order.begin());
    fBody->fLastAncestor = &ancestor;
  }
  return fBody->fLastDistance;
}

char const* ClassRecord::getConstructorName() const { return fInfo->getName(); }

ClassRecord::Body& ClassRecord::bodyToFill() const {
  if (fState != State::Filling)
    throw VeskError("Class '" + std::string(fName.view()) + "' can be changed only while it is being filled");
  return *fBody;
}

void ClassRecord::checkName(char const* name, char const* kind) const {
  if (name && *name) return;
  throw VeskError("A " + std::string(kind) + " of class '" + std::string(fName.view()) + "' has no name");
}

void ClassRecord::addSuperclass(VeskInterned const* names, std::size_t count, int, int) {
  for (VeskInterned name : std::span(names, count)) {
    ClassRecord& super = classOf(name);
    super.ensureFilled();
    bodyToFill().fSuperclasses.push_back(&super);
  }
}

void ClassRecord::addProperty(VeskPropInfo* property) {
  std::unique_ptr<VeskPropInfo> owner(property);
  checkName(property->getName(), "property");
  bodyToFill().fProperties.push_back(
      {property, this, internal::intern(property->getName()), internal::intern(property->getDataType())});
  static_cast<void>(owner.release());
}

void ClassRecord::addMethod(VeskMethodInfo* method) {
  std::unique_ptr<VeskMethodInfo> owner(method);
  checkName(method->getName(), "method");
  bodyToFill().fMethods.emplace_back(method, this);
  static_cast<void>(owner.release());
}

ClassRecord* findClass(VeskInterned fullName) {
  auto const known = [fullName]() -> ClassRecord* {
    Type* type = fullName ? fullName.record()->fType : nullptr;
    return type && type->isClass() ? static_cast<ClassRecord*>(type) : nullptr;
  };
  if (ClassRecord* cls = known()) return cls;
  std::string_view const text = fullName.view();
  std::size_t const dot = text.find('.');
  if (dot == text.npos) return nullptr;
  PackageRecord* package = findPackage(text.substr(0, dot));
  if (!package) return nullptr;
  package->ensureInitialized();
  return package->findClass(text.substr(dot + 1));
}

ClassRecord& classOf(VeskInterned fullName) {
  ClassRecord* cls = findClass(fullName);
  if (!cls)
    throw VeskError("Class '" + std::string(fullName.view()) + "' is not defined", VeskError::Kind::Name);
  return *cls;
}

}  // namespace vesk::host
