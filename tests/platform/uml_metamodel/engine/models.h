#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kelm/ModelCache.h"
#include "kelm/ModelObject.h"
#include "uml_metamodel/umlmm.h"

/// A fresh model for each test, closed behind it.
class ModelTest : public testing::Test {
 protected:
  ModelTest() : fModel(Kelm::NSInterface::FactoryIntf::createNewModel()) {}
  ~ModelTest() override { fModel.object().close(); }

  template <class X>
  X make() const {
    return X::create(fModel);
  }
  template <class X>
  X named(char16_t const* aName) const {
    X element = X::create(fModel);
    element.setName(umlmm::String(std::u16string(aName)));
    return element;
  }

  Kelm::Model fModel;
};

/// The text of the failure that a call raises; empty if it raises none.
template <class Call>
std::string failureOf(Call aCall) {
  try {
    aCall();
  } catch (Kelm::Exception const& failure) {
    return failure.what();
  }
  return {};
}

template <class Sequence>
auto valuesOf(Sequence const& aSequence) {
  std::vector<typename Sequence::Value> values;
  for (auto const& value : aSequence.values()) values.push_back(value);
  return values;
}
