#pragma once

#include <string>
#include <vector>

#include "lum/visibility.h"
#include "vesk/fwd.h"

/// Makers of the class infos of sequences of references and their iterators. `Immutable` before `Sequence` or
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

}  // namespace Kelm::mi
