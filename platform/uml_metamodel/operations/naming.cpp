#include <algorithm>
#include <set>
#include <string>
#include <unordered_map>

#include "engine/computed.h"
#include "operations/Imports.h"
#include "operations/UnionLeaves.h"
#include "operations/queries.h"
#include "operations/results.h"
#include "uml_metamodel/umlmm/BehavioralFeature.h"
#include "uml_metamodel/umlmm/NamedElement.h"
#include "uml_metamodel/umlmm/Namespace.h"
#include "uml_metamodel/umlmm/PackageableElement.h"

namespace umlmm {

namespace {

constexpr char kSource[] = "uml_metamodel/operations/naming";

}  // namespace

namespace queries {

namespace {

constexpr std::u16string_view kSeparator = u"::";

UnionLeaves sOwnedMembers(ids::Namespace::OwnedMember);

bool isBehavioral(Element const& aElement) noexcept {
  return isA(aElement, ids::metaclass::BehavioralFeature);
}

/// The types of the parameters, position by position; null for an absent type.
Elements signatureOf(Element const& aBehavioral) {
  Elements types;
  for (Element* const parameter : values::elements(aBehavioral, ids::BehavioralFeature::OwnedParameter))
    types.push_back(values::reference(*parameter, ids::TypedElement::Type));
  return types;
}

bool haveCommonName(Names const& aLeft, Names const& aRight) {
  return std::any_of(aLeft.begin(), aLeft.end(), [&](std::u16string_view aName) {
    return std::find(aRight.begin(), aRight.end(), aName) != aRight.end();
  });
}

/// The names that a namespace has for elements, with its imports followed once for all questions.
class NamesIn {
 public:
  explicit NamesIn(Element const& aNamespace) : fNamespace(aNamespace), fImports(aNamespace) {}

  Names of(Element const& aMember) const {
    if (namespaceOf(aMember) != &fNamespace) return fImports.namesOf(aMember);
    std::u16string_view const name = nameOf(aMember);
    return name.empty() ? Names() : Names{name};
  }

 private:
  Element const& fNamespace;
  Imports fImports;
};

/// Members of one name, and whether each could be told from those before it.
class Namesakes {
 public:
  bool add(Element const& aMember) {
    return isBehavioral(aMember) ? addSignature(aMember) : addOther(aMember);
  }

 private:
  bool addSignature(Element const& aMember) { return fSignatures.insert(signatureOf(aMember)).second; }
  bool addOther(Element const& aMember) {
    int const metaclass = engine::metaclassOf(aMember);
    for (int const other : fMetaclasses)
      if (metaclassesCollide(metaclass, other)) return false;
    fMetaclasses.push_back(metaclass);
    return true;
  }

  // Distinct metaclasses only, so that the list stays short.
  std::vector<int> fMetaclasses;
  std::set<Elements> fSignatures;
};

}  // namespace

bool metaclassesCollide(int aLeft, int aRight) noexcept {
  return engine::conforms(aLeft, aRight) || engine::conforms(aRight, aLeft);
}

Elements allNamespaces(Element const& aNamed) {
  Elements all;
  for (Element* next = namespaceOf(aNamed); next != nullptr; next = namespaceOf(*next)) all.push_back(next);
  return all;
}

Kelm::StringObject* qualifiedName(Element const& aNamed) {
  std::size_t length = 0;
  for (Element const* next = &aNamed; next != nullptr; next = namespaceOf(*next)) {
    std::size_t const size = nameOf(*next).size();
    if (size == 0) return nullptr;
    length += size + (length == 0 ? 0 : kSeparator.size());
  }
  // Written from the end, as the walk goes outwards.
  constexpr std::size_t kUsual = 256;
  char16_t usual[kUsual];
  std::u16string longer;
  if (length > kUsual) longer.resize(length);
  char16_t* const start = length > kUsual ? longer.data() : usual;
  char16_t* place = start + length;
  auto const put = [&](std::u16string_view aText) {
    place -= aText.size();
    std::copy(aText.begin(), aText.end(), place);
  };
  put(nameOf(aNamed));
  for (Element const* next = namespaceOf(aNamed); next != nullptr; next = namespaceOf(*next)) {
    put(kSeparator);
    put(nameOf(*next));
  }
  return Kelm::StringObject::make({start, length});
}

Elements ownedMembers(Element const& aNamespace) {
  Elements owned;
  if ((aNamespace.marks() & Element::HasContents) == 0) return owned;
  for (engine::FeatureIndex const index : sOwnedMembers.of(engine::metaclassOf(aNamespace)))
    engine::collect(aNamespace, engine::feature(index), owned);
  return owned;
}

Elements members(Element const& aNamespace) {
  return engine::valuesOf(aNamespace, engine::feature(ids::Namespace::Member));
}

Names namesOfMember(Element const& aNamespace, Element const* aMember) {
  return aMember == nullptr ? Names() : NamesIn(aNamespace).of(*aMember);
}

bool isDistinguishableFrom(Element const& aNamed, Element const* aOther, Element const* aNamespace) {
  if (aOther == nullptr || aNamespace == nullptr) return true;
  bool const isSignature = isBehavioral(aNamed);
  if (isSignature && (!isBehavioral(*aOther) || aOther == &aNamed)) return true;
  if (!isSignature && !metaclassesCollide(engine::metaclassOf(aNamed), engine::metaclassOf(*aOther)))
    return true;
  NamesIn const names(*aNamespace);
  if (!haveCommonName(names.of(aNamed), names.of(*aOther))) return true;
  return isSignature && signatureOf(aNamed) != signatureOf(*aOther);
}

bool membersAreDistinguishable(Element const& aNamespace) {
  NamesIn const names(aNamespace);
  std::unordered_map<std::u16string_view, Namesakes> byName;
  for (Element* const member : members(aNamespace))
    for (std::u16string_view const name : names.of(*member))
      if (!byName[name].add(*member)) return false;
  return true;
}

}  // namespace queries

namespace NSInterface {

using queries::given;
using queries::makeResult;

Kelm::ImmutableSequence<ImmutableNamespace> NamedElementIntf::allNamespaces(
    Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return makeResult<ImmutableNamespace>(aDeviant, queries::allNamespaces(*this));
}

String NamedElementIntf::separator(Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::makeText(queries::kSeparator);
}

Boolean NamedElementIntf::isDistinguishableFrom(Kelm::Deviant const& aDeviant,
                                                ImmutableNamedElement const& aN,
                                                ImmutableNamespace const& aNs) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::isDistinguishableFrom(*this, given(aN), given(aNs));
}

Boolean BehavioralFeatureIntf::isDistinguishableFrom(Kelm::Deviant const& aDeviant,
                                                     ImmutableNamedElement const& aN,
                                                     ImmutableNamespace const& aNs) const {
  return NamedElementIntf::isDistinguishableFrom(aDeviant, aN, aNs);
}

Kelm::ImmutableSequence<String> NamespaceIntf::getNamesOfMember(Kelm::Deviant const& aDeviant,
                                                                ImmutableNamedElement const& aElement) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::makeTexts(aDeviant, queries::namesOfMember(*this, given(aElement)));
}

Boolean NamespaceIntf::membersAreDistinguishable(Kelm::Deviant const& aDeviant) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return queries::membersAreDistinguishable(*this);
}

Kelm::ImmutableSequence<ImmutablePackageableElement> NamespaceIntf::importMembers(
    Kelm::Deviant const& aDeviant, ImmutablePackageableElement const& aImps) const {
  engine::checkReadable(*this, aDeviant, kSource);
  return makeResult<ImmutablePackageableElement>(aDeviant, queries::importMembers(*this, given(aImps)));
}

Kelm::ImmutableSequence<ImmutablePackageableElement> NamespaceIntf::excludeCollisions(
    Kelm::Deviant const& aDeviant, ImmutablePackageableElement const& aImps) const {
  engine::checkReadable(*this, aDeviant, kSource);
  auto* const candidate = const_cast<engine::Element*>(given(aImps));
  return makeResult<ImmutablePackageableElement>(
      aDeviant, candidate == nullptr ? queries::Elements() : queries::Elements{candidate});
}

}  // namespace NSInterface

}  // namespace umlmm
