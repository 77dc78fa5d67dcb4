#pragma once

#include <array>
#include <string>
#include <vector>

#include "kelm_mi/families.h"
#include "lum/visibility.h"
#include "vesk/fwd.h"

/// Makers of the class infos of sequences of references and their iterators. An info keeps nothing of the
/// sequences; it fills its class when the host asks. `Immutable` before `Sequence` or
/// `Iterator` means that the sequence can't be changed, before `Ref` that the elements are read-only. The
/// info belongs to the caller until it is handed to the host. Texts are copied.
///
/// `aElementClass` and `aIteratorClass` are full names. `aBases` are the full names of the direct
/// superclasses of the changeable element class, whatever the form: sequences stand to each other as their
/// elements do.
namespace Kelm::mi {

UMLMM_API vesk::VeskClassInfo* createSequenceOfRefClassInfo(char const* aShortName, char const* aDescription,
                                                            char const* aClassName, char const* aElementClass,
                                                            char const* aIteratorClass,
                                                            std::vector<std::string> const& aBases);
UMLMM_API vesk::VeskClassInfo* createSequenceOfImmutableRefClassInfo(
    char const* aShortName, char const* aDescription, char const* aClassName, char const* aElementClass,
    char const* aIteratorClass, std::vector<std::string> const& aBases);
UMLMM_API vesk::VeskClassInfo* createImmutableSequenceOfRefClassInfo(
    char const* aShortName, char const* aDescription, char const* aClassName, char const* aElementClass,
    char const* aIteratorClass, std::vector<std::string> const& aBases);
UMLMM_API vesk::VeskClassInfo* createImmutableSequenceOfImmutableRefClassInfo(
    char const* aShortName, char const* aDescription, char const* aClassName, char const* aElementClass,
    char const* aIteratorClass, std::vector<std::string> const& aBases);

UMLMM_API vesk::VeskClassInfo* createIteratorOfRefClassInfo(char const* aShortName, char const* aDescription,
                                                            char const* aClassName,
                                                            char const* aElementClass);
UMLMM_API vesk::VeskClassInfo* createIteratorOfImmutableRefClassInfo(char const* aShortName,
                                                                     char const* aDescription,
                                                                     char const* aClassName,
                                                                     char const* aElementClass);
UMLMM_API vesk::VeskClassInfo* createImmutableIteratorOfRefClassInfo(char const* aShortName,
                                                                     char const* aDescription,
                                                                     char const* aClassName,
                                                                     char const* aElementClass);
UMLMM_API vesk::VeskClassInfo* createImmutableIteratorOfImmutableRefClassInfo(char const* aShortName,
                                                                              char const* aDescription,
                                                                              char const* aClassName,
                                                                              char const* aElementClass);

/// One of the four forms in which a family has sequences of references, and iterators over them.
struct RefSequenceForm {
  Access fAccess;
  Access fElements;
  decltype(&createSequenceOfRefClassInfo) fCreateSequence;
  decltype(&createIteratorOfRefClassInfo) fCreateIterator;

  vesk::VeskClassInfo* sequenceInfo(vesk::ClassFamily const& aFamily,
                                    std::vector<std::string> const& aBases) const {
    vesk::VeskInterned const name = aFamily.sequence(fAccess, fElements);
    return fCreateSequence(aFamily.shortName(name),
                           fAccess == Access::Changeable ? "A sequence whose values can be changed"
                                                         : "A sequence whose values cannot be changed",
                           name.c_str(), aFamily.reference(fElements).c_str(),
                           aFamily.iterator(fAccess, fElements).c_str(), aBases);
  }
  /// The description goes by the elements, not by the list that is walked.
  vesk::VeskClassInfo* iteratorInfo(vesk::ClassFamily const& aFamily) const {
    vesk::VeskInterned const name = aFamily.iterator(fAccess, fElements);
    return fCreateIterator(aFamily.shortName(name),
                           fElements == Access::Changeable
                               ? "An iterator for traversing a modifiable list"
                               : "An iterator for traversing a non-modifiable list",
                           name.c_str(), aFamily.reference(fElements).c_str());
  }
};

/// In the order in which they are announced.
inline constexpr std::array<RefSequenceForm, 4> kRefSequenceForms{{
    {Access::Changeable, Access::Changeable, &createSequenceOfRefClassInfo, &createIteratorOfRefClassInfo},
    {Access::Changeable, Access::ReadOnly, &createSequenceOfImmutableRefClassInfo,
     &createIteratorOfImmutableRefClassInfo},
    {Access::ReadOnly, Access::Changeable, &createImmutableSequenceOfRefClassInfo,
     &createImmutableIteratorOfRefClassInfo},
    {Access::ReadOnly, Access::ReadOnly, &createImmutableSequenceOfImmutableRefClassInfo,
     &createImmutableIteratorOfImmutableRefClassInfo},
}};

}  // namespace Kelm::mi
