#include "descriptors.h"

#include <utility>

#include "boxing.h"
#include "frame/Unboxing.h"
#include "kelm/DeviantRegistry.h"
#include "kelm/Generic.h"
#include "kelm/meta.h"
#include "kelm/values.h"
#include "tarn/tarn.h"

namespace Kelm::mi {

namespace {

using vesk::VeskInterface;
using vesk::VeskInterned;
using vesk::VeskValue;
using vesk::factory::basic::BindingRegistry;

constexpr char kDataTypeSource[] = "kelm_mi/marshal/KelmmiDataTypeProperty";
constexpr char kClassObjectSource[] = "kelm_mi/marshal/KelmmiClassObjectProperty";
constexpr char kSequenceSource[] = "kelm_mi/marshal/KelmmiSequenceProperty";
constexpr char kTextSource[] = "kelm_mi/marshal/KelmmiTextProperty";

/// The value that the host shows for "nothing" of a type.
VeskValue absentValue(VeskInterned aType) {
  return BindingRegistry::announce(static_cast<void*>(nullptr), aType);
}

bool isEmpty(VeskValue aValue) { return tarn::numberOfElements(aValue.array()) == 0; }

/// Whether the instance may change its object.
bool isChangeable(VeskInterface* aInstance, VeskInterned aClass) {
  return !DeviantRegistry::isImmutable(aInstance->getNativeObject(aClass));
}

}  // namespace

KelmmiDataTypeProperty::KelmmiDataTypeProperty(char const* aClassName, char const* aName,
                                               IntrospectiveMethods const* aMethods, unsigned aId,
                                               char const* aDataType, Multiplicity aMultiplicity,
                                               Mutability aMutability,
                                               std::unique_ptr<PropHelperBase> aHelper,
                                               vesk::factory::PropertyAttributes aAttributes)
    : KelmmiProperty(aClassName, aName, aMethods, aId, aDataType, aMultiplicity, aMutability, aAttributes),
      fHelper(std::move(aHelper)) {}

KelmmiDataTypeProperty::~KelmmiDataTypeProperty() = default;

void KelmmiDataTypeProperty::setValue(VeskInterface* aInstance, VeskValue aValue) {
  Borrowed<ClassObject> object = openForSet(aInstance, fDataTypeName, kDataTypeSource);
  if (!fHelper->boxAndSet(&*object, aValue, methods, id)) {
    methods->unsetEntry(object->get(), object->getDeviant(), id);
  }
}

void KelmmiDataTypeProperty::releaseValue(VeskInterface*, VeskValue aValue) {
  tarnDestroyArray(aValue.array());
}

VeskValue KelmmiDataTypeProperty::getSingleValuedValue(ClassObject& aObject) {
  if (!has(required) && !methods->isSetEntry(aObject.get(), aObject.getDeviant(), id))
    return absentValue(fDataTypeName);
  Object value = methods->getEntry(aObject.get(), aObject.getDeviant(), id);
  return value.isNull() ? absentValue(fDataTypeName) : fHelper->unboxAndReturn(std::move(value), dataType);
}

KelmmiClassObjectProperty::~KelmmiClassObjectProperty() = default;

// The road that scripts take all day: the host holds the instance and so its element, no count is needed.
VeskValue KelmmiClassObjectProperty::getValue(VeskInterface* aInstance) {
  void* const instanceId = aInstance->getNativeObject(fDataTypeName);
  auto const [object, deviant] = DeviantRegistry::getVariantInfo(instanceId);
  auto* const element = queryInterface<NSInterface::ClassObjectIntf>(object);
  if (element == nullptr) [[unlikely]]
    raiseNullReference(kClassObjectSource);
  Object const value = methods->getEntry(element, deviant, id);
  if (value.isNull()) return absentValue(fDataTypeName);
  return boxMostlyBound(value.get(), value.getDeviant(), DeviantRegistry::isImmutable(instanceId),
                        fDataTypeName);
}

VeskValue KelmmiClassObjectProperty::getSingleValuedValue(ClassObject& aObject) {
  Object const value = methods->getEntry(aObject.get(), aObject.getDeviant(), id);
  return value.isNull() ? absentValue(fDataTypeName) : ReferenceBoxer::box(value, true, fDataTypeName);
}

void KelmmiClassObjectProperty::setValue(VeskInterface* aInstance, VeskValue aValue) {
  Borrowed<ClassObject> const object = openForSet(aInstance, fDataTypeName, kClassObjectSource);
  if (isEmpty(aValue)) {
    methods->unsetEntry(object->get(), object->getDeviant(), id);
    return;
  }
  auto const value =
      unboxReference<ImmutableClassObject>(aValue, ScriptClass<ImmutableObject>::name()).fValue;
  NSInterface::TypeIntf const& type = methods->metaPropertyTable[id].fProperty->getType();
  if (value.isNull() || !value.get()->getMetaClass().get()->conformsTo(type))
    kelm::Error_IncorrectType(dataType);
  methods->setEntry(object->get(), object->getDeviant(), id, Object(value.get(), value.getDeviant()));
}

void KelmmiClassObjectProperty::releaseValue(VeskInterface*, VeskValue aValue) {
  tarnDestroyArray(aValue.array());
}

KelmmiSequenceProperty::KelmmiSequenceProperty(char const* aClassName, char const* aName,
                                               IntrospectiveMethods const* aMethods, unsigned aId,
                                               char const* aDataType, VeskInterned aChangeableClass,
                                               Mutability aMutability,
                                               vesk::factory::PropertyAttributes aAttributes)
    : KelmmiProperty(aClassName, aName, aMethods, aId, aDataType, MultiplicityMany, aMutability, aAttributes),
      fChangeableClass(aChangeableClass) {}

KelmmiSequenceProperty::~KelmmiSequenceProperty() = default;

VeskValue KelmmiSequenceProperty::getMultiValuedValue(ClassObject& aObject, VeskInterface* aInstance) {
  Generic::SequenceIntf const* const live =
      methods->getSequenceEntry(aObject.get(), aObject.getDeviant(), id);
  // The flag of the id tells what the elements are: one live sequence is shown in both mutabilities at a
  // time.
  bool const changeable = fChangeableClass != fDataTypeName && isChangeable(aInstance, fDataTypeName);
  return announceObject(live, aObject.getDeviant(), !changeable,
                        changeable ? fChangeableClass : fDataTypeName);
}

void KelmmiSequenceProperty::setValue(VeskInterface* aInstance, VeskValue aValue) {
  Borrowed<ClassObject> const object = openForReplace(aInstance, fDataTypeName, kSequenceSource);
  Generic::SequenceIntf const* values = nullptr;
  Deviant valuesDeviant = object->getDeviant();
  if (!isEmpty(aValue)) {
    UnboxedInterface const found =
        unboxInterface(aValue.array(), fDataTypeName, tagPair<Generic::SequenceIntf, VisitationDomain>());
    if (found.fInterface == nullptr) kelm::Error_IncorrectType(dataType);
    values = static_cast<Generic::SequenceIntf const*>(found.fInterface);
    valuesDeviant = found.fDeviant;
    // Assigning what was read is no change.
    if (values == methods->getSequenceEntry(object->get(), object->getDeviant(), id)) return;
  }
  methods->setSequenceEntry(object->get(), object->getDeviant(), id, values, valuesDeviant);
}

void KelmmiSequenceProperty::releaseValue(VeskInterface*, VeskValue aValue) {
  tarnDestroyArray(aValue.array());
}

KelmmiTextProperty::~KelmmiTextProperty() = default;

VeskValue KelmmiTextProperty::getSingleValuedValue(ClassObject& aObject) {
  Object const value = methods->getEntry(aObject.get(), aObject.getDeviant(), id);
  StringObject const* const text = asString(value);
  return tarnCreateString_UTF16(text == nullptr ? u"" : text->data());
}

void KelmmiTextProperty::setValue(VeskInterface* aInstance, VeskValue aValue) {
  Borrowed<ClassObject> const object =
      openForSet(aInstance, vesk::internal::interned<"char vector">(), kTextSource);
  String const text(tarn::textOf(aValue.array()));
  if (text.empty() && !has(required)) {
    methods->unsetEntry(object->get(), object->getDeviant(), id);
  } else {
    methods->setEntry(object->get(), object->getDeviant(), id, Object(text.record(), Deviant()));
  }
}

void KelmmiTextProperty::releaseValue(VeskInterface*, VeskValue aValue) { tarnDestroyArray(aValue.array()); }

}  // namespace Kelm::mi
