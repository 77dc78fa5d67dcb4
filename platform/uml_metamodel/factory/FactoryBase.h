#pragma once

#include "uml_metamodel/umlmm/NSInterface/FactoryIntf.h"
#include "uml_metamodel/umlmm/detail/metamodel.h"

namespace umlmm::factory {

/// What a factory is, but for its create members: counted, and good for as long as its model is open.
class FactoryBase : public NSInterface::FactoryIntf {
 public:
  explicit FactoryBase(Kelm::Model const& aModel) : fModel(aModel) {}

  int incRef() const override { return ++fCount; }
  int decRef() const override;
  int numRef() const override { return fCount; }
  void* cast(Kelm::CooperativeVisitor::internal::ClassInfo const& aClassInfo) const override;
  char const* getVeskName(bool aImmutable) const override;
  bool deviant_isValid(Kelm::Deviant aDeviant) const override;
  Kelm::Model getModel(Kelm::Deviant const& aDeviant) const override;
  Kelm::Object createFromString(Kelm::Deviant const& aDeviant, Kelm::String const& aText) override;
  Kelm::Object createFromString(Kelm::Deviant const& aDeviant, Kelm::String const& aType,
                                Kelm::String const& aText) override;

 protected:
  template <class X, class... References>
  X make(Kelm::Deviant const& aDeviant, References const&... aReferences) {
    return detail::create<X>(getModel(aDeviant), aReferences...);
  }

 private:
  mutable int fCount = 0;
  Kelm::Model fModel;
};

}  // namespace umlmm::factory
