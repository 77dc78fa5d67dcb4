#pragma once

#include <string>
#include <string_view>

/// How the names of a script class and of the classes around it are made from each other.
namespace Kelm::mi {

/// "umlmm.Class" gives {"umlmm.", "Class"}; a name without a package has an empty first part.
struct ClassName {
  std::string_view fPackage;
  std::string_view fShort;
};
ClassName splitClassName(std::string_view aFullName) noexcept;

/// The parts of the name of a sequence class of elements: "umlmm.ImmutableSequenceOfImmutableClass".
struct SequenceForm {
  bool fImmutable;
  bool fImmutableElements;
};
/// The sequence class of a changeable element class ("umlmm.Class").
std::string sequenceClassName(SequenceForm aForm, std::string_view aElementClass);
/// The changeable twin of an element class: "umlmm.Class" for itself and for "umlmm.ImmutableClass".
std::string changeableClassName(std::string_view aFullName);

/// What a changeable instance shows of a many-valued feature whose declared type is the read-only sequence
/// class `aDeclared`: for a feature of elements that can be written "umlmm.SequenceOfClass", for one that
/// can't "umlmm.ImmutableSequenceOfClass", for values ("umlmm.ImmutableSequenceOfString")
/// "umlmm.SequenceOfString" or nothing other than the declared class.
std::string changeableSequenceClass(std::string_view aDeclared, bool aOfElements, bool aWritable);

}  // namespace Kelm::mi
