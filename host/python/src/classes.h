#pragma once

#include <string>
#include <vector>

#include "calls.h"
#include "plans.h"
#include "python.h"
#include "vesk/VeskClassInfo.h"
#include "vesk/host/ClassRecord.h"

namespace vesk::python {

/// What the front keeps for a class of the host, made with the Python class when that is first touched and
/// kept as long as the process.
struct ClassFront {
  host::ClassRecord* fRecord = nullptr;
  PyTypeObject* fType = nullptr;
  SequenceHook const* fSequence = nullptr;  ///< for classes of lists
  host::Type* fElementType = nullptr;       ///< of a list, looked up when first asked for
  CallCache fConstruction;
  Plans fPlans;
  /// Names of the class's literals in order: static methods without arguments that give one of its instances.
  std::vector<VeskInterned> fLiterals;
  /// By Py_LT to Py_GE, the published method that compares; null for none.
  host::Member const* fComparisons[6] = {};
  host::Member const* fToText = nullptr;  ///< the published `toString`

  [[nodiscard]] host::Type const& elementType() {
    if (!fElementType) fElementType = &host::typeOf(internal::intern(fSequence->elementType()));
    return *fElementType;
  }
};

/// The class of classes: a Python class with its front.
struct ClassObject {
  PyHeapTypeObject fHead;
  ClassFront* fFront;
};

void prepareMetaType();  // the type is gMetaType of instances.h

/// Makes the Python class of a class of the host, unless it is made; fills the class and those above it.
[[nodiscard]] ClassFront& frontOf(host::ClassRecord& record);
/// The front of an instance's class, which is made by then.
[[nodiscard]] inline ClassFront& frontOf(host::Instance& instance) noexcept {
  return *static_cast<ClassFront*>(instance.classRecord().fFront);
}

/// Objects of a class are made by a plan from now on; see Plans. The names have "owner" among them.
void planMaking(PyObject* type, PyObject* names, PyTypeObject* ownerType, PyObject* given, PyObject* list);

/// Whether a class is filled as one with literals that are read from text.
[[nodiscard]] bool hasLiterals(host::ClassRecord& record);
/// Whether a class has literals and reads them from text, so that a literal's name stands for the literal.
[[nodiscard]] bool isEnumeration(host::ClassRecord& record);
/// The literals' names, such as "None, Shared, Composite".
[[nodiscard]] std::string literalNames(host::ClassRecord& record);

/// Public names of all members of a class, inherited ones included.
[[nodiscard]] std::vector<std::string> memberNames(PyTypeObject* type);

/// Puts a member into a class that is made, and into the slots of its type and of all below it.
void setInType(PyTypeObject* type, PyObject* name, PyObject* member);

}  // namespace vesk::python
