#pragma once

#include <array>
#include <cstddef>

#include "python.h"

namespace vesk::python {

/// How objects of a class are made from keywords and put into a list of their owner, as the Python that makes
/// them has found it out once: the owner tells by one attribute what the constructor takes, the other
/// keywords are set, and the object is appended to a list of the owner. Done here it takes a third of the
/// time.
///
/// A plan is known by the names of the keywords and the owner's class. A class keeps a few, the last ones.
class Plans {
 public:
  /// The names are a tuple of interned ones, with "owner" at `ownerAt`.
  void add(PyObject* names, std::size_t ownerAt, PyTypeObject* ownerType, PyObject* given, PyObject* list);
  /// Makes an object by a plan, or answers null without an error if there is none. When a step raises, the
  /// object is destroyed, and PythonError is thrown.
  [[nodiscard]] Ref make(PyObject* type, PyObject* names, PyObject* const* values) const;

 private:
  struct Plan {
    Ref fNames;
    std::size_t fOwnerAt = 0;
    Ref fOwnerType;
    Ref fGiven;
    Ref fList;
  };

  static constexpr std::size_t kMost = 8;
  std::array<Plan, kMost> fPlans;
  std::size_t fNext = 0;
};

}  // namespace vesk::python
