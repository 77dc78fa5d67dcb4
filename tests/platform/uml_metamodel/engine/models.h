#pragma once

#include <gtest/gtest.h>

#include <string>

#include "kelm/ModelCache.h"
#include "kelm/ModelObject.h"
#include "platform/kelm/support/failure.h"
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
