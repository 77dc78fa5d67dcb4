#pragma once

#include "kelm/ModelElementIntf.h"
#include "kelm/ModelObject.h"

/// An object that is deleted with its last count.
class CountedObject : public Kelm::NSInterface::ObjectIntf {
 public:
  int incRef() const override { return ++fCount; }
  int decRef() const override {
    if (--fCount > 0) return fCount;
    delete this;
    return 0;
  }
  int numRef() const override { return fCount; }
  char const* getVeskName(bool) const override { return "test.Counted"; }
  bool deviant_isValid(Kelm::Deviant) const override { return true; }

 private:
  mutable int fCount = 0;
};

/// An element without slots.
class TestElement final : public Kelm::NSInterface::ModelElementIntf {
 public:
  TestElement() : TestElement(&table()) {}
  explicit TestElement(Kelm::ClassTable const* aTable) { Kelm::ElementState::table(*this) = aTable; }
  ~TestElement() override { ++sDeleted; }

  static Kelm::ClassTable const& table() {
    static Kelm::ClassTable const sTable = [] {
      Kelm::ClassTable table{};
      table.fVeskName = "test.Element";
      table.fImmutableVeskName = "test.ImmutableElement";
      table.fEngine = &engine();
      return table;
    }();
    return sTable;
  }
  static Kelm::ElementEngine& engine() {
    static Kelm::ElementEngine sEngine{
        [](ModelElementIntf* aElement) { delete static_cast<TestElement*>(aElement); }, nullptr, nullptr,
        nullptr, nullptr};
    return sEngine;
  }
  static inline int sDeleted = 0;
};

/// An open model with a handle on it, closed at the end.
struct OpenModel {
  OpenModel() : fModel(Kelm::NSInterface::FactoryIntf::createNewModel()) {}
  ~OpenModel() { fModel.object().close(); }
  Kelm::ModelObject& object() const { return fModel.object(); }
  Kelm::Deviant base() const { return object().baseDeviant(); }

  Kelm::Model fModel;
};
