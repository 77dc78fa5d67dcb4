#include <algorithm>
#include <limits>

#include "vesk/VeskError.h"
#include "vesk/host/Call.h"

namespace vesk::host {

namespace {

/// Sum of the costs of the arguments from `offset` on; cost::kNone if one does not fit.
int costOf(MethodRecord const& method, ArgumentSource& arguments, int offset, int count) {
  int sum = 0;
  for (int i = 0; i < count; ++i) {
    int const one = arguments.conversionCost(offset + i, method.argumentType(i));
    if (one < 0) return cost::kNone;
    sum += one;
  }
  return sum;
}

/// Whether the first argument stands for the receiver.
bool takesReceiver(MethodRecord const& method, CallForm form) noexcept {
  return form == CallForm::OnClass && method.fHasReceiver && method.fOwner;
}

/// Cost of a call with exactly these arguments.
int costOfCall(MethodRecord const& method, CallForm form, ArgumentSource& arguments, int count) {
  int const offset = takesReceiver(method, form) ? 1 : 0;
  if (count - offset != method.fCount) return cost::kNone;
  if (offset && arguments.receiverCost(0, *method.fOwner) < 0) return cost::kNone;
  return costOf(method, arguments, offset, count - offset);
}

bool canBeLeftOut(MethodRecord const& constructor, int from) {
  for (int i = from; i < constructor.fCount; ++i)
    if (!holdsArray(constructor.argumentType(i).fCarrier)) return false;
  return true;
}

/// The best among candidates that are offered one after the other: the first of the lowest cost.
struct Best {
  MethodRecord const* fMethod = nullptr;
  int fCost = std::numeric_limits<int>::max();

  void offer(MethodRecord const& method, int cost) {
    if (cost < 0 || cost >= fCost) return;
    fMethod = &method;
    fCost = cost;
  }
};

std::string givenTypes(ArgumentSource& arguments, int count) {
  std::string text = "(";
  for (int i = 0; i < count; ++i) text.append(i ? ", " : "").append(arguments.describe(i));
  return text + ")";
}

/// What to do about the first argument of a method that does not fit; empty if nothing is known.
std::string remedyFor(MethodRecord const& method, CallForm form, ArgumentSource& arguments, int count) {
  int const offset = takesReceiver(method, form) ? 1 : 0;
  if (offset && count > 0 && arguments.receiverCost(0, *method.fOwner) < 0)
    return "The first argument is the object itself, of class '" + std::string(method.fOwner->fName.view()) +
           "'; nothing is converted to one";
  for (int i = 0; i < std::min(count - offset, int{method.fCount}); ++i) {
    if (arguments.conversionCost(offset + i, method.argumentType(i)) < 0)
      return arguments.remedy(offset + i, method.argumentType(i));
  }
  return {};
}

template <class Methods>
[[noreturn]] void throwNoMatch(std::string const& what, Methods const& methods, CallForm form,
                               ArgumentSource& arguments, int count) {
  std::string text = what + " cannot be called with " + givenTypes(arguments, count) + ". ";
  for (MethodRecord const* method : methods) {
    std::string const remedy = remedyFor(*method, form, arguments, count);
    if (remedy.empty()) continue;
    text += remedy + ". ";
    break;
  }
  text += "It has the signatures:";
  for (MethodRecord const* method : methods) {
    text += "\n  ";
    if (method->fOwner) text.append(method->fOwner->fName.view()).append(": ");
    text += method->text();
  }
  throw VeskError(text, VeskError::Kind::Match);
}

}  // namespace

MethodRecord const* findMethod(Member const& member, CallForm form, ArgumentSource& arguments, int count) {
  Best best;
  ClassRecord const* owner = nullptr;
  for (MethodRecord const* method : member.fMethods) {
    if (method->fOwner != owner && best.fMethod) break;  // a nearer class has one that fits
    owner = method->fOwner;
    best.offer(*method, costOfCall(*method, form, arguments, count));
  }
  return best.fMethod;
}

MethodRecord const& resolveMethod(Member const& member, CallForm form, ArgumentSource& arguments, int count) {
  if (MethodRecord const* method = findMethod(member, form, arguments, count)) return *method;
  throwNoMatch(
      (form == CallForm::Function ? "Function '" : "Method '") + std::string(member.fName.view()) + "'",
      member.fMethods, form, arguments, count);
}

MethodRecord const& resolveConstructor(ClassRecord& cls, ArgumentSource& arguments, int count) {
  auto const constructors = cls.constructors();
  std::string const name(cls.fName.view());
  if (constructors.empty())
    throw VeskError("Class '" + name + "' has no constructor", VeskError::Kind::Match);
  // Arguments left out count more than any conversion: the shortest constructor that begins with those given.
  constexpr int kLeftOut = 1 << 16;
  Best best;
  for (MethodRecord const* constructor : constructors) {
    int const leftOut = constructor->fCount - count;
    if (leftOut < 0 || !canBeLeftOut(*constructor, count)) continue;
    int const cost = costOf(*constructor, arguments, 0, count);
    if (cost >= 0) best.offer(*constructor, cost + leftOut * kLeftOut);
  }
  if (!best.fMethod)
    throwNoMatch("The constructor of '" + name + "'", constructors, CallForm::Constructor, arguments, count);
  return *best.fMethod;
}

}  // namespace vesk::host
