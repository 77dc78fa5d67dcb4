#include "names.h"

namespace Kelm::mi {

namespace {

constexpr std::string_view kImmutable = "Immutable";
constexpr std::string_view kSequenceOf = "SequenceOf";

std::string_view withoutPrefix(std::string_view aText, std::string_view aPrefix) {
  return aText.starts_with(aPrefix) ? aText.substr(aPrefix.size()) : aText;
}

}  // namespace

ClassName splitClassName(std::string_view aFullName) noexcept {
  std::size_t const start = aFullName.rfind('.') + 1;
  return {aFullName.substr(0, start), aFullName.substr(start)};
}

std::string sequenceClassName(SequenceForm aForm, std::string_view aElementClass) {
  ClassName const element = splitClassName(aElementClass);
  std::string result(element.fPackage);
  if (aForm.fImmutable) result += kImmutable;
  result += kSequenceOf;
  if (aForm.fImmutableElements) result += kImmutable;
  return result += element.fShort;
}

std::string changeableClassName(std::string_view aFullName) {
  ClassName const name = splitClassName(aFullName);
  return std::string(name.fPackage).append(withoutPrefix(name.fShort, kImmutable));
}

std::string changeableSequenceClass(std::string_view aDeclared, bool aOfElements, bool aWritable) {
  if (!aOfElements && !aWritable) return std::string(aDeclared);
  ClassName const declared = splitClassName(aDeclared);
  std::string_view const element = withoutPrefix(withoutPrefix(declared.fShort, kImmutable), kSequenceOf);
  std::string const elementClass =
      std::string(declared.fPackage).append(aOfElements ? withoutPrefix(element, kImmutable) : element);
  return sequenceClassName({.fImmutable = !aWritable, .fImmutableElements = false}, elementClass);
}

}  // namespace Kelm::mi
