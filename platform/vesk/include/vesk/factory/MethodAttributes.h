#pragma once

#include <cstdint>

#include "lum/visibility.h"

namespace vesk::factory {

/// Bits of a method's attribute word, which VeskMethod's accessors read. Access codes 1, 2 and 5 count in
/// this order; without one the code is 0.
enum MethodAttribute : std::uint32_t {
  MethodUnlocked = 1,
  MethodHidden = 2,
  MethodSealed = 4,
  MethodStatic = 8,
  MethodAbstract = 16,
  MethodDestructible = 32,
  MethodAccessCode5 = 64,
  MethodAccessCode1 = 128,
  MethodAccessCode2 = 256,
  MethodOverridesAllSignatures = 512,
  MethodFirstArgumentIsSelf = 4096,  ///< read only while a method is built
};

/// Carries an attribute word to the constructor of a method, which reads the word alone: what a class below
/// overrides does not reach the method.
class UMLMM_API MethodAttributes {
 public:
  MethodAttributes(std::uint32_t word = 0) noexcept : fWord(word) {}
  MethodAttributes(MethodAttributes const&) = default;
  MethodAttributes& operator=(MethodAttributes const&) = default;
  virtual ~MethodAttributes();

  virtual bool isLocked() const { return (fWord & MethodUnlocked) == 0; }
  virtual bool doesMethodOverrideAllSignatures() const { return (fWord & MethodOverridesAllSignatures) != 0; }

  [[nodiscard]] std::uint32_t word() const noexcept { return fWord; }

 private:
  std::uint32_t fWord;
};

}  // namespace vesk::factory
