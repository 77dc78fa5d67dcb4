#include "kelm/Asserter.h"

#include <cstdarg>
#include <cstring>
#include <exception>
#include <sstream>
#include <utility>

#include "lum/lum.h"

namespace Kelm {

namespace {

// A formatter that fails leaves an empty message.
void formatMessage(char const* aFormat, std::va_list aArguments) {
  if (lumVSNprintf(Asserter::fLogBuf, Asserter::kLogBufSize, aFormat, aArguments) == -1)
    std::memset(Asserter::fLogBuf, 0, Asserter::kLogBufSize);
}

}  // namespace

Exception::Exception(std::string aText) : fText(std::move(aText)) {}
Exception::~Exception() = default;
char const* Exception::what() const noexcept { return fText.c_str(); }

constinit thread_local char Asserter::fLogBuf[Asserter::kLogBufSize];

namespace {

// The system gives a thread its variables when it asks for the first of them, and ends the process if there
// is no memory for them then. The thread that loads the library asks at once.
[[maybe_unused]] char const* const sLoadersBuffer = Asserter::fLogBuf;

}  // namespace

Asserter::Asserter(bool aCondition) noexcept : fCondition(aCondition) {}
Asserter::~Asserter() = default;

AsserterEx<Exception>::AsserterEx(bool aCondition) noexcept : Asserter(aCondition) {}
AsserterEx<Exception>::~AsserterEx() = default;

void AsserterEx<Exception>::handle(char const* aFile, int aLine, char const* aExtra) const {
  if (fCondition) return;
  std::ostringstream text;
  text << "Assertion failed: " << fLogBuf << " at " << aFile << ':' << aLine << ": " << aExtra;
  throw Exception(std::move(text).str());
}

template <>
AsserterEx<Exception> Asserter::Make<Exception>(bool aCondition, char const* aFormat, ...) {
  if (!aCondition) {
    std::va_list arguments;
    va_start(arguments, aFormat);
    formatMessage(aFormat, arguments);
    va_end(arguments);
  }
  return AsserterEx<Exception>(aCondition);
}

template <>
AsserterEx<Exception> Asserter::MakeAlways<Exception>(char const* aFormat, ...) {
  std::va_list arguments;
  va_start(arguments, aFormat);
  formatMessage(aFormat, arguments);
  va_end(arguments);
  return AsserterEx<Exception>(false);
}

void raiseFailure(char const* aText, char const* aSource, int aLine) {
  Asserter::MakeAlways<Exception>("%s", aText).handle(aSource, aLine, "");
  std::terminate();
}

void raiseNullReference(char const* aSource, int aLine) {
  raiseFailure(words::kNullReference, aSource, aLine);
}

}  // namespace Kelm

namespace kelm {

char const* getTooManyElementsMessage() noexcept {
  return "A scalar or an empty array is expected, but the value has more than one element";
}

void Error_IncorrectType(std::string const& aTypeName) {
  Kelm::Asserter::MakeAlways<Kelm::Exception>("Incorrect type: the value is not of type '%s'",
                                              aTypeName.c_str())
      .handle("kelm/Kelm/Error", __LINE__, "");
  std::terminate();
}

}  // namespace kelm
