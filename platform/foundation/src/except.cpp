#include "foundation/except.h"

namespace foundation::core::except {

IException::~IException() = default;
IInternalException::~IInternalException() = default;

// Made when first asked for, so that throwing out of memory needs no text.
char const* IException::what() const noexcept {
  try {
    if (fNarrow.empty())
      for (char16_t unit : ToUstringImpl()) fNarrow.push_back(unit < 0x80 ? static_cast<char>(unit) : '?');
    return fNarrow.c_str();
  } catch (...) {
    return "exception without text";
  }
}

std::u16string IException::convert_str(std::string const& text) const {
  std::u16string wide;
  wide.reserve(text.size());
  for (char c : text) wide.push_back(static_cast<unsigned char>(c));
  return wide;
}

template class Exception<IInternalException, std::bad_alloc, void>;

namespace detail {

bad_alloc_impl::bad_alloc_impl() = default;
bad_alloc_impl::bad_alloc_impl(bad_alloc_impl const&) = default;
bad_alloc_impl::~bad_alloc_impl() = default;
char const* bad_alloc_impl::what() const noexcept { return internal.what(); }

}  // namespace detail

boost::exception_detail::clone_impl<detail::bad_alloc_impl> bad_alloc() {
  return boost::exception_detail::clone_impl<detail::bad_alloc_impl>(detail::bad_alloc_impl());
}

}  // namespace foundation::core::except
