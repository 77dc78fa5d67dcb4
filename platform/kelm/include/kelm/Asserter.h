#pragma once

#include <exception>
#include <source_location>
#include <string>

#include "lum/visibility.h"

namespace Kelm {

/// Every contract failure of the system; `what()` is the whole text, in UTF-8. Lack of memory is none: that
/// is `std::bad_alloc`.
class UMLMM_API Exception : public std::exception {
 public:
  explicit Exception(std::string aText);
  ~Exception() override;
  char const* what() const noexcept override;

 private:
  std::string fText;
};

template <class E>
class AsserterEx;

/// Formats a failure's message into the thread's buffer and hands it to a reporter. A check is written in one
/// form everywhere: test the condition inline; only if it fails, make a reporter and call `handle` on it. No
/// other failure may come between the two: there is one buffer a thread.
class UMLMM_API Asserter {
 public:
  /// Bytes, the closing zero included; a longer message is cut.
  static constexpr int kLogBufSize = 4097;
  /// The last message; each thread has its own.
  static constinit thread_local char fLogBuf[kLogBufSize];

  explicit Asserter(bool aCondition) noexcept;
  virtual ~Asserter();

  /// Formats only if the condition is false.
  template <class E>
  static AsserterEx<E> Make(bool aCondition, char const* aFormat, ...);
  /// Formats always; the reporter's condition is false.
  template <class E>
  static AsserterEx<E> MakeAlways(char const* aFormat, ...);

 protected:
  bool fCondition;
};

/// The reporter that throws E.
template <>
class UMLMM_API AsserterEx<Exception> : public Asserter {
 public:
  explicit AsserterEx(bool aCondition) noexcept;
  ~AsserterEx() override;
  /// Throws the buffered message with its place unless the condition held; then it returns.
  virtual void handle(char const* aFile, int aLine, char const* aExtra) const;
};

// clang counts a `this` in the specialisation of a static member and refuses the attribute there.
#ifdef __clang__
#define UMLMM_FORMAT(text, values)
#else
#define UMLMM_FORMAT(text, values) [[gnu::format(printf, text, values)]]
#endif
template <>
UMLMM_FORMAT(2, 3)
UMLMM_API AsserterEx<Exception> Asserter::Make<Exception>(bool aCondition, char const* aFormat, ...);
template <>
UMLMM_FORMAT(1, 2)
UMLMM_API AsserterEx<Exception> Asserter::MakeAlways<Exception>(char const* aFormat, ...);
#undef UMLMM_FORMAT

/// Raises `aText` at `aSource` (a fixed source name, without extension) and the caller's line, from 1. All of
/// the words below are raised this way, and scripts see them as they stand.
[[noreturn]] UMLMM_API void raiseFailure(char const* aText, char const* aSource,
                                         int aLine = std::source_location::current().line());

/// Failure words that more than one place raises.
namespace words {
inline constexpr char kNullReference[] = "Cannot access NULL ref. Use isValid() before calling methods";
inline constexpr char kNullSequence[] =
    "Cannot access NULL sequence. Use MakeSequence to create sequences.See testSequenceCreation in "
    "kelm/kernel/unittest/sequence_tests.";
inline constexpr char kSequenceEmpty[] = "sequence is empty";
inline constexpr char kIndexNotPositive[] = "sequence index must be positive";
inline constexpr char kIndexOutOfBounds[] = "sequence index out of bounds";
inline constexpr char kInternalError[] = "Internal Error";
inline constexpr char kInternalAssertion[] =
    "Internal assertion without a message detected! Please fix me asap";
inline constexpr char kInvalidMetaPropertyId[] = "invalid meta property id";
inline constexpr char kMultiValuedSet[] = "You cannot set a multi-valued property";
inline constexpr char kReadOnlySet[] = "You cannot set a read-only property";
inline constexpr char kNotInVariant[] = "The object does not exist in this variant of the model";
}  // namespace words

/// Raises the null-reference failure at `aSource`.
[[noreturn]] UMLMM_API void raiseNullReference(char const* aSource,
                                               int aLine = std::source_location::current().line());

}  // namespace Kelm

namespace kelm {

/// The text for a scalar that got more than one element.
UMLMM_API char const* getTooManyElementsMessage() noexcept;
/// Raises the incorrect-type failure: the value is not of the type of this name.
[[noreturn]] UMLMM_API void Error_IncorrectType(std::string const& aTypeName);

}  // namespace kelm
