#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "python.h"
#include "vesk/interned.h"

namespace vesk::python {

/// The interned Python text of a name, borrowed: it lives as long as the process.
[[nodiscard]] PyObject* pythonName(VeskInterned name);
/// The name of a Python text. Throws PythonError for an object that is no text.
[[nodiscard]] VeskInterned internedName(PyObject* text);

[[nodiscard]] Ref pythonText(std::string_view text);
/// The UTF-8 form of a Python text; lone surrogates become "?".
[[nodiscard]] std::string utf8(PyObject* text);
/// What `repr` gives, cut to a length fit for a message.
[[nodiscard]] std::string shortRepr(PyObject* object);

/// Whether scripts can't write the name as an attribute, so that it gets a second one: `class_` for `class`.
[[nodiscard]] bool isReservedWord(std::string_view name) noexcept;

/// The candidate that `name` was probably meant to be; empty if none is near.
[[nodiscard]] std::string nearest(std::string_view name, std::vector<std::string> const& candidates);
/// "; did you mean 'x'?" for the nearest candidate, or nothing.
[[nodiscard]] std::string didYouMean(std::string_view name, std::vector<std::string> const& candidates);

}  // namespace vesk::python
