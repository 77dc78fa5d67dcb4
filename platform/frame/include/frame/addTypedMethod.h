#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "frame/Thunk.h"
#include "vesk/VeskClass.h"
#include "vesk/VeskPackage.h"
#include "vesk/factory/MethodAttributes.h"

namespace Kelm::mi {

/// How a method is declared; it settles what becomes of the attribute word.
enum class Form : std::uint8_t {
  Constructor,
  FreeFunction,          ///< static unless declared with MethodFirstArgumentIsSelf
  FreeFunctionWithFlag,  ///< likewise; passes that bit on to the Invoker
  MemberFunction,        ///< never static; drops that bit
  MemberFunctionWithFlag,
};

/// The texts of a signature: data types as the host knows them ("logical scalar", "void") and full names of
/// classes. Types behind the last one are null.
struct SignatureTexts {
  static constexpr std::size_t kMostArguments = 4;

  /// Of the arguments without the receiver, separated by comma and blank.
  char const* fNames;
  char const* fResult;
  /// Full class name, or null: then the receiver, if there is one, stands first among the arguments.
  char const* fReceiver;
  std::array<char const*, kMostArguments> fArguments{};
};

/// A method as a class declares it. Texts are read while the method is added and need not live longer.
struct MethodRow {
  /// Not read for a constructor, whose name is the class's affair.
  char const* fName;
  /// Bits of vesk::factory::MethodAttribute.
  std::uint32_t fWord;
  Form fForm;
  SignatureTexts fSignature;
  Bind fBind;
};

/// Gives a new method what its row declares: word, signature, function and thunk.
void setUpMethod(vesk::factory::VeskMethod& aMethod, Invoker& aInvoker, MethodRow const& aRow);

/// Builds a method and gives it to the class, which must be one that is being filled: what it throws, and
/// who owns the method then, stands with vesk::VeskClass::addMethod.
void addTypedMethod(vesk::VeskClass* aClass, MethodRow const& aMethod);
void addTypedMethods(vesk::VeskClass* aClass, std::span<MethodRow const> aMethods);

/// Builds a free function and gives it to the package.
void addPackageFunction(vesk::VeskPackage* aPackage, MethodRow const& aFunction);

/// Announces a class, which the host fills at its first use; without a package as a global class. The host
/// owns the info from the call on.
void announceClass(vesk::VeskPackage* aPackage, vesk::VeskClassInfo* aInfo);

/// Adds one superclass by its full name. The host fills it first.
void addSuperclass(vesk::VeskClass* aClass, char const* aName);

}  // namespace Kelm::mi
