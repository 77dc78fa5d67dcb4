#include <algorithm>
#include <set>
#include <string>
#include <unordered_map>

#include "queries/Imports.h"
#include "queries/UnionLeaves.h"
#include "queries/queries.h"

namespace umlmm::queries {

namespace {

UnionLeaves sOwnedMembers(ids::Namespace::OwnedMember);

bool isBehavioral(Reading aElement) noexcept { return aElement.isA(ids::metaclass::BehavioralFeature); }

/// The types of the parameters, position by position; null for an absent type.
Elements signatureOf(Reading aBehavioral) {
  Elements types;
  for (Reading const parameter : aBehavioral.list(ids::BehavioralFeature::OwnedParameter))
    types.push_back(parameter.reference(ids::TypedElement::Type).element());
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
  explicit NamesIn(Reading aNamespace) : fNamespace(aNamespace), fImports(aNamespace) {}

  Names of(Reading aMember) const {
    if (namespaceOf(aMember) != fNamespace) return fImports.namesOf(*aMember);
    std::u16string_view const name = nameOf(aMember);
    return name.empty() ? Names() : Names{name};
  }

 private:
  Reading fNamespace;
  Imports fImports;
};

/// Members of one name, and whether each could be told from those before it.
class Namesakes {
 public:
  bool add(Reading aMember) { return isBehavioral(aMember) ? addSignature(aMember) : addOther(aMember); }

 private:
  bool addSignature(Reading aMember) { return fSignatures.insert(signatureOf(aMember)).second; }
  bool addOther(Reading aMember) {
    int const metaclass = aMember.metaclass();
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

Elements allNamespaces(Reading aNamed) {
  Elements all;
  for (Reading next = namespaceOf(aNamed); next; next = namespaceOf(next)) all.push_back(next.element());
  return all;
}

Kelm::StringObject* qualifiedName(Reading aNamed) {
  std::size_t length = 0;
  for (Reading next = aNamed; next; next = namespaceOf(next)) {
    std::size_t const size = nameOf(next).size();
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
  for (Reading next = namespaceOf(aNamed); next; next = namespaceOf(next)) {
    put(kSeparator);
    put(nameOf(next));
  }
  return Kelm::StringObject::make({start, length});
}

Elements ownedMembers(Reading aNamespace) {
  Elements owned;
  if (!aNamespace.hadParts()) return owned;
  for (engine::FeatureIndex const index : sOwnedMembers.of(aNamespace.metaclass()))
    aNamespace.collect(index, owned);
  return owned;
}

Elements members(Reading aNamespace) { return aNamespace.values(ids::Namespace::Member); }

Names namesOfMember(Reading aNamespace, Reading aMember) {
  return aMember ? NamesIn(aNamespace).of(aMember) : Names();
}

bool isDistinguishableFrom(Reading aNamed, Reading aOther, Reading aNamespace) {
  if (!aOther || !aNamespace) return true;
  bool const isSignature = isBehavioral(aNamed);
  if (isSignature && (!isBehavioral(aOther) || aOther == aNamed)) return true;
  if (!isSignature && !metaclassesCollide(aNamed.metaclass(), aOther.metaclass())) return true;
  NamesIn const names(aNamespace);
  if (!haveCommonName(names.of(aNamed), names.of(aOther))) return true;
  return isSignature && signatureOf(aNamed) != signatureOf(aOther);
}

bool membersAreDistinguishable(Reading aNamespace) {
  NamesIn const names(aNamespace);
  std::unordered_map<std::u16string_view, Namesakes> byName;
  for (Element* const element : members(aNamespace)) {
    Reading const member = aNamespace.on(*element);
    for (std::u16string_view const name : names.of(member))
      if (!byName[name].add(member)) return false;
  }
  return true;
}

}  // namespace umlmm::queries
