#include "model_files/dialect/older.h"

#include <algorithm>
#include <string>

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
    {"Activity", "ownedNode", "node"},
    {"Activity", "ownedEdge", "edge"},
    {"Activity", "ownedGroup", "group"},
    {"Interaction", "ownedFragment", "fragment"},
    {"Element", "ownedComments", "ownedComment"},
    {"BehavioredClassifier", "ownedRealization", "interfaceRealization"},
    {"BehavioredClassifier", "implementation", "interfaceRealization"},
    {"Property", "datatype", "datatype"},
};

constexpr std::pair<std::string_view, std::string_view> kMetaclasses[] = {
    // Up to 2.0 the parts of an interaction and realizations had other names.
    {"InteractionOccurrence", "InteractionUse"},
    {"Implementation", "InterfaceRealization"},
    {"EventOccurrence", "MessageOccurrenceSpecification"},
    {"Stop", "DestructionOccurrenceSpecification"},
};

/// Abstract types of features that tools leave out all the same.
constexpr std::pair<std::string_view, std::string_view> kImplied[] = {
    {"when", "TimeExpression"},
};

constexpr std::string_view kPrimitives[] = {"Boolean", "Integer", "Real", "String", "UnlimitedNatural"};

}  // namespace

Feature const* featureCalled(Metaclass const& aMetaclass, std::string_view aName) {
  // What was stored once may follow from others today.
  Feature const* const known = aMetaclass.feature(aName);
  if (known != nullptr && !known->fDerived) return known;
  for (Renamed const& row : kFeatures)
    if (row.fWritten == aName && aMetaclass.isA(*Metamodel::instance().metaclass(row.fOwner)))
      return aMetaclass.feature(row.fName);
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

std::string_view primitiveAt(std::string_view aAddress) {
  std::size_t const hash = aAddress.find('#');
  if (hash == std::string_view::npos) return {};
  std::string_view const file = aAddress.substr(0, hash);
  std::string_view fragment = aAddress.substr(hash + 1);
  fragment = fragment.substr(0, fragment.find('?'));
  // "#//String", "#_String", "#PrimitiveTypes.String", "#UML-PrimitiveTypes-String".
  std::size_t const last = fragment.find_last_of("/._-:");
  if (last != std::string_view::npos) fragment.remove_prefix(last + 1);
  auto const* const found = std::find(std::begin(kPrimitives), std::end(kPrimitives), fragment);
  if (found == std::end(kPrimitives)) return {};
  static constexpr std::string_view kLibraries[] = {
      "PrimitiveTypes", "omg.org/spec/UML/", "omg.org/UML/",   "uml.xml",  "UML.xmi",
      "uml2.xml",       "UML_METAMODELS",    "Superstructure", "uml2.org", "UML_Standard_Profile"};
  bool const isLibrary = std::any_of(std::begin(kLibraries), std::end(kLibraries),
                                     [&](auto aPart) { return file.find(aPart) != std::string_view::npos; });
  // Libraries of programming languages have their own String.
  bool const isOther = file.find("Java") != std::string_view::npos ||
                       file.find("XML") != std::string_view::npos ||
                       file.find("Ecore") != std::string_view::npos;
  return isLibrary && !isOther ? *found : std::string_view();
}

}  // namespace umlmm::files
