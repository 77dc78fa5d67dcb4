// A package of a few native classes that together use every carrier of values, overloads, literals, lists
// with a hook, failures and extensions: what the front has to show, without a metamodel.

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>

#include "model.h"
#include "platform/vesk/support/TestClasses.h"
#include "vesk/Detail.h"
#include "vesk/factory/BindingRegistry.h"
#include "vesk/host/Extensions.h"
#include "vesk/host/Instance.h"
#include "vesk/host/PackageRecord.h"

namespace demo {

using vesk::VeskClass;
using vesk::VeskValue;
using vesk::factory::MethodFirstArgumentIsSelf;
using vesk::factory::MethodStatic;
using vesk::factory::basic::BindingRegistry;
using vesk::host::Carrier;
using vesk::host::Instance;
using vesk::internal::intern;
using vesk::testing::TestMethod;
using Arguments = std::vector<VeskValue>;

struct Error : std::logic_error {
  using logic_error::logic_error;
};

// --- values in and out

View* viewOf(VeskValue value) {
  Instance* instance = Instance::fromArray(value.array());
  return instance ? static_cast<View*>(instance->nativeId()) : nullptr;
}
Thing* thingOf(VeskValue value) {
  View* view = viewOf(value);
  return view ? view->fThing : nullptr;
}
List& listOf(VeskValue value) { return *static_cast<List*>(Instance::fromArray(value.array())->nativeId()); }

VeskValue box(Thing* thing, bool isReadOnly = false) {
  if (!thing) return BindingRegistry::announce(static_cast<void*>(nullptr), intern("demo.Thing"));
  bool created = false;
  VeskValue value =
      BindingRegistry::announce(static_cast<void*>(&thing->fViews[isReadOnly]),
                                intern(isReadOnly ? "demo.ImmutableThing" : "demo.Thing"), created);
  if (created) intrusive_ptr_add_ref(thing);
  return value;
}
VeskValue box(List& list, char const* cls) {
  bool created = false;
  VeskValue value = BindingRegistry::announce(static_cast<void*>(&list), intern(cls), created);
  if (created && list.fOwner) intrusive_ptr_add_ref(list.fOwner);
  return value;
}

int const kColors[] = {0, 1, 2};
char const* const kColorNames[] = {"Red", "Green", "None"};
VeskValue boxColor(int color) {
  return BindingRegistry::announce(static_cast<void const*>(&kColors[color]), intern("demo.Color"));
}
int colorOf(VeskValue value) {
  Instance* instance = Instance::fromArray(value.array());
  return instance ? *static_cast<int const*>(instance->nativeId()) : 0;
}

template <class Element>
VeskValue row(std::vector<Element> const& values, tarnClassId classId) {
  tarnArray* array = tarnCreateNumericMatrix(values.empty() ? 0 : 1, values.size(), classId, 0);
  using Stored = std::conditional_t<std::is_same_v<Element, bool>, unsigned char, Element>;
  for (std::size_t i = 0; i < values.size(); ++i)
    tarn::dataAs<Stored>(array)[i] = static_cast<Stored>(values[i]);
  return array;
}
template <class Element>
std::vector<Element> elementsOf(VeskValue value) {
  using Stored = std::conditional_t<std::is_same_v<Element, bool>, unsigned char, Element>;
  Stored const* data = tarn::dataAs<Stored>(value.array());
  return std::vector<Element>(data, data + tarn::numberOfElements(value.array()));
}
VeskValue text(std::u16string const& value) { return tarnCreateStringOfLength(value.data(), value.size()); }

// --- members

struct Property final : vesk::VeskPropInfo, vesk::Detailed {
  using Get = VeskValue (*)(Thing&, bool isReadOnly);
  using Set = void (*)(Thing&, VeskValue);

  Property(char const* name, char const* type, Get get, Set set)
      : VeskPropInfo(name, "a property for tests", 0), fType(type), fGet(get), fSet(set) {}
  char const* getDataType() const override { return fType; }
  View& view(vesk::VeskInterface* instance) { return *static_cast<View*>(instance->getNativeObject({})); }
  VeskValue getValue(vesk::VeskInterface* instance) override {
    return fGet(*view(instance).fThing, view(instance).fIsReadOnly);
  }
  void setValue(vesk::VeskInterface* instance, VeskValue value) override {
    if (!fSet || view(instance).fIsReadOnly) throw Error("You cannot set a read-only property");
    fSet(*view(instance).fThing, value);
  }
  void releaseValue(vesk::VeskInterface*, VeskValue value) override {
    vesk::host::destroyValue(vesk::host::typeOf(intern(fType)), value);
  }
  vesk::Details details() const override { return {{"id", std::int64_t{7}}, {"unit", std::string("metre")}}; }

  char const* fType;
  Get fGet;
  Set fSet;
};

void add(VeskClass& cls, char const* name, std::uint32_t word, TestMethod::Signature const& signature,
         VeskValue (*body)(Arguments const&)) {
  bool const isVoid = std::string_view(signature.fResult) == "void";
  cls.addMethod(
      new TestMethod(name, word, signature, [=](int& count, VeskValue* results, Arguments const& arguments) {
        VeskValue const result = body(arguments);
        if (isVoid) return;
        results[0] = result;
        count = 1;
      }));
}

void addSuperclass(VeskClass& cls, char const* name) {
  vesk::VeskInterned const super = intern(name);
  cls.addSuperclass(&super, 1, 0, 1);
}

void addConstructor(VeskClass& cls, std::initializer_list<char const*> types) {
  cls.addMethod(new TestMethod(cls.getConstructorName(), 0, {"", "demo.Thing", nullptr, types},
                               [](int&, VeskValue* results, Arguments const& arguments) {
                                 auto* thing = new Thing(tarn::get_ustring(arguments[0].array()));
                                 thing->fOther = arguments.size() > 1 ? thingOf(arguments[1]) : nullptr;
                                 intrusive_ptr_add_ref(thing);
                                 BindingRegistry::announceForConstructor(
                                     &thing->fViews[0], intern("demo.Thing"), results[0].array(), true);
                               }));
}

// --- extensions

std::vector<vesk::host::ClassExtension> sExtensions;
VeskClass* sExtended = nullptr;

/// Extensions of "demo.Thing" run while its read-only class is filled, later ones at once.
void addExtension(char const* className, vesk::host::ClassExtension extension) {
  if (std::string_view(className) != "demo.Thing") throw Error("no such class can be extended");
  if (sExtended) return extension(sExtended, vesk::host::client());
  sExtensions.push_back(std::move(extension));
}

void fillReadOnlyThing(VeskClass& cls) {
  for (auto const& extension : sExtensions) extension(&cls, vesk::host::client());
  sExtended = &cls;
  cls.addProperty(new Property(
      "name", "char vector", [](Thing& t, bool) { return text(t.fText); },
      [](Thing& t, VeskValue v) { t.fText = tarn::get_ustring(v.array()); }));
  cls.addProperty(new Property(
      "flag", "logical scalar", [](Thing& t, bool) { return VeskValue::ofLogical(t.fFlag); },
      [](Thing& t, VeskValue v) { t.fFlag = v.logical(); }));
  cls.addProperty(new Property(
      "number", "int32 scalar", [](Thing& t, bool) { return VeskValue::ofInt32(t.fNumber); },
      [](Thing& t, VeskValue v) { t.fNumber = v.int32(); }));
  cls.addProperty(new Property(
      "upper", "demonatural", [](Thing& t, bool) { return text(t.fNatural); },
      [](Thing& t, VeskValue v) { t.fNatural = tarn::get_ustring(v.array()); }));
  cls.addProperty(new Property(
      "maybe", "demological", [](Thing& t, bool) { return row(t.fMaybe, logicalClassId); },
      [](Thing& t, VeskValue v) { t.fMaybe = elementsOf<bool>(v); }));
  cls.addProperty(new Property(
      "numbers", "demoint32", [](Thing& t, bool) { return row(t.fNumbers, int32ClassId); },
      [](Thing& t, VeskValue v) { t.fNumbers = elementsOf<int>(v); }));
  cls.addProperty(new Property(
      "class", "demo.ImmutableThing",
      [](Thing& t, bool isReadOnly) { return box(t.fOther.get(), isReadOnly); },
      [](Thing& t, VeskValue v) { t.fOther = thingOf(v); }));
  cls.addProperty(new Property(
      "color", "demo.Color", [](Thing& t, bool) { return boxColor(t.fColor); },
      [](Thing& t, VeskValue v) { t.fColor = colorOf(v); }));
  cls.addProperty(new Property(
      "parts", "demo.Things",
      [](Thing& t, bool isReadOnly) {
        return box(t.fParts, isReadOnly ? "demo.Things" : "demo.SequenceOfThing");
      },
      [](Thing& t, VeskValue v) {
        t.fParts.fThings =
            tarn::numberOfElements(v.array()) ? std::vector(listOf(v).fThings) : std::vector<ThingPtr>();
      }));
  cls.addProperty(new Property(
      "fixed", "int32 scalar", [](Thing&, bool) { return VeskValue::ofInt32(1); }, nullptr));
  add(cls, "asImmutable", MethodFirstArgumentIsSelf,
      {"", "demo.ImmutableThing", nullptr, {"demo.ImmutableThing"}},
      [](Arguments const& a) { return box(thingOf(a[0]), true); });
  add(cls, "which", 0, {"", "char vector", "demo.ImmutableThing", {"demo.ImmutableThing"}},
      [](Arguments const&) { return text(u"above, thing"); });
}

void fillThing(VeskClass& cls) {
  addSuperclass(cls, "demo.ImmutableThing");
  addConstructor(cls, {"char vector"});
  addConstructor(cls, {"char vector", "demo.Thing"});
  add(cls, "which", 0, {"value", "char vector", "demo.Thing", {"int32 scalar"}},
      [](Arguments const&) { return text(u"number"); });
  add(cls, "which", 0, {"value", "char vector", "demo.Thing", {"char vector"}},
      [](Arguments const&) { return text(u"text"); });
  add(cls, "is", 0, {"", "logical scalar", "demo.Thing", {"demo.Thing"}},
      [](Arguments const& a) { return VeskValue::ofLogical(viewOf(a[0]) == viewOf(a[1])); });
  add(cls, "isNull", MethodFirstArgumentIsSelf, {"", "logical scalar", nullptr, {"demo.Thing"}},
      [](Arguments const& a) { return VeskValue::ofLogical(thingOf(a[0]) == nullptr); });
  add(cls, "living", MethodStatic, {"", "int32 scalar", nullptr, {}},
      [](Arguments const&) { return VeskValue::ofInt32(Thing::sLiving); });
  add(cls, "fail", MethodStatic, {"how", "void", nullptr, {"int32 scalar"}},
      [](Arguments const& a) -> VeskValue {
        switch (a[0].int32()) {
          case 0:
            throw Error("a failure with a name");
          case 1:
            throw std::bad_alloc();
          case 2:
            throw std::runtime_error("a plain failure");
          default:
            throw 5;
        }
      });
}

// --- literals

void addColorComparison(VeskClass& cls, char const* name, VeskValue (*body)(Arguments const&)) {
  add(cls, name, MethodFirstArgumentIsSelf, {"", "logical scalar", nullptr, {"demo.Color", "demo.Color"}},
      body);
}

void fillColor(VeskClass& cls) {
  add(cls, "fromString", MethodStatic, {"", "demo.Color", nullptr, {"char"}}, [](Arguments const& a) {
    std::u16string const wanted = tarn::get_ustring(a[0].array());
    for (int color : kColors)
      if (std::equal(wanted.begin(), wanted.end(), kColorNames[color],
                     kColorNames[color] + std::strlen(kColorNames[color])))
        return boxColor(color);
    throw Error("no such color");
  });
  add(cls, "toString", 0, {"", "char vector", "demo.Color", {}},
      [](Arguments const& a) -> VeskValue { return tarnCreateString(kColorNames[colorOf(a[0])]); });
  add(cls, "Red", MethodStatic, {"", "demo.Color", nullptr, {}},
      [](Arguments const&) { return boxColor(0); });
  add(cls, "Green", MethodStatic, {"", "demo.Color", nullptr, {}},
      [](Arguments const&) { return boxColor(1); });
  add(cls, "None", MethodStatic, {"", "demo.Color", nullptr, {}},
      [](Arguments const&) { return boxColor(2); });
  addColorComparison(cls, "eq",
                     [](Arguments const& a) { return VeskValue::ofLogical(colorOf(a[0]) == colorOf(a[1])); });
  addColorComparison(cls, "lt",
                     [](Arguments const& a) { return VeskValue::ofLogical(colorOf(a[0]) < colorOf(a[1])); });
  addColorComparison(cls, "ge",
                     [](Arguments const& a) { return VeskValue::ofLogical(colorOf(a[0]) >= colorOf(a[1])); });
}

// --- lists

struct Hook final : vesk::SequenceHook {
  static std::vector<ThingPtr>& things(vesk::VeskInterface* list) {
    return static_cast<List*>(list->getNativeObject({}))->fThings;
  }
  std::size_t size(vesk::VeskInterface* list) const override { return things(list).size(); }
  std::size_t readBlock(vesk::VeskInterface* list, std::size_t first, std::size_t count, VeskValue* values,
                        std::uint64_t& stamp) const override {
    auto const& all = things(list);
    std::uint64_t now = 1;
    for (ThingPtr const& thing : all) now = now * 31 + reinterpret_cast<std::uintptr_t>(thing.get());
    bool const changed = stamp != 0 && stamp != now;
    stamp = changed ? 0 : now;
    std::size_t const end = changed ? 0 : std::min(first + std::min(count, kBlock), all.size());
    for (std::size_t i = first; i < end; ++i) values[i - first] = box(all[i].get());
    return end > first ? end - first : 0;
  }
  std::size_t find(vesk::VeskInterface* list, VeskValue value, std::size_t first,
                   std::size_t last) const override {
    auto const& all = things(list);
    for (std::size_t i = first; i < std::min(last, all.size()); ++i)
      if (all[i] == thingOf(value)) return i;
    return kNotFound;
  }
  char const* elementType() const override { return "demo.Thing"; }
  void rearrange(vesk::VeskInterface* list, std::span<int const> from,
                 std::span<int const> to) const override {
    std::vector<ThingPtr> const before = things(list);
    for (std::size_t i = 0; i < to.size(); ++i)
      things(list).at(static_cast<std::size_t>(to[i])) = before.at(static_cast<std::size_t>(from[i]));
  }
  void assign(vesk::VeskInterface* list, vesk::VeskInterface* values) const override {
    things(list) = things(values);
  }
  bool isUnique(vesk::VeskInterface*) const override { return false; }
  bool isLive(vesk::VeskInterface* list) const override {
    return static_cast<List*>(list->getNativeObject({}))->fOwner != nullptr;
  }
};

std::size_t place(VeskValue index, std::size_t end) {
  int const place = index.int32() - 1;
  if (place < 0) throw Error("index must be positive");
  if (static_cast<std::size_t>(place) >= end) throw Error("index out of bounds");
  return static_cast<std::size_t>(place);
}

void fillList(VeskClass& cls) {
  add(cls, "size", 0, {"", "int32 scalar", "demo.Things", {}},
      [](Arguments const& a) { return VeskValue::ofInt32(static_cast<int>(listOf(a[0]).fThings.size())); });
}

void fillChangeableList(VeskClass& cls) {
  static constexpr char const* kSelf = "demo.SequenceOfThing";
  addSuperclass(cls, "demo.Things");
  add(cls, "append", 0, {"", "void", kSelf, {"demo.Thing"}}, [](Arguments const& a) -> VeskValue {
    if (thingOf(a[1])->fText == u"poison") throw Error("the list refuses this thing");
    listOf(a[0]).fThings.push_back(thingOf(a[1]));
    return {};
  });
  add(cls, "clear", 0, {"", "void", kSelf, {}}, [](Arguments const& a) -> VeskValue {
    listOf(a[0]).fThings.clear();
    return {};
  });
  add(cls, "insert", 0, {"", "void", kSelf, {"int32 scalar", "demo.Thing"}},
      [](Arguments const& a) -> VeskValue {
        if (thingOf(a[2])->fText == u"poison") throw Error("the list refuses this thing");
        auto& things = listOf(a[0]).fThings;
        auto const at = static_cast<std::ptrdiff_t>(place(a[1], things.size() + 1));
        things.insert(things.begin() + at, thingOf(a[2]));
        return {};
      });
  add(cls, "replace", 0, {"", "void", kSelf, {"int32 scalar", "demo.Thing"}},
      [](Arguments const& a) -> VeskValue {
        auto& things = listOf(a[0]).fThings;
        things[place(a[1], things.size())] = thingOf(a[2]);
        return {};
      });
  add(cls, "erase", 0, {"", "void", kSelf, {"int32 scalar"}}, [](Arguments const& a) -> VeskValue {
    auto& things = listOf(a[0]).fThings;
    things.erase(things.begin() + static_cast<std::ptrdiff_t>(place(a[1], things.size())));
    return {};
  });
  add(cls, "make", MethodStatic, {"", kSelf, nullptr, {"demo.Thing"}},
      [](Arguments const&) { return box(*new List, kSelf); });
}

// --- the package

using TestClass = vesk::testing::TestClass;

struct ThingHook final : vesk::ObjectHook {
  vesk::Identity identify(void const* id) const override { return {static_cast<View const*>(id)->fThing, 0}; }
};

struct ThingInfo final : TestClass {
  using TestClass::TestClass;
  void releaseInstance(vesk::VeskClient const*, void* id) override {
    BindingRegistry::remove(id);
    intrusive_ptr_release(static_cast<View*>(id)->fThing);
  }
  vesk::ObjectHook const* getObjectHook() const override {
    static ThingHook const sHook;
    return &sHook;
  }
};

struct ListInfo final : TestClass {
  using TestClass::TestClass;
  void releaseInstance(vesk::VeskClient const*, void* id) override {
    BindingRegistry::remove(id);
    auto* list = static_cast<List*>(id);
    list->fOwner ? intrusive_ptr_release(list->fOwner) : delete list;
  }
  vesk::SequenceHook const* getSequenceHook() const override {
    static Hook const sHook;
    return &sHook;
  }
  /// Names tell the host nothing: the read-only list is called otherwise than the changeable one.
  vesk::ClassFamily const* family() const override {
    static vesk::ClassFamily const sFamily("demo", "Thing",
                                           {{{}, {}, intern("demo.SequenceOfThing"), intern("demo.Things")}});
    return &sFamily;
  }
};

void fillPackage(vesk::VeskPackage& package) {
  vesk::factory::detail::initStringDataTypes();
  vesk::host::registerDataType("demological", Carrier::OptionalLogical);
  vesk::host::registerDataType("demoint32", Carrier::OptionalInt32);
  vesk::host::registerDataType("demonatural", Carrier::NaturalText);
  package.addClass(new ThingInfo("Thing", fillThing), 2);
  package.addClass(new ThingInfo("ImmutableThing", fillReadOnlyThing), 2);
  package.addClass(new TestClass("Color", fillColor), 2);
  package.addClass(new ListInfo("SequenceOfThing", fillChangeableList), 2);
  package.addClass(new ListInfo("Things", fillList), 2);
  package.addClass(new TestClass("Broken", [](VeskClass& cls) { addSuperclass(cls, "demo.Missing"); }), 2);
}

}  // namespace demo

extern "C" UMLMM_API void SarnInitialize_front_testpackage() {
  vesk::testing::addPackage("demo", demo::fillPackage);
  vesk::host::nameFailures(
      "demo.Error", [](std::exception const& e) { return dynamic_cast<demo::Error const*>(&e) != nullptr; },
      [](std::exception const& e) {
        bool const isReadOnly = std::string_view(e.what()).find("read-only") != std::string_view::npos;
        return isReadOnly ? vesk::host::FailureKind::ReadOnly : vesk::host::FailureKind::General;
      });
  vesk::host::setExtensionRegistrar("demo", demo::addExtension);
}
extern "C" UMLMM_API void SarnTerminate_front_testpackage() {}
