#pragma once

#include <boost/exception/exception.hpp>
#include <new>
#include <string>

#include "lum/visibility.h"

namespace foundation::core::except {

/// Root of the house's own exceptions: knows its text as UTF-16 and gives it out narrow as well.
class UMLMM_API IException {
 public:
  virtual ~IException();
  /// The text as ASCII, other characters as question marks; lives as long as the exception. Made at the first
  /// call, so one thread at a time asks.
  virtual char const* what() const noexcept;
  [[nodiscard]] std::u16string toUstring() const { return ToUstringImpl(); }

 protected:
  IException() = default;
  IException(IException const&) = default;
  IException& operator=(IException const&) = default;

  virtual std::u16string ToUstringImpl() const = 0;
  /// Narrow text of the standard library as UTF-16.
  virtual std::u16string convert_str(std::string const& text) const;

 private:
  mutable std::string fNarrow;
};

/// An exception for the house's own use, never shown to a script as it is.
class UMLMM_API IInternalException : public IException {
 public:
  ~IInternalException() override;
};

/// Joins a house exception with an exception of the standard library, whose text it takes over.
template <class Interface, class Standard, class Tag>
class UMLMM_API Exception : public Interface, public Standard {
 public:
  char const* what() const noexcept override { return IException::what(); }

 protected:
  std::u16string ToUstringImpl() const override { return this->convert_str(std::string(Standard::what())); }
};

extern template class Exception<IInternalException, std::bad_alloc, void>;

namespace detail {

class UMLMM_API bad_alloc_impl : public std::bad_alloc {
 public:
  bad_alloc_impl();
  bad_alloc_impl(bad_alloc_impl const&);
  bad_alloc_impl& operator=(bad_alloc_impl const&) = delete;
  ~bad_alloc_impl() override;
  char const* what() const noexcept override;

 private:
  Exception<IInternalException, std::bad_alloc, void> internal;
};

}  // namespace detail

/// The out-of-memory exception, to be thrown by value: `throw foundation::core::except::bad_alloc();`
/// It is caught as `std::bad_alloc`. Throwing it needs no memory beyond the exception itself.
UMLMM_API boost::exception_detail::clone_impl<detail::bad_alloc_impl> bad_alloc();

}  // namespace foundation::core::except
