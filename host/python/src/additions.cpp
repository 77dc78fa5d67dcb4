#include "additions.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "classes.h"
#include "errors.h"
#include "instances.h"
#include "lists.h"
#include "names.h"
#include "packages.h"
#include "results.h"
#include "vesk/VeskClassInfo.h"
#include "vesk/VeskError.h"
#include "vesk/host/PackageRecord.h"

namespace vesk::python {

namespace {

using host::ClassRecord;

/// The special members that can be added, by which Python's syntax and its modules reach objects; the three
/// that are ours make an object with keywords, and let a class be iterated and subscripted.
constexpr std::array<std::string_view, 23> kSpecialNames = {
    "__bool__",      "__class_getitem__", "__class_iter__", "__construct__", "__contains__", "__copy__",
    "__deepcopy__",  "__delitem__",       "__enter__",      "__eq__",        "__exit__",     "__format__",
    "__getitem__",   "__hash__",          "__iter__",       "__len__",       "__ne__",       "__reduce__",
    "__reduce_ex__", "__repr__",          "__reversed__",   "__setitem__",   "__str__"};
static_assert(std::ranges::is_sorted(kSpecialNames));

bool isSpecial(std::string_view name) noexcept { return name.starts_with("__") && name.ends_with("__"); }

std::string quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

// --- kinds

/// Classes of different sorts never stand above one another.
enum class Sort : std::uint8_t {
  Reference,  ///< and classes without a family, such as enumerations
  List,
  Iterator,
  OfFamily  ///< belongs to a family, but is none of its forms
};
constexpr std::size_t kSorts = 4;

Sort sortOf(ClassRecord const& cls) {
  constexpr std::array kAccesses = {Access::Changeable, Access::ReadOnly};
  if (cls.info().getSequenceHook()) return Sort::List;
  ClassFamily const* const family = cls.info().family();
  if (!family) return Sort::Reference;
  for (Access const access : kAccesses) {
    if (family->reference(access) == cls.fName) return Sort::Reference;
    for (Access const elements : kAccesses)
      if (family->iterator(access, elements) == cls.fName) return Sort::Iterator;
  }
  return Sort::OfFamily;
}

/// What members are added to: a class and all below it, or all classes on one of the front's own bases.
struct Kind {
  std::string fName;
  Sort fSort;
  ClassRecord* fClass;
  PyTypeObject* fBase;

  [[nodiscard]] bool covers(ClassRecord& cls) const {
    if (fClass) return cls.distanceTo(*fClass) >= 0;
    return fBase == &gListType || hasLiterals(cls);
  }
  /// The Python class that is there by now; null for one that is made later.
  [[nodiscard]] PyTypeObject* type() const {
    if (fBase) return fBase;
    return fClass->fFront ? static_cast<ClassFront*>(fClass->fFront)->fType : nullptr;
  }
};

Kind kindOf(PyObject* name) {
  std::string const text = utf8(name);
  if (text == "List") return {text, Sort::List, nullptr, &gListType};
  if (text == "Enumeration") return {text, Sort::Reference, nullptr, &gEnumerationType};
  ClassRecord& cls = classToExtend(name);
  return {text, sortOf(cls), &cls, nullptr};
}

// --- what is added

using Additions = std::map<std::string, PyObject*, std::less<>>;

/// A dictionary of members by kind; as permanent as the classes.
Additions& additions() {
  static auto& sAdditions = *new Additions;
  return sAdditions;
}

/// Added descriptors that take values.
std::unordered_set<PyObject*>& settable() {
  static auto& sSettable = *new std::unordered_set<PyObject*>;
  return sSettable;
}

PyObject* membersOf(std::string_view kind) {
  auto const found = additions().find(kind);
  return found == additions().end() ? nullptr : found->second;
}

// --- published names

template <class Visit>
void forEachClass(Sort sort, Visit visit) {
  for (host::PackageRecord* package : host::packages())
    for (ClassRecord* cls : package->classes())
      if (sortOf(*cls) == sort) visit(*cls);
}

/// All names that classes of a sort publish: mostly told by their infos, so that none of them is filled.
class PublishedNames {
 public:
  static bool contain(Sort sort, std::string_view name) {
    static std::array<PublishedNames, kSorts>& sNames = *new std::array<PublishedNames, kSorts>;
    PublishedNames& names = sNames[static_cast<std::size_t>(sort)];
    std::size_t classes = 0;
    for (host::PackageRecord* package : host::packages()) classes += package->classes().size();
    if (names.fClasses != classes) names.read(sort);
    names.fClasses = classes;  // until another library brings more
    return names.fNames.contains(name);
  }

 private:
  void read(Sort sort) {
    forEachClass(sort, [this](ClassRecord& cls) {
      if (cls.info().visitMemberNames([this](char const* name) { fNames.insert(name); }) || !canBeFilled(cls))
        return;
      for (host::PropertyRecord const& property : cls.properties()) fNames.insert(property.fName.view());
      for (host::MethodRecord const& method : cls.methods())
        if (!method.fIsConstructor) fNames.insert(method.fName.view());
    });
  }

  std::size_t fClasses = 0;
  std::unordered_set<std::string_view> fNames;
};

/// A reserved word is published with an underscore behind it, too.
std::string_view publishedForm(std::string_view name) noexcept {
  std::string_view const stem = name.substr(0, name.empty() ? 0 : name.size() - 1);
  return name.ends_with('_') && isReservedWord(stem) ? stem : name;
}

void checkNotPublished(Kind const& kind, PyObject* name) {
  std::string const text = utf8(name);
  if (kind.fSort == Sort::List)
    for (PyTypeObject* base : {&gListType, &gChangeableListType})
      if (hasOwnMember(base, name) && !isSpecial(text))
        raise(PyExc_TypeError, quoted(text) + " cannot be added to " + kind.fName +
                                   ": all published lists have it; give the member another name");
  std::string_view const published = publishedForm(text);
  if (!PublishedNames::contain(kind.fSort, published)) return;
  // The name means something somewhere: on a class of the kind?
  VeskInterned const token = internal::intern(published);
  forEachClass(kind.fSort, [&](ClassRecord& cls) {
    if (!canBeFilled(cls) || !kind.covers(cls)) return;
    if (host::Member const* member = cls.findMember(token))
      raisePublished(text,
                     member->fProperty ? *member->fProperty->fOwner : *member->fMethods.front()->fOwner);
  });
}

void checkName(Kind const& kind, PyObject* name) {
  if (!PyUnicode_Check(name))
    raise(PyExc_TypeError, "The name of a member must be a text, not " + shortRepr(name));
  std::string const text = utf8(name);
  if (!PyUnicode_IsIdentifier(name) || isReservedWord(text))
    raise(PyExc_ValueError, quoted(text) + " cannot name a member: an identifier is expected");
  if (isSpecial(text)) {
    if (kind.fSort == Sort::List)
      raise(PyExc_TypeError, quoted(text) + " cannot be added to " + kind.fName +
                                 ": lists keep what Python's syntax means on them; add a name");
    if (!std::ranges::binary_search(kSpecialNames, text))
      raise(PyExc_ValueError, quoted(text) + " cannot be added: names like this are Python's own");
  }
  PyObject* const known = membersOf(kind.fName);
  PyTypeObject* const type = kind.type();
  bool const isTaken = (known && checkedInt(PyDict_Contains(known, name)) != 0) ||
                       (kind.fClass && type && hasOwnMember(type, name));
  checkNotPublished(kind, name);
  if (isTaken) raise(PyExc_TypeError, quoted(text) + " was added to " + kind.fName + " before");
}

}  // namespace

void addMembers(PyObject* kindName, PyObject* members) {
  Kind const kind = kindOf(kindName);
  Ref const added = Ref::checked(PyDict_Copy(members));
  PyObject *name, *member;
  for (Py_ssize_t at = 0; PyDict_Next(added.get(), &at, &name, &member);) checkName(kind, name);

  Ref all =
      membersOf(kind.fName) ? Ref::checked(PyDict_Copy(membersOf(kind.fName))) : Ref::checked(PyDict_New());
  checkedInt(PyDict_Update(all.get(), added.get()));
  for (Py_ssize_t at = 0; PyDict_Next(added.get(), &at, &name, &member);)
    if (Py_TYPE(member)->tp_descr_set) settable().insert(member);
  PyObject*& kept = additions()[kind.fName];
  Ref const before(std::exchange(kept, all.release()));
  if (PyTypeObject* type = kind.type())
    for (Py_ssize_t at = 0; PyDict_Next(added.get(), &at, &name, &member);) setInType(type, name, member);
}

Ref allAdditions() {
  runBeforeFirstClass();
  Ref result = Ref::checked(PyDict_New());
  for (auto const& [kind, members] : additions())
    checkedInt(PyDict_SetItemString(result.get(), kind.c_str(), Ref::checked(PyDict_Copy(members)).get()));
  return result;
}

void putAdditions(ClassRecord const& record, PyObject* dictionary) {
  if (PyObject* const members = membersOf(record.fName.view()))
    checkedInt(PyDict_Update(dictionary, members));
}

bool hasAddition(PyTypeObject* type, PyObject* name) {
  std::string_view kind = type == &gListType ? "List" : type == &gEnumerationType ? "Enumeration" : "";
  if (Py_IS_TYPE(reinterpret_cast<PyObject*>(type), &gMetaType))
    kind = reinterpret_cast<ClassObject*>(type)->fFront->fRecord->fName.view();
  PyObject* const members = membersOf(kind);
  return members && checkedInt(PyDict_Contains(members, name)) != 0;
}

bool isAddition(PyObject* member) noexcept { return settable().contains(member); }

PyObject* makerWithKeywords(PyTypeObject* type) {
  static PyObject* const sName = checked(PyUnicode_InternFromString("__construct__"));
  return _PyType_Lookup(type, sName);
}

// --- before the first class

namespace {
PyObject* sBeforeFirstClass = nullptr;
}

void callBeforeFirstClass(PyObject* function) { Py_XSETREF(sBeforeFirstClass, Py_NewRef(function)); }

void runBeforeFirstClass() {
  if (!sBeforeFirstClass) [[likely]]
    return;
  Ref function(std::exchange(sBeforeFirstClass, nullptr));
  if (Ref(PyObject_CallNoArgs(function.get()))) return;
  sBeforeFirstClass = function.release();  // the next class tries again
  throw PythonError();
}

// --- states and copies

namespace {

void dropState(void* state) noexcept {
  if (!Py_IsInitialized()) return;  // the process ends, and the interpreter's memory with it
  PyGILState_STATE const lock = PyGILState_Ensure();
  Py_DECREF(static_cast<PyObject*>(state));
  PyGILState_Release(lock);
}

PyInstance& boundInstance(PyObject* object) {
  if (!isInstance(object) || !instanceOf(object).isBound())
    raise(PyExc_TypeError, "An object of a published class is expected, not " + shortRepr(object));
  return instanceOf(object);
}

lum::HostPlace* placeOf(PyInstance& instance) {
  ObjectHook const* const hook = instance.classRecord().info().getObjectHook();
  return hook ? hook->hostPlace(instance.nativeId()) : nullptr;
}

}  // namespace

Ref stateOfModel(PyObject* object) {
  PyInstance& instance = boundInstance(object);
  lum::HostPlace* place = placeOf(instance);
  if (!place)
    raise(PyExc_ValueError, "Only an open model and its elements have a state, not " + shortRepr(object));
  if (!place->fWhat) {
    Ref state = Ref::checked(PyDict_New());
    // The allocation may have run a finalizer, which closed the model or asked for its state.
    place = placeOf(instance);
    if (!place)
      raise(PyExc_ValueError, "Only an open model and its elements have a state, not " + shortRepr(object));
    if (!place->fWhat) *place = {state.release(), &dropState};
  }
  return Ref::shared(static_cast<PyObject*>(place->fWhat));
}

Ref copyOf(PyObject* object, PyObject* place) {
  PyInstance& instance = boundInstance(object);
  void const* const placeId = place == Py_None ? nullptr : boundInstance(place).nativeId();
  ObjectHook const* const hook = instance.classRecord().info().getObjectHook();
  VeskValue const copy = hook ? hook->copy(instance.nativeId(), placeId) : VeskValue();
  if (!copy.array()) raise(PyExc_TypeError, "There is no copy of " + shortRepr(object));
  return toPython(host::OwnedValue(instance.classRecord(), copy));
}

void letGoOf(PyObject* object) {
  PyInstance& instance = boundInstance(object);
  if (ObjectHook const* const hook = instance.classRecord().info().getObjectHook())
    hook->letGo(instance.nativeId());
}

}  // namespace vesk::python
