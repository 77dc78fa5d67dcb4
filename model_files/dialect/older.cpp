#include "model_files/dialect/older.h"

#include <algorithm>
#include <string>
#include <unordered_map>

namespace umlmm::files {

namespace {

/// A name in files, the metaclass whose elements have it there, and the name here.
struct Renamed {
  std::string_view fOwner;
  std::string_view fWritten;
  std::string_view fName;
};

constexpr Renamed kFeatures[] = {
    {"Package", "ownedMember", "packagedElement"},
    {"Component", "ownedMember", "packagedElement"},
    {"Package", "ownedStereotype", "packagedElement"},
    {"Activity", "ownedNode", "node"},
    {"Activity", "ownedEdge", "edge"},
    {"Activity", "ownedGroup", "group"},
    {"Interaction", "ownedFragment", "fragment"},
    {"Element", "ownedComments", "ownedComment"},
    {"BehavioredClassifier", "ownedRealization", "interfaceRealization"},
    {"BehavioredClassifier", "implementation", "interfaceRealization"},
    {"BehavioralFeature", "formalParameter", "ownedParameter"},
    {"BehavioralFeature", "returnResult", "ownedParameter"},
    {"Parameter", "kind", "direction"},
    {"Interface", "nestedInterface", "nestedClassifier"},
    {"ProfileApplication", "importedProfile", "appliedProfile"},
    {"ProfileApplication", "importedPackage", "appliedProfile"},
};

constexpr std::pair<std::string_view, std::string_view> kMetaclasses[] = {
    // Up to 2.0 the parts of an interaction and realizations had other names.
    {"InteractionOccurrence", "InteractionUse"},
    {"Implementation", "InterfaceRealization"},
    {"EventOccurrence", "MessageOccurrenceSpecification"},
    {"ExecutionOccurrence", "BehaviorExecutionSpecification"},
};

/// Abstract types of features that tools leave out all the same.
constexpr std::pair<std::string_view, std::string_view> kImplied[] = {
    {"when", "TimeExpression"},
};

/// Features that elements have in files, and the metamodel lacks there.
constexpr std::pair<std::string_view, std::string_view> kLacking[] = {
    {"localPrecondition", "Constraint"},
    {"localPostcondition", "Constraint"},
    {"result", "OutputPin"},
    {"argument", "InputPin"},
    {"ownedStereotype", "Stereotype"},
    {"nestedInterface", "Interface"},
};

/// Features of owners that the metamodel lacks.
constexpr std::pair<std::string_view, std::string_view> kUncovered[] = {
    {"trigger", "Trigger"},
    {"deferrableTrigger", "Trigger"},
    {"guard", "Constraint"},
    {"preCondition", "Constraint"},
    {"postCondition", "Constraint"},
    {"stateInvariant", "Constraint"},
    {"value", "InputPin"},
    {"collection", "InputPin"},
    {"exception", "InputPin"},
    {"replyValue", "InputPin"},
    {"loopVariableInput", "InputPin"},
    {"structuredNodeInput", "InputPin"},
    {"structuredNodeOutput", "OutputPin"},
    {"loopVariable", "OutputPin"},
    {"endData", "LinkEndCreationData"},
    {"ownedEnd", "Property"},
    {"roleBinding", "Dependency"},
    {"AcceptCallAction.returnInformation", "OutputPin"},
    {"ReplyAction.returnInformation", "InputPin"},
};

constexpr std::string_view kPrimitives[] = {"Boolean", "Integer", "Real", "String", "UnlimitedNatural"};

/// What the composite features of a name agree on, over all metaclasses.
std::unordered_map<std::string_view, Metaclass const*> typesByName() {
  std::unordered_map<std::string_view, Metaclass const*> types;
  Metamodel::instance().forEach([&](Metaclass const& aMetaclass) {
    for (Feature const* const feature : aMetaclass.fOrder) {
      if (feature->fKind != Kind::Reference || !feature->fComposite) continue;
      auto const [known, isNew] = types.try_emplace(feature->fName, impliedType(*feature));
      if (!isNew && known->second != impliedType(*feature)) known->second = nullptr;
    }
  });
  return types;
}

std::string_view primitive(std::string_view aName) {
  auto const* const found = std::ranges::find(kPrimitives, aName);
  return found == std::end(kPrimitives) ? std::string_view() : *found;
}

}  // namespace

Feature const* featureCalled(Metaclass const& aMetaclass, std::string_view aName) {
  // What was stored once may follow from others today.
  Feature const* const known = aMetaclass.feature(aName);
  if (known != nullptr && !known->fDerived) return known;
  for (Renamed const& row : kFeatures) {
    if (row.fWritten != aName) continue;
    Metaclass const* const owner = Metamodel::instance().metaclass(row.fOwner);
    if (owner != nullptr && aMetaclass.isA(*owner)) return aMetaclass.feature(row.fName);
  }
  return known;
}

Metaclass const* metaclassCalled(std::string_view aName) {
  Metamodel const& metamodel = Metamodel::instance();
  if (Metaclass const* const found = metamodel.metaclass(aName)) return found;
  for (auto const& [written, name] : kMetaclasses)
    if (written == aName) return metamodel.metaclass(name);
  if (aName.empty() || aName.front() < 'a' || aName.front() > 'z') return nullptr;
  std::string capital(aName);
  capital.front() = static_cast<char>(capital.front() - 'a' + 'A');
  return metamodel.metaclass(capital);
}

Metaclass const* impliedType(Feature const& aFeature) {
  if (aFeature.fType != nullptr && !aFeature.fType->fAbstract) return aFeature.fType;
  for (auto const& [name, type] : kImplied)
    if (aFeature.fName == name) return Metamodel::instance().metaclass(type);
  return nullptr;
}

Metaclass const* impliedType(Metaclass const* aOwner, std::string_view aFeature,
                             std::string_view aOwnerType) {
  static auto const sTypes = typesByName();
  Metamodel const& metamodel = Metamodel::instance();
  std::string const qualified = std::string(aOwnerType) + '.' + std::string(aFeature);
  for (auto const& [name, type] : kUncovered)
    if (aOwner == nullptr && (name == aFeature || name == qualified)) return metamodel.metaclass(type);
  for (auto const& [name, type] : kLacking)
    if (aFeature == name) return metamodel.metaclass(type);
  if (aOwner != nullptr) return nullptr;
  auto const found = sTypes.find(aFeature);
  return found == sTypes.end() ? nullptr : found->second;
}

Feature const* placeOf(Metaclass const& aOwner, Metaclass const& aPart) {
  Feature const* place = nullptr;
  for (Feature const* const feature : aOwner.fOrder) {
    bool const isList = feature->fKind == Kind::Reference && feature->fComposite && feature->fMany;
    if (!isList || feature->fDerived || feature->fType == nullptr || !aPart.isA(*feature->fType)) continue;
    bool const isNearer =
        place == nullptr || (feature->fType != place->fType && feature->fType->isA(*place->fType));
    if (isNearer) place = feature;
  }
  return place;
}

Feature const* placeCalled(Metaclass const& aOwner, std::string_view aName, Metaclass const& aPart) {
  Feature const* const named = featureCalled(aOwner, aName);
  if (named == nullptr || !named->fComposite || named->fDerived) return named;
  Feature const* const place = aPart.isA(*named->fType) ? nullptr : placeOf(aOwner, aPart);
  return place == nullptr ? named : place;
}

std::string_view primitiveCalled(std::string_view aPath) {
  std::size_t const last = aPath.rfind("::");
  if (last == std::string_view::npos) return {};
  std::string_view const owner = aPath.substr(0, last);
  bool const isLibrary = owner.starts_with("UML Standard Profile::") &&
                         (owner.ends_with("::PrimitiveTypes") || owner.ends_with("::datatypes"));
  return isLibrary ? primitive(aPath.substr(last + 2)) : std::string_view();
}

std::string_view primitiveAt(std::string_view aAddress) {
  std::size_t hash = aAddress.find('#');
  // One tool has it as a folder.
  bool const isFolder = aAddress.find("/spec/UML/") != std::string_view::npos ||
                        aAddress.find("/spec/PrimitiveTypes/") != std::string_view::npos;
  if (hash == std::string_view::npos && isFolder) hash = aAddress.rfind('/');
  if (hash == std::string_view::npos) return {};
  std::string_view const file = aAddress.substr(0, hash);
  std::string_view fragment = aAddress.substr(hash + 1);
  fragment = fragment.substr(0, fragment.find('?'));
  // "#//String", "#_String", "#PrimitiveTypes.String", "#UML-PrimitiveTypes-String".
  std::size_t const last = fragment.find_last_of("/._-:");
  if (last != std::string_view::npos) fragment.remove_prefix(last + 1);
  std::string_view const found = primitive(fragment);
  if (found.empty()) return {};
  static constexpr std::string_view kLibraries[] = {
      "PrimitiveTypes", "omg.org/spec/UML/", "omg.org/UML/",   "uml.xml",           "UML.xmi",
      "uml2.xml",       "UML_METAMODELS",    "Superstructure", "eclipse.org/uml2/", "UML_Standard_Profile",
      "Primitive Types"};
  bool const isLibrary = std::any_of(std::begin(kLibraries), std::end(kLibraries),
                                     [&](auto aPart) { return file.find(aPart) != std::string_view::npos; });
  // Libraries of programming languages have their own String.
  bool const isOther = file.find("Java") != std::string_view::npos ||
                       file.find("XML") != std::string_view::npos ||
                       file.find("Ecore") != std::string_view::npos;
  return isLibrary && !isOther ? found : std::string_view();
}

}  // namespace umlmm::files
