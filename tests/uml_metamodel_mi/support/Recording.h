#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vesk/VeskClass.h"
#include "vesk/VeskClassInfo.h"
#include "vesk/VeskPackage.h"
#include "vesk/VeskPropInfo.h"
#include "vesk/factory/FunctionInfo.h"

namespace umlmm::testing {

/// A class that keeps what it is given.
class RecordingClass final : public vesk::VeskClass {
 public:
  explicit RecordingClass(std::string constructorName = "Constructed")
      : fConstructorName(std::move(constructorName)) {}

  char const* getConstructorName() const override { return fConstructorName.c_str(); }
  void addSuperclass(vesk::VeskInterned const* names, std::size_t count, int access, int inherit) override {
    if (count != 1 || access != 0 || inherit != 1) fWrongSuperclassCalls++;
    fSuperclasses.emplace_back(names->view());
  }
  void addProperty(vesk::VeskPropInfo* property) override { fProperties.emplace_back(property); }
  void addMethod(vesk::VeskMethodInfo* method) override { fMethods.emplace_back(method); }

  std::string fConstructorName;
  std::vector<std::string> fSuperclasses;
  std::vector<std::unique_ptr<vesk::VeskPropInfo>> fProperties;
  std::vector<std::unique_ptr<vesk::VeskMethodInfo>> fMethods;
  int fWrongSuperclassCalls = 0;
};

/// A package that keeps the class infos without filling them.
class RecordingPackage final : public vesk::VeskPackage {
 public:
  void addClass(vesk::VeskClassInfo* info, int mode) override {
    if (mode != 2) fWrongModes++;
    fClasses.emplace_back(info);
  }
  void addFunction(vesk::factory::FunctionInfo* info) override { fFunctions.emplace_back(info); }

  std::vector<std::string> names() const {
    std::vector<std::string> names;
    for (auto const& info : fClasses) names.emplace_back(info->getName());
    return names;
  }
  vesk::VeskClassInfo* find(std::string_view name) const {
    for (auto const& info : fClasses) {
      if (info->getName() == name) return info.get();
    }
    return nullptr;
  }

  std::vector<std::unique_ptr<vesk::VeskClassInfo>> fClasses;
  std::vector<std::unique_ptr<vesk::factory::FunctionInfo>> fFunctions;
  int fWrongModes = 0;
};

/// "names | result | receiver | arguments", with "-" for no receiver.
inline std::string textOf(vesk::VeskMethodInfo const& method) {
  auto const& signature = *method.getMethodSignature();
  std::string text = std::string(signature.names()) + " | " + signature.result().c_str() + " | ";
  text += signature.receiver().empty() ? "-" : signature.receiver().c_str();
  text += " |";
  for (auto const argument : signature.arguments()) text += std::string(" ") + argument.c_str() + ";";
  return text;
}

}  // namespace umlmm::testing
