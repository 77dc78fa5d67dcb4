#pragma once

#include <gtest/gtest.h>

#include <string>

#include "kelm/kernel/containers/subject.h"

/// The behaviour of sequences, written once. A test program links the suite's target and names its rows:
/// `INSTANTIATE_TEST_SUITE_P(Lists, SequenceSuite, testing::ValuesIn(kinds), sequence_suite::nameOf)`.
namespace sequence_suite {

class SequenceSuite : public testing::TestWithParam<Kind> {
 protected:
  std::unique_ptr<Subject> make(std::vector<int> const& aValues = {}) const {
    auto subject = GetParam().fMake();
    for (int const value : aValues) subject->push_back(value);
    return subject;
  }
  bool isUnique() const { return GetParam().fIsUnique; }
};

inline std::string nameOf(testing::TestParamInfo<Kind> const& aInfo) { return aInfo.param.fName; }

/// The words of a failure without its place: what stands between "Assertion failed: " and " at ".
std::string wordsOf(std::string const& aText);

/// What `aCall` raised, as words; "" if nothing.
template <class Call>
std::string failureOf(Call const& aCall) {
  try {
    aCall();
  } catch (std::exception const& exception) {
    return wordsOf(exception.what());
  }
  return "";
}

}  // namespace sequence_suite
