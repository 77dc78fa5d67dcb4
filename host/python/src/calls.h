#pragma once

#include "python.h"
#include "vesk/host/Call.h"

namespace vesk::python {

/// Remembers which method the last call came to, for arguments of the same types. Only types that settle
/// the choice by themselves are remembered: published classes, which are never given back, and the plain
/// types of numbers and texts.
class CallCache {
 public:
  static constexpr int kMostArguments = 3;

  [[nodiscard]] host::MethodRecord const* find(host::Member const* member, host::CallForm form,
                                               PyObject* const* arguments, int count) const noexcept;
  void store(host::Member const* member, host::CallForm form, PyObject* const* arguments, int count,
             host::MethodRecord const& method) noexcept;
  /// Whether the call that is remembered appends an object to a list, which has a shorter way.
  [[nodiscard]] bool appends() const noexcept { return fAppends; }

 private:
  host::Member const* fMember = nullptr;
  host::MethodRecord const* fMethod = nullptr;
  host::CallForm fForm{};
  int fCount = -1;
  bool fAppends = false;
  PyTypeObject* fTypes[kMostArguments] = {};
};

/// Calls what `member` means with these arguments and answers the result as a new reference. `receiver` is
/// null unless the form is OnInstance. Throws a VeskError of kind Match, with all signatures, if nothing
/// fits.
[[nodiscard]] PyObject* call(CallCache& cache, host::Member const& member, host::CallForm form,
                             host::Instance* receiver, PyObject* const* arguments, int count);

/// Calls the published method of a name on an object, if its class has one: throws a TypeError if not.
Ref callPublished(PyObject* object, VeskInterned name, PyObject* const* arguments, int count);
/// Whether the published method of a name takes these arguments.
[[nodiscard]] bool accepts(PyObject* object, VeskInterned name, PyObject* const* arguments, int count);

/// Refuses keyword arguments, which published methods do not have.
void checkNoKeywords(PyObject* keywords, char const* what);

}  // namespace vesk::python
