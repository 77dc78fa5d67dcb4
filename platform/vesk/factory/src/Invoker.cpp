#include "vesk/factory/Invoker.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "vesk/VeskError.h"
#include "vesk/factory/FunctionInfo.h"

namespace vesk::factory {

namespace impl {

bool Invoker::hasFunction() const noexcept {
  return std::any_of(std::begin(fFunction), std::end(fFunction),
                     [](unsigned char byte) { return byte != 0; });
}

void Invoker::createSignature(char const* names, char const* result, char const* receiver,
                              std::span<char const* const> argumentTypes, VeskMethodSignaturePtr& signature) {
  signature = std::make_shared<VeskMethodSignature const>(internal::intern(names), internal::intern(result),
                                                          internal::intern(receiver), argumentTypes);
}

void Invoker::createSignature(char const* names, char const* result, char const* receiver,
                              VeskMethodSignaturePtr& signature) {
  createSignature(names, result, receiver, std::span<char const* const>(), signature);
}

void Invoker::createSignature(char const* names, char const* result, char const* receiver, char const* first,
                              VeskMethodSignaturePtr& signature) {
  createSignature(names, result, receiver, std::array{first}, signature);
}

void Invoker::createSignature(char const* names, char const* result, char const* receiver, char const* first,
                              char const* second, VeskMethodSignaturePtr& signature) {
  createSignature(names, result, receiver, std::array{first, second}, signature);
}

void Invoker::createSignature(char const* names, char const* result, char const* receiver, char const* first,
                              char const* second, char const* third, VeskMethodSignaturePtr& signature) {
  createSignature(names, result, receiver, std::array{first, second, third}, signature);
}

void Invoker::createSignature(char const* names, char const* result, char const* receiver, char const* first,
                              char const* second, char const* third, char const* fourth,
                              VeskMethodSignaturePtr& signature) {
  createSignature(names, result, receiver, std::array{first, second, third, fourth}, signature);
}

MethodImpl::MethodImpl(char const* name, MethodAttributes attributes, char const* description)
    : VeskMethod(name, attributes, description) {}

MethodImpl::~MethodImpl() = default;

void MethodImpl::invoke(VeskClient const* client, int& resultCount, VeskValue* results, int argumentCount,
                        VeskValue const* arguments) const {
  fInvoker.invoke(client, resultCount, results, argumentCount, arguments);
}

VeskConstructor::VeskConstructor(char const* name, MethodAttributes attributes, char const* description)
    : VeskMethod(name, attributes, description) {}

VeskConstructor::~VeskConstructor() = default;

void VeskConstructor::invoke(VeskClient const* client, int& resultCount, VeskValue* results,
                             int argumentCount, VeskValue const* arguments) const {
  fInvoker.invoke(client, resultCount, results, argumentCount, arguments);
}

void validateSelfPointer(void const* self) {
  if (!self) throw VeskError("Invalid or missing object");
}

void validateSelfPointer(void const* self, Invoker const&) { validateSelfPointer(self); }

}  // namespace impl

FunctionInfo::FunctionInfo(char const* name, MethodAttributes attributes)
    : VeskMethod(name, attributes, "") {}

FunctionInfo::~FunctionInfo() = default;

void FunctionInfo::invoke(VeskClient const* client, int& resultCount, VeskValue* results, int argumentCount,
                          VeskValue const* arguments) const {
  fInvoker.invoke(client, resultCount, results, argumentCount, arguments);
}

}  // namespace vesk::factory
