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

/// By the names of both classes of references. Never destroyed: class infos of all libraries refer to
/// families.
std::unordered_map<VeskInterned, ClassFamily const*>& families() {
  static auto& sFamilies = *new std::unordered_map<VeskInterned, ClassFamily const*>;
  return sFamilies;
}

/// The family of a changeable class of references.
ClassFamily const& familyOf(VeskInterned aClass) {
  ClassFamily const*& family = families()[aClass];
  if (family == nullptr) family = new ClassFamily(makeFamily(aClass));
  return *family;
}

}  // namespace

ClassFamily const& classFamily(std::string_view aPackage, std::string_view aName) {
  return familyOf(joined({aPackage, ".", aName}));
}

ClassFamily const& familyOfReferences(VeskInterned aClass, Access aAccess) {
  auto const found = families().find(aClass);
  if (found != families().end() && found->second != nullptr) return *found->second;
  std::string_view const full = aClass.view();
  std::size_t const start = full.rfind('.') + 1;
  std::string_view name = full.substr(start);
  if (aAccess == Access::ReadOnly && name.starts_with(scriptNames::kImmutable))
    name.remove_prefix(scriptNames::kImmutable.size());
  ClassFamily const& family = familyOf(joined({full.substr(0, start), name}));
  families()[aClass] = &family;
  return family;
}

}  // namespace Kelm::mi
