#pragma once

#include <string>

#include "vesk/VeskMethodInfo.h"
#include "vesk/factory/MethodAttributes.h"

namespace vesk::factory {

/// A method with its name, signature and attribute word; what it runs is told by the classes below it.
class UMLMM_API VeskMethod : public VeskMethodInfo {
 public:
  /// Takes the word over and leaves the signature empty, which a class or package refuses. Texts are copied
  /// and must not be null.
  VeskMethod(char const* name, MethodAttributes attributes, char const* description);
  ~VeskMethod() override;

  char const* getName() const override { return fName.c_str(); }
  char const* getDescription() const override { return fDescription.c_str(); }
  int getMemberAccess() const override;
  VeskMethodSignaturePtr const& getMethodSignature() const override { return fSignature; }
  bool isStatic() const override { return has(MethodStatic); }
  bool isAbstract() const override { return has(MethodAbstract); }
  bool isSealed() const override { return has(MethodSealed); }
  bool isVisible() const override { return !has(MethodHidden); }
  bool isDestructible() const override { return has(MethodDestructible); }
  bool isLocked() const override { return !has(MethodUnlocked); }
  bool doesMethodOverrideAllSignatures() const override { return has(MethodOverridesAllSignatures); }

  // For the maker of the method.
  [[nodiscard]] std::uint32_t attributeWord() const noexcept { return fWord; }
  [[nodiscard]] bool has(std::uint32_t bits) const noexcept { return (fWord & bits) != 0; }
  void setAttributeBits(std::uint32_t bits) noexcept { fWord |= bits; }
  void clearAttributeBits(std::uint32_t bits) noexcept { fWord &= ~bits; }
  /// The place that Invoker::createSignature fills.
  [[nodiscard]] VeskMethodSignaturePtr& signature() noexcept { return fSignature; }

 private:
  std::string fName;
  std::string fDescription;
  VeskMethodSignaturePtr fSignature;
  std::uint32_t fWord;
};

}  // namespace vesk::factory
