#pragma once

#include "kelm/Deviant.h"
#include "kelm/ReferenceCountingIntf.h"

namespace Kelm::NSInterface {

/// Everything that a reference can hold: elements, models, factories, meta objects and values.
class UMLMM_API ObjectIntf : public ReferenceCountingIntf {
 public:
  ~ObjectIntf() override;
  void* cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const override;
  /// Full name of the script class that shows the object, in the asked mutability ("umlmm.ImmutableClass");
  /// empty for values that hosts show as values of their own. It lives as long as the process.
  virtual char const* getVeskName(bool aImmutable) const = 0;
  /// Whether the object exists in the variant. Values and meta objects do in any.
  virtual bool deviant_isValid(Deviant aDeviant) const = 0;
  /// The object's type in the metamodel; null for objects without one.
  virtual ImmutableType getMetaType(Deviant const& aDeviant) const;
  /// Takes the object out of the variant; raises for objects that cannot be destroyed, which are all but
  /// elements and models.
  virtual void destroy(Deviant const& aDeviant);
};

}  // namespace Kelm::NSInterface
