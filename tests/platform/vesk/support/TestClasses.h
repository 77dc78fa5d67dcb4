#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "tarn/tarn.h"
#include "vesk/aliases.h"
#include "vesk/factory/FunctionInfo.h"
#include "vesk/factory/HandleClassInfo.h"
#include "vesk/host/PackageRecord.h"

namespace vesk::testing {

/// A method whose body is a function object, as a front would add one of its own.
class TestMethod : public factory::VeskMethod {
 public:
  using Body = std::function<void(int& count, VeskValue* results, std::vector<VeskValue> const& arguments)>;

  struct Signature {
    char const* fNames = "";
    char const* fResult = "void";
    char const* fReceiver = nullptr;
    std::initializer_list<char const*> fArguments = {};
  };

  TestMethod(char const* name, std::uint32_t word, Signature const& texts, Body body)
      : VeskMethod(name, word, ""), fBody(std::move(body)) {
    std::vector<char const*> const types(texts.fArguments);
    factory::impl::Invoker::createSignature(texts.fNames, texts.fResult, texts.fReceiver, types, signature());
  }

  void invoke(VeskClient const*, int& count, VeskValue* results, int argumentCount,
              VeskValue const* arguments) const override {
    fBody(count, results, {arguments, arguments + argumentCount});
  }

 private:
  Body fBody;
};

/// What a TestMethod does when only the choice of the method matters: it answers a number.
inline TestMethod::Body answering(int number) {
  return [number](int& count, VeskValue* results, auto const&) {
    results[0] = VeskValue::ofInt32(number);
    if (count == 0) count = 1;
  };
}

/// A property that keeps one text for all instances.
class TestProperty : public VeskPropInfo {
 public:
  TestProperty(char const* name, char const* type) : VeskPropInfo(name, "", 0), fType(type) {}
  char const* getDataType() const override { return fType; }
  VeskValue getValue(VeskInterface*) override { return tarnCreateString_UTF16(fText.c_str()); }
  void setValue(VeskInterface*, VeskValue value) override { fText = tarn::get_ustring(value.array()); }
  void releaseValue(VeskInterface*, VeskValue value) override { tarnDestroyArray(value.array()); }

  std::u16string fText;

 private:
  char const* fType;
};

struct Native {};

/// A class info that a test describes by the function that fills the class.
class TestClass : public factory::HandleClassInfo<Native, false> {
 public:
  using Fill = std::function<void(VeskClass&)>;

  TestClass(char const* name, Fill fill)
      : HandleClassInfo(name, "a class for tests"), fFill(std::move(fill)) {}

  void initializeClass(VeskClass* cls, VeskClient const*) override {
    sFilled.push_back(getName());
    if (fFill) fFill(*cls);
  }
  void releaseInstance(VeskClient const* client, void* id) override {
    sReleased.push_back(id);
    if (sOnRelease) sOnRelease(id);
    HandleClassInfo::releaseInstance(client, id);
  }

  static inline std::vector<std::string> sFilled;
  static inline std::vector<void*> sReleased;
  static inline std::function<void(void*)> sOnRelease;

 private:
  Fill fFill;
};

class TestPackage : public VeskPackageInfo {
 public:
  using Fill = std::function<void(VeskPackage&)>;

  TestPackage(char const* name, Fill fill) : fName(name), fFill(std::move(fill)) {}
  char const* getName() const override { return fName.c_str(); }
  void initializePackage(VeskPackage* package) override { fFill(*package); }

 private:
  std::string fName;
  Fill fFill;
};

inline void addPackage(char const* name, TestPackage::Fill fill) {
  VeskPackage::addPackage(new TestPackage(name, std::move(fill)));
}

inline void addSuperclasses(VeskClass& cls, std::initializer_list<char const*> names) {
  for (char const* name : names) {
    VeskInterned const token = internal::intern(name);
    cls.addSuperclass(&token, 1, 0, 1);
  }
}

inline host::ClassRecord& classNamed(char const* name) { return host::classOf(internal::intern(name)); }

/// A package of classes, each with the function that fills it.
inline void addClasses(char const* package, std::vector<std::pair<char const*, TestClass::Fill>> classes) {
  addPackage(package, [classes = std::move(classes)](VeskPackage& to) {
    for (auto const& [name, fill] : classes) to.addClass(new TestClass(name, fill), 2);
  });
}

/// A class with nothing but superclasses.
inline TestClass::Fill below(std::initializer_list<char const*> supers) {
  return [supers = std::vector(supers)](VeskClass& cls) {
    for (char const* super : supers) addSuperclasses(cls, {super});
  };
}

}  // namespace vesk::testing
