#pragma once

#include "kelm/ModelObject.h"
#include "uml_metamodel/umlmm.h"

/// A model that is closed at the end, so that its elements go.
class TestModel {
 public:
  TestModel() : fModel(Kelm::NSInterface::FactoryIntf::createNewModel()) {}
  TestModel(TestModel const&) = delete;
  TestModel& operator=(TestModel const&) = delete;
  ~TestModel() { fModel.object().close(); }

  operator Kelm::Model const&() const noexcept { return fModel; }
  Kelm::Deviant const& deviant() const noexcept { return fModel.getDeviant(); }

 private:
  Kelm::Model fModel;
};
