#pragma once

#include <string>

#include "vesk/host/ClassRecord.h"
#include "vesk/host/Instance.h"

namespace vesk::host {

/// Costs of conversions: the lower the better, negative for none. A class costs its distance, so that the
/// nearest class wins.
namespace cost {
inline constexpr int kNone = -1;
inline constexpr int kExact = 0;
inline constexpr int kWidening = 1;
inline constexpr int kList = 1;
inline constexpr int kCoercion = 2;
inline constexpr int kBuiltSequence = 3;
}  // namespace cost

/// The arguments of a call as a front holds them. The host ranks methods by what the front says it can
/// convert, at what cost, and lets it convert the arguments for the one that is chosen. So costs are asked
/// any number of times and must not change anything; each argument is converted once.
class UMLMM_API ArgumentSource {
 public:
  /// Cost of argument `index`, counted from 0, as a value of `wanted`; cost::kNone if it is none.
  virtual int conversionCost(int index, Type const& wanted) = 0;
  /// The same for the receiver of a method that is called on its class: what stands for the object itself, or
  /// for none, but nothing that would be made from other values and changed in its place.
  virtual int receiverCost(int index, ClassRecord const& wanted) { return conversionCost(index, wanted); }
  /// The argument as a value of `wanted`; an array belongs to the caller. Throws a VeskError of kind Match or
  /// Range for a value that is none.
  virtual VeskValue convert(int index, Type const& wanted) = 0;
  /// What the argument is, for a message: "str", "umlmm.Comment".
  virtual std::string describe(int index) = 0;
  /// What a script can do about an argument that is no value of `wanted`, as a sentence; empty if nothing is
  /// known.
  virtual std::string remedy(int, Type const&) { return {}; }

 protected:
  ~ArgumentSource() = default;
};

/// How a method is called.
enum class CallForm {
  OnInstance,   ///< `instance.method(...)`: the receiver stands beside the arguments
  OnClass,      ///< `Class.method(...)`: the receiver of a method that has one is argument 0
  Constructor,  ///< `Class(...)`
  Function,     ///< `package.function(...)`
};

/// The method that fits the arguments best: the nearest class that has a fitting one, there the lowest sum
/// of costs, among equals the one defined first. Null if none fits. Takes time for each method up to that
/// class; a front does well to remember the answer for the types of its arguments.
[[nodiscard]] UMLMM_API MethodRecord const* findMethod(Member const& member, CallForm form,
                                                       ArgumentSource& arguments, int count);
/// The same; throws a VeskError of kind Match that lists the signatures if none fits.
[[nodiscard]] UMLMM_API MethodRecord const& resolveMethod(Member const& member, CallForm form,
                                                          ArgumentSource& arguments, int count);

/// The constructor of `cls` itself that fits; arguments at the end may be left out. Throws as above.
[[nodiscard]] UMLMM_API MethodRecord const& resolveConstructor(ClassRecord& cls, ArgumentSource& arguments,
                                                               int count);

/// Calls a method that was resolved for the same form and arguments. `receiver` is used by the form
/// OnInstance alone and may be null for a static method. The result is of the method's result type; of type
/// "void" if the method gave none. What was converted is given back, also when the call throws.
UMLMM_API OwnedValue callMethod(MethodRecord const& method, CallForm form, Instance* receiver,
                                ArgumentSource& arguments, int count);

/// Calls a constructor for an unbound instance, which stays the caller's; throws if it comes back unbound.
UMLMM_API void construct(MethodRecord const& constructor, Instance& instance, ArgumentSource& arguments,
                         int count);
/// Makes an instance and constructs it; the reference belongs to the caller.
[[nodiscard]] UMLMM_API Instance* newInstance(ClassRecord& cls, ArgumentSource& arguments, int count);

/// Converts argument `index` to the property's type and sets the property.
UMLMM_API void setProperty(PropertyRecord const& property, Instance& instance, ArgumentSource& arguments,
                           int index);

/// The value of a property while it is being copied: given back at the end of the scope.
class PropertyReading {
 public:
  PropertyReading(PropertyRecord const& property, Instance& instance)
      : fInfo(*property.fInfo), fInstance(instance), fValue(fInfo.getValue(&instance)) {}
  PropertyReading(PropertyReading const&) = delete;
  PropertyReading& operator=(PropertyReading const&) = delete;
  ~PropertyReading() { fInfo.releaseValue(&fInstance, fValue); }

  [[nodiscard]] VeskValue value() const noexcept { return fValue; }

 private:
  VeskPropInfo& fInfo;
  Instance& fInstance;
  VeskValue fValue;
};

}  // namespace vesk::host
