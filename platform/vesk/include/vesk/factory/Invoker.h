#pragma once

#include <cstddef>
#include <cstring>
#include <span>
#include <type_traits>

#include "vesk/factory/VeskMethod.h"

namespace vesk::factory::impl {

class Invoker;

/// Turns the host's argument and result lists into typed values and back; see VeskMethodInfo::invoke.
using Thunk = void (*)(Invoker const& invoker, VeskClient const* client, int& resultCount, VeskValue* results,
                       int argumentCount, VeskValue const* arguments);

/// The two functions of a method: the typed one and the thunk that serves its type. Set before the method is
/// handed over; calls change nothing in it.
class UMLMM_API Invoker {
 public:
  /// Stores a plain function pointer or a pointer to member.
  template <class Function>
  void setFunction(Function function) noexcept {
    static_assert(std::is_member_function_pointer_v<Function> ||
                  (std::is_pointer_v<Function> && std::is_function_v<std::remove_pointer_t<Function>>));
    static_assert(sizeof(Function) <= sizeof(fFunction) && std::is_trivially_copyable_v<Function>);
    std::memset(fFunction, 0, sizeof(fFunction));
    std::memcpy(fFunction, &function, sizeof(function));
  }
  /// The stored function, which must have been stored as this very type.
  template <class Function>
  [[nodiscard]] Function function() const noexcept {
    static_assert(sizeof(Function) <= sizeof(fFunction));
    Function function;
    std::memcpy(&function, fFunction, sizeof(function));
    return function;
  }
  [[nodiscard]] bool hasFunction() const noexcept;

  void setThunk(Thunk thunk) noexcept { fThunk = thunk; }
  [[nodiscard]] Thunk thunk() const noexcept { return fThunk; }

  void setFirstArgumentIsSelf(bool is) noexcept { fFirstArgumentIsSelf = is ? 1 : 0; }
  [[nodiscard]] bool firstArgumentIsSelf() const noexcept { return fFirstArgumentIsSelf != 0; }

  /// Calls the thunk, which must have been set.
  void invoke(VeskClient const* client, int& resultCount, VeskValue* results, int argumentCount,
              VeskValue const* arguments) const {
    fThunk(*this, client, resultCount, results, argumentCount, arguments);
  }

  /// Builds a signature; all texts are interned. `names` are those of the arguments without the receiver,
  /// separated by comma and blank; `result` is a full class name, a data type or "void"; `receiver` is null
  /// or the full class name of the receiver, which then does not stand among the argument types.
  static void createSignature(char const* names, char const* result, char const* receiver,
                              VeskMethodSignaturePtr& signature);
  static void createSignature(char const* names, char const* result, char const* receiver, char const* first,
                              VeskMethodSignaturePtr& signature);
  static void createSignature(char const* names, char const* result, char const* receiver, char const* first,
                              char const* second, VeskMethodSignaturePtr& signature);
  static void createSignature(char const* names, char const* result, char const* receiver, char const* first,
                              char const* second, char const* third, VeskMethodSignaturePtr& signature);
  static void createSignature(char const* names, char const* result, char const* receiver, char const* first,
                              char const* second, char const* third, char const* fourth,
                              VeskMethodSignaturePtr& signature);
  /// For any number of argument types.
  static void createSignature(char const* names, char const* result, char const* receiver,
                              std::span<char const* const> argumentTypes, VeskMethodSignaturePtr& signature);

 private:
  Thunk fThunk = nullptr;
  alignas(void*) unsigned char fFunction[2 * sizeof(void*)] = {};
  unsigned char fFirstArgumentIsSelf = 0;
};

/// A method of a class that runs through an Invoker.
class UMLMM_API MethodImpl : public VeskMethod {
 public:
  MethodImpl(char const* name, MethodAttributes attributes, char const* description);
  ~MethodImpl() override;
  void invoke(VeskClient const* client, int& resultCount, VeskValue* results, int argumentCount,
              VeskValue const* arguments) const override;
  [[nodiscard]] Invoker& invoker() noexcept { return fInvoker; }
  [[nodiscard]] Invoker const& invoker() const noexcept { return fInvoker; }

 private:
  Invoker fInvoker;
};

/// A constructor of a class that runs through an Invoker.
class UMLMM_API VeskConstructor : public VeskMethod {
 public:
  VeskConstructor(char const* name, MethodAttributes attributes, char const* description);
  ~VeskConstructor() override;
  void invoke(VeskClient const* client, int& resultCount, VeskValue* results, int argumentCount,
              VeskValue const* arguments) const override;
  [[nodiscard]] Invoker& invoker() noexcept { return fInvoker; }
  [[nodiscard]] Invoker const& invoker() const noexcept { return fInvoker; }

 private:
  Invoker fInvoker;
};

/// Throws if the unboxed receiver is missing altogether. A receiver that is a null reference is there: what
/// is done with it is for the typed function to say.
UMLMM_API void validateSelfPointer(void const* self);
UMLMM_API void validateSelfPointer(void const* self, Invoker const& invoker);

}  // namespace vesk::factory::impl
