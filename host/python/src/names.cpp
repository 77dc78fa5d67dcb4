#include "names.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace vesk::python {

namespace {

constexpr std::array<std::string_view, 35> kReservedWords = {
    "False", "None",     "True",  "and",    "as",   "assert", "async",  "await",    "break",
    "class", "continue", "def",   "del",    "elif", "else",   "except", "finally",  "for",
    "from",  "global",   "if",    "import", "in",   "is",     "lambda", "nonlocal", "not",
    "or",    "pass",     "raise", "return", "try",  "while",  "with",   "yield"};

std::string lowered(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), [](unsigned char c) { return std::tolower(c); });
  return result;
}

/// How many insertions, deletions, replacements and swaps of neighbours turn one text into the other.
std::size_t editDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> before, last(b.size() + 1), row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) last[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      std::size_t const change = a[i - 1] == b[j - 1] ? 0 : 1;
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + change});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        row[j] = std::min(row[j], before[j - 2] + 1);
    }
    before = last;
    last = row;
  }
  return last[b.size()];
}

}  // namespace

PyObject* pythonName(VeskInterned name) {
  void*& front = name.record()->fFront;
  if (!front) [[unlikely]] {
    PyObject* text =
        checked(PyUnicode_FromStringAndSize(name.c_str(), static_cast<Py_ssize_t>(name.view().size())));
    PyUnicode_InternInPlace(&text);
    front = text;
  }
  return static_cast<PyObject*>(front);
}

VeskInterned internedName(PyObject* text) {
  Py_ssize_t size = 0;
  char const* chars = PyUnicode_AsUTF8AndSize(text, &size);
  if (!chars) throw PythonError();
  return internal::intern(std::string_view(chars, static_cast<std::size_t>(size)));
}

Ref pythonText(std::string_view text) {
  return Ref::checked(PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "replace"));
}

std::string utf8(PyObject* text) {
  Ref const bytes = Ref::checked(PyUnicode_AsEncodedString(text, "utf-8", "replace"));
  return {PyBytes_AS_STRING(bytes.get()), static_cast<std::size_t>(PyBytes_GET_SIZE(bytes.get()))};
}

std::string shortRepr(PyObject* object) {
  constexpr Py_ssize_t kLongest = 60;
  // Of what is long, the start is enough.
  bool const isLong = PyUnicode_CheckExact(object) || PyList_CheckExact(object) || PyTuple_CheckExact(object);
  Ref const start = isLong && PyObject_Size(object) > kLongest
                        ? Ref::checked(PySequence_GetSlice(object, 0, kLongest))
                        : Ref::shared(object);
  Ref text(PyObject_Repr(start.get()));
  if (!text) {
    PyErr_Clear();
    return Py_TYPE(object)->tp_name;
  }
  if (PyUnicode_GET_LENGTH(text.get()) <= kLongest) return utf8(text.get());
  return utf8(Ref::checked(PyUnicode_Substring(text.get(), 0, kLongest)).get()) + "...";
}

bool isReservedWord(std::string_view name) noexcept {
  return std::ranges::binary_search(kReservedWords, name);
}

std::string nearest(std::string_view name, std::vector<std::string> const& candidates) {
  std::string const wanted = lowered(name);
  std::size_t best = std::max<std::size_t>(1, name.size() / 3) + 1;
  std::string result;
  for (std::string const& candidate : candidates) {
    std::size_t const difference =
        std::max(candidate.size(), name.size()) - std::min(candidate.size(), name.size());
    if (difference >= best) continue;
    std::size_t const distance = editDistance(wanted, lowered(candidate));
    if (distance >= best) continue;
    best = distance;
    result = candidate;
  }
  return result;
}

std::string didYouMean(std::string_view name, std::vector<std::string> const& candidates) {
  std::string const meant = nearest(name, candidates);
  return meant.empty() ? meant : "; did you mean '" + meant + "'?";
}

}  // namespace vesk::python
