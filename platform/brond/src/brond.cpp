#include "brond/ErrorHolder.h"
#include "brond/TypeInfo.h"
#include "brond/any.h"

namespace Brond {

char const* bad_any_cast::what() const noexcept {
  return "The holder does not hold a value of the wanted type";
}

any::placeholder::~placeholder() = default;

ErrorHolder::ErrorHolder() = default;
ErrorHolder::~ErrorHolder() = default;

void ErrorHolder::setError(std::string text) {
  fText = std::move(text);
  fHasError = true;
}

TypeInfo::~TypeInfo() = default;

}  // namespace Brond
