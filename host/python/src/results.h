#pragma once

#include "python.h"
#include "vesk/host/Type.h"

namespace vesk::python {

/// The Python form of a value that stays the caller's: None for an absent value, a list for more than one.
[[nodiscard]] Ref toPython(host::Type const& type, VeskValue value);
/// The same for a value that is used up.
[[nodiscard]] Ref toPython(host::OwnedValue&& value);

/// A Python text of UTF-16 code units; lone surrogates and zeros are kept.
[[nodiscard]] Ref textFromUtf16(char16_t const* units, std::size_t count);
/// The same for texts that are mostly short and ASCII: a new reference, or null, without an error, for one
/// with zeros.
[[nodiscard]] PyObject* shortTextFromUtf16(char16_t const* units, std::size_t count);

}  // namespace vesk::python
