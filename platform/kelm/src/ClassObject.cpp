#include "kelm/ClassObject.h"

#include "asks.h"
#include "kelm/Generic.h"
#include "kelm/meta.h"
#include "kernel_meta.h"

namespace Kelm {

namespace NSInterface {

namespace {

constexpr char kSource[] = "kelm/Kelm/ClassObject";

using Element = ClassObjectIntf;

PropertyIntf const& property(unsigned aId) {
  if (aId == 0 || aId > Element::kKernelFeatureCount) raiseFailure(words::kInvalidMetaPropertyId, kSource);
  return *kernelPropertyTable[aId].fProperty;
}

Object getEntry(Element const* aElement, Deviant const& aDeviant, unsigned aId) {
  if (property(aId).isMultivalued()) return Object(nullptr, aDeviant);
  return aElement->getKernelEntry(aDeviant, aId);
}

Generic::SequenceIntf* getSequenceEntry(Element const* aElement, Deviant const& aDeviant, unsigned aId) {
  if (!property(aId).isMultivalued()) return nullptr;
  return aElement->getKernelSequence(aDeviant, aId);
}

bool isSetEntry(Element const* aElement, Deviant const& aDeviant, unsigned aId) {
  if (!property(aId).isMultivalued()) return !aElement->getKernelEntry(aDeviant, aId).isNull();
  Generic::SequenceIntf const* const values = aElement->getKernelSequence(aDeviant, aId);
  return values != nullptr && !values->generic_empty(aDeviant);
}

bool isReadOnlyEntry(Element const*, Deviant const&, unsigned aId) { return property(aId).isReadOnly(); }

void setEntry(Element* aElement, Deviant const& aDeviant, unsigned aId, Object const& aValue) {
  if (property(aId).isReadOnly()) raiseFailure(words::kReadOnlySet, kSource);
  aDeviant.assertWritable(aElement);
  aElement->setKernelEntry(aDeviant, aId, aValue);
}

void unsetEntry(Element* aElement, Deviant const& aDeviant, unsigned aId) {
  setEntry(aElement, aDeviant, aId, Object(nullptr, aDeviant));
}

// The many-valued features of the kernel are views of the model, none can be replaced.
void setSequenceEntry(Element*, Deviant const&, unsigned aId, Generic::SequenceIntf const*, Deviant const&) {
  raiseFailure(property(aId).isMultivalued() ? words::kReadOnlySet : words::kInternalError, kSource);
}

}  // namespace

IntrospectiveMethods const ClassObjectIntf::sIntrospectiveMethods = {
    getEntry,         isSetEntry,      setEntry,           getSequenceEntry,   unsetEntry,
    setSequenceEntry, isReadOnlyEntry, &kernelClassObject, kernelPropertyTable};

ClassObjectIntf::~ClassObjectIntf() = default;

void* ClassObjectIntf::cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const {
  return asksFor<ClassObjectIntf>(aClassInfo) ? castAnswer(this) : ObjectIntf::cast(aClassInfo);
}

}  // namespace NSInterface

ImmutableClass ImmutableClassObject::MetaClass() {
  return ImmutableClass(NSInterface::kernelClassObject, metaDeviant());
}

}  // namespace Kelm
