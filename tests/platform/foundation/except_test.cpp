#include "foundation/except.h"

#include <gtest/gtest.h>

#include <boost/exception_ptr.hpp>

namespace {

namespace except = foundation::core::except;

TEST(OutOfMemory, IsCaughtAsTheStandardException) {
  try {
    throw except::bad_alloc();
  } catch (std::bad_alloc const& e) {
    EXPECT_STREQ(e.what(), std::bad_alloc().what());
    return;
  }
  FAIL();
}

TEST(OutOfMemory, SurvivesCloningAndThrowingAgain) {
  auto const original = except::bad_alloc();
  boost::exception_detail::clone_base const& cloneable = original;
  std::unique_ptr<boost::exception_detail::clone_base const> const copy(cloneable.clone());
  EXPECT_THROW(copy->rethrow(), except::detail::bad_alloc_impl);
  EXPECT_THROW(boost::rethrow_exception(boost::copy_exception(original)), std::bad_alloc);
}

/// A member of the family as other libraries define one.
class Internal : public except::Exception<except::IInternalException, std::bad_alloc, void> {};

TEST(ExceptionFamily, JoinsTheHouseTextWithTheStandardOne) {
  Internal const exception;
  except::IException const& house = exception;
  std::bad_alloc const& standard = exception;
  EXPECT_EQ(house.toUstring(), u"std::bad_alloc");
  EXPECT_STREQ(house.what(), "std::bad_alloc");
  EXPECT_STREQ(standard.what(), "std::bad_alloc");
}

}  // namespace
