#include "kelm_mi/families.h"

#include <string>
#include <unordered_map>

#include "kelm/scriptNames.h"

namespace Kelm::mi {

namespace {

using vesk::ClassFamily;
using vesk::VeskInterned;

VeskInterned joined(std::initializer_list<std::string_view> aParts) {
  std::string text;
  for (std::string_view const part : aParts) text += part;
  return vesk::internal::makeInterned(std::move(text));
}

/// `aClass` is the changeable class of references, "umlmm.Class", whose text the family refers to.
ClassFamily makeFamily(VeskInterned aClass) {
  using namespace scriptNames;
  std::string_view const full = aClass.view();
  std::size_t const start = full.rfind('.') + 1;
  std::string_view const package = full.substr(0, start);
  std::string_view const name = full.substr(start);
  auto const prefix = [](Access aAccess) {
    return aAccess == Access::ReadOnly ? kImmutable : std::string_view();
  };

  ClassFamily::Names names;
  auto next = names.begin();
  constexpr Access both[] = {Access::Changeable, Access::ReadOnly};
  for (Access const access : both) *next++ = joined({package, prefix(access), name});
  for (Access const elements : both)
    for (Access const access : both)
      *next++ = joined({package, prefix(access), kSequenceOf, prefix(elements), name});
  for (Access const elements : both)
    for (Access const access : both)
      *next++ = joined({package, prefix(elements), name, prefix(access), kIterator});
  return {package.substr(0, package.empty() ? 0 : package.size() - 1), name, names};
}

ClassFamily const& familyOf(VeskInterned aClass) {
  // Never destroyed: class infos of all libraries refer to it.
  static auto& sFamilies = *new std::unordered_map<VeskInterned, ClassFamily>;
  auto const found = sFamilies.find(aClass);
  if (found != sFamilies.end()) return found->second;
  return sFamilies.emplace(aClass, makeFamily(aClass)).first->second;
}

}  // namespace

ClassFamily const& classFamily(std::string_view aPackage, std::string_view aName) {
  return familyOf(joined({aPackage, ".", aName}));
}

ClassFamily const& familyOfReferences(std::string_view aClass, Access aAccess) {
  std::size_t const start = aClass.rfind('.') + 1;
  std::string_view name = aClass.substr(start);
  if (aAccess == Access::ReadOnly && name.starts_with(scriptNames::kImmutable))
    name.remove_prefix(scriptNames::kImmutable.size());
  return familyOf(joined({aClass.substr(0, start), name}));
}

}  // namespace Kelm::mi
