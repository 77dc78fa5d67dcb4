#include "kelm_mi/KelmmiPropertyFactory.h"

#include <memory>

#include "descriptors.h"
#include "frame/Boxing.h"
#include "kelm_mi/families.h"
#include "vesk/Detail.h"
#include "vesk/VeskClassInfo.h"
#include "vesk/factory/Invoker.h"
#include "vesk/factory/VeskMethod.h"
#include "vesk/host/ClassRecord.h"

namespace Kelm::mi {

namespace {

using vesk::VeskInterned;
using vesk::factory::PropertyAttributes;

/// A static method that asks for one property of the metamodel.
class MetaPropertyMethod final : public vesk::factory::VeskMethod, public vesk::Detailed {
 public:
  using Getter = ImmutableProperty (*)(unsigned aId);

  MetaPropertyMethod(char const* aName, Getter aGetter, unsigned aId)
      : VeskMethod(aName, vesk::factory::MethodStatic, ""), fGetter(aGetter), fId(aId) {
    vesk::factory::impl::Invoker::createSignature("", "Kelm.ImmutableProperty", nullptr, signature());
  }

  void invoke(vesk::VeskClient const*, int& aResultCount, vesk::VeskValue* aResults, int,
              vesk::VeskValue const*) const override {
    aResults[0] = Boxer<ImmutableProperty>::box(fGetter(fId));
    if (aResultCount == 0) aResultCount = 1;
  }

  /// The metaclass whose accessor serves the entry, and the id there.
  vesk::Details details() const override {
    std::string owner(fGetter(fId).get()->getOwner().getName());
    return {{"owner", std::move(owner)}, {"id", std::int64_t{fId}}};
  }

 private:
  Getter fGetter;
  unsigned fId;
};

/// The class owns what it is given from then on, also when it fails to take it.
template <class Property>
void give(vesk::VeskClass* aClass, std::unique_ptr<Property> aProperty) {
  aClass->addProperty(aProperty.release());
}

/// What a changeable instance shows of a many-valued feature whose declared type is the read-only sequence
/// class `aDeclared`: changeable elements, in a sequence as changeable as the feature; values have no
/// read-only form. A class without a family stands for itself.
VeskInterned shownByChangeable(char const* aDeclared, Mutability aMutability) {
  VeskInterned const declared = vesk::internal::intern(aDeclared);
  auto const* const cls = vesk::host::findClass(declared);
  vesk::ClassFamily const* const family = cls == nullptr ? nullptr : cls->info().family();
  return family == nullptr
             ? declared
             : family->sequence(aMutability == MutabilityChangeable ? Access::Changeable : Access::ReadOnly,
                                Access::Changeable);
}

void addSequence(KelmmiPropertyFactory const& aFactory, char const* aName, Mutability aMutability,
                 unsigned aId, char const* aTypeName, PropertyAttributes aAttributes) {
  give(aFactory.veskClass, std::make_unique<KelmmiSequenceProperty>(
                               aFactory.className, aName, aFactory.methods, aId, aTypeName,
                               shownByChangeable(aTypeName, aMutability), aMutability, aAttributes));
}

}  // namespace

void KelmmiPropertyFactory::ClassObject(char const* aName, Multiplicity aMultiplicity, Mutability aMutability,
                                        unsigned aId, char const* aTypeName,
                                        PropertyAttributes aAttributes) const {
  if (aMultiplicity == MultiplicityMany) {
    addSequence(*this, aName, aMutability, aId, aTypeName, aAttributes);
    return;
  }
  give(veskClass, std::make_unique<KelmmiClassObjectProperty>(className, aName, methods, aId, aTypeName,
                                                              aMultiplicity, aMutability, aAttributes));
}

void KelmmiPropertyFactory::DataType(char const* aName, Multiplicity aMultiplicity, Mutability aMutability,
                                     unsigned aId, char const* aTypeName, PropHelperBase* aHelper,
                                     PropertyAttributes aAttributes) const {
  std::unique_ptr<PropHelperBase> helper(aHelper);
  give(veskClass,
       std::make_unique<KelmmiDataTypeProperty>(className, aName, methods, aId, aTypeName, aMultiplicity,
                                                aMutability, std::move(helper), aAttributes));
}

void KelmmiPropertyFactory::PrimitiveSequence(char const* aName, Multiplicity, Mutability aMutability,
                                              unsigned aId, char const* aTypeName,
                                              PropertyAttributes aAttributes) const {
  addSequence(*this, aName, aMutability, aId, aTypeName, aAttributes);
}

void KelmmiPropertyFactory::addMetaProperty(char const* aName, ImmutableProperty (*aGetter)(unsigned aId),
                                            unsigned aId) const {
  veskClass->addMethod(std::make_unique<MetaPropertyMethod>(aName, aGetter, aId).release());
}

}  // namespace Kelm::mi
