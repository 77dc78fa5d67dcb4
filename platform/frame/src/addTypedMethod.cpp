#include "frame/addTypedMethod.h"

#include <algorithm>
#include <memory>

#include "vesk/factory/FunctionInfo.h"

namespace Kelm::mi {

using vesk::factory::FunctionInfo;
using vesk::factory::MethodFirstArgumentIsSelf;
using vesk::factory::MethodStatic;
using vesk::factory::VeskMethod;
using vesk::factory::impl::MethodImpl;
using vesk::factory::impl::VeskConstructor;

namespace {

constexpr bool isMember(Form aForm) {
  return aForm == Form::MemberFunction || aForm == Form::MemberFunctionWithFlag;
}
constexpr bool storesFlag(Form aForm) {
  return aForm == Form::FreeFunctionWithFlag || aForm == Form::MemberFunctionWithFlag;
}

void adjustWord(VeskMethod& aMethod, Form aForm) {
  if (aForm == Form::Constructor) return;
  if (isMember(aForm))
    aMethod.clearAttributeBits(MethodFirstArgumentIsSelf);
  else if (!aMethod.has(MethodFirstArgumentIsSelf))
    aMethod.setAttributeBits(MethodStatic);
}

void createSignature(VeskMethod& aMethod, SignatureTexts const& aTexts) {
  auto const end = std::find(aTexts.fArguments.begin(), aTexts.fArguments.end(), nullptr);
  Invoker::createSignature(aTexts.fNames, aTexts.fResult, aTexts.fReceiver,
                           std::span<char const* const>(aTexts.fArguments.begin(), end), aMethod.signature());
}

}  // namespace

void setUpMethod(VeskMethod& aMethod, Invoker& aInvoker, MethodRow const& aRow) {
  adjustWord(aMethod, aRow.fForm);
  createSignature(aMethod, aRow.fSignature);
  aRow.fBind(aInvoker);
  if (storesFlag(aRow.fForm) && aMethod.has(MethodFirstArgumentIsSelf)) aInvoker.setFirstArgumentIsSelf(true);
}

void addTypedMethod(vesk::VeskClass* aClass, MethodRow const& aMethod) {
  if (aMethod.fForm == Form::Constructor) {
    auto constructor = std::make_unique<VeskConstructor>(aClass->getConstructorName(), aMethod.fWord, "");
    setUpMethod(*constructor, constructor->invoker(), aMethod);
    aClass->addMethod(constructor.release());
    return;
  }
  auto method = std::make_unique<MethodImpl>(aMethod.fName, aMethod.fWord, "");
  setUpMethod(*method, method->invoker(), aMethod);
  aClass->addMethod(method.release());
}

void addTypedMethods(vesk::VeskClass* aClass, std::span<MethodRow const> aMethods) {
  for (MethodRow const& method : aMethods) addTypedMethod(aClass, method);
}

void addPackageFunction(vesk::VeskPackage* aPackage, MethodRow const& aFunction) {
  auto function = std::make_unique<FunctionInfo>(aFunction.fName, aFunction.fWord);
  if (!function->has(MethodFirstArgumentIsSelf)) function->setAttributeBits(MethodStatic);
  createSignature(*function, aFunction.fSignature);
  aFunction.fBind(function->invoker());
  if (function->has(MethodFirstArgumentIsSelf)) function->invoker().setFirstArgumentIsSelf(true);
  aPackage->addFunction(function.release());
}

void announceClass(vesk::VeskPackage* aPackage, vesk::VeskClassInfo* aInfo) {
  // The host keeps the mode and fills each class on first use.
  constexpr int mode = 2;
  if (aPackage == nullptr)
    vesk::VeskClass::addGlobalClass(aInfo);
  else
    aPackage->addClass(aInfo, mode);
}

void addSuperclass(vesk::VeskClass* aClass, char const* aName) {
  vesk::VeskInterned const name = vesk::internal::intern(aName);
  aClass->addSuperclass(&name, 1, 0, 1);
}

}  // namespace Kelm::mi
