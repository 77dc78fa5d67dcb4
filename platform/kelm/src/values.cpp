#include "kelm/values.h"

#include <algorithm>
#include <mutex>

#include "Immortal.h"
#include "asks.h"

namespace Kelm {

namespace {

/// Stands for all values of one primitive kind; the value travels in the deviant.
class PrimitiveObject final : public NSInterface::ObjectIntf {
 public:
  int incRef() const override { return 1; }
  int decRef() const override { return 1; }
  int numRef() const override { return 1; }
  char const* getVeskName(bool) const override { return ""; }
  bool deviant_isValid(Deviant) const override { return true; }
};

Immortal<PrimitiveObject> sPrimitives[3];

/// Guards the numbers without a literal of all enumerations.
constinit std::mutex sNumbersGuard;

/// A literal may be written with a lower-case first letter.
bool isSpelling(std::string_view aText, std::string_view aLiteral) {
  if (aText.size() != aLiteral.size() || aText.empty()) return false;
  bool const lowered = aLiteral[0] >= 'A' && aLiteral[0] <= 'Z' && aText[0] == aLiteral[0] - 'A' + 'a';
  return (aText[0] == aLiteral[0] || lowered) && aText.substr(1) == aLiteral.substr(1);
}

}  // namespace

NSInterface::ObjectIntf const* const primitiveObjects[3] = {&sPrimitives[0].fObject, &sPrimitives[1].fObject,
                                                            &sPrimitives[2].fObject};

EnumerationType::EnumerationType(char const* aName, char const* aVeskName,
                                 std::span<std::string_view const> aLiterals)
    : fName(aName), fVeskName(aVeskName), fLiterals(aLiterals) {
  // Immortal, like all literal objects. The one behind the last literal heads the chain of numbers without
  // one.
  auto* const memory = ::operator new((aLiterals.size() + 1) * sizeof(EnumerationLiteralObject));
  fObjects = static_cast<EnumerationLiteralObject*>(memory);
  for (int number = 0; number <= std::ssize(aLiterals); ++number)
    new (fObjects + number) EnumerationLiteralObject(*this, number);
}

EnumerationLiteralObject const* EnumerationType::object(int aNumber) const {
  int const count = static_cast<int>(fLiterals.size());
  if (aNumber >= 0 && aNumber <= count) return fObjects + aNumber;
  std::lock_guard const guard(sNumbersGuard);
  EnumerationLiteralObject& head = fObjects[count];
  for (auto const* object = head.fNext; object != nullptr; object = object->fNext)
    if (object->number() == aNumber) return object;
  auto* const object = new EnumerationLiteralObject(*this, aNumber);
  object->fNext = std::exchange(head.fNext, object);
  return object;
}

int EnumerationType::parse(std::string_view aText) const {
  auto const literal = std::ranges::find_if(
      fLiterals, [aText](std::string_view aLiteral) { return isSpelling(aText, aLiteral); });
  if (literal == fLiterals.end()) kelm::Error_IncorrectType(fName);
  return static_cast<int>(literal - fLiterals.begin());
}

std::string EnumerationType::text(int aNumber) const {
  if (aNumber < 0 || aNumber >= std::ssize(fLiterals)) return std::to_string(aNumber);
  return std::string(fLiterals[aNumber]);
}

EnumerationLiteralObject::~EnumerationLiteralObject() = default;

ImmutableType EnumerationLiteralObject::getMetaType(Deviant const&) const {
  return ImmutableType(fType->fMetaType, metaDeviant());
}

void* EnumerationLiteralObject::cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const {
  return asksFor<EnumerationLiteralObject>(aClassInfo) ? castAnswer(this) : ObjectIntf::cast(aClassInfo);
}

int literalNumber(ImmutableObject const& aObject, EnumerationType const& aType) {
  auto const* const literal = queryInterface<EnumerationLiteralObject>(aObject.get());
  if (literal == nullptr || &literal->type() != &aType) kelm::Error_IncorrectType(aType.name());
  return literal->number();
}

}  // namespace Kelm
