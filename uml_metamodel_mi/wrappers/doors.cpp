#include "uml_metamodel_mi/wrappers/doors.h"

#include <string_view>
#include <vector>

#include "frame/ElementClassInfo.h"
#include "kelm/DeviantRegistry.h"
#include "kelm/ModelElementIntf.h"
#include "kelm/values.h"
#include "kelm_mi/KelmmiProperty.h"
#include "vesk/PropertyDoor.h"
#include "vesk/host/Bindings.h"
#include "vesk/host/Instance.h"

namespace umlmm::mi {

namespace {

using Kelm::Deviant;
using Kelm::DeviantRegistry;
using Kelm::PrimitiveKind;
using Kelm::mi::KelmmiProperty;
using umlmm::detail::Storage;
using umlmm::detail::StoredFeature;
using vesk::PropertyDoor;
using Element = Kelm::NSInterface::ModelElementIntf;

/// An element that exists in its variant, or none.
struct Found {
  Element* fElement = nullptr;
  Deviant fDeviant;

  explicit operator bool() const noexcept { return fElement != nullptr; }
  unsigned slot(PropertyDoor const& aDoor) const noexcept {
    return fElement->classTable()->fSlotOfFeature[aDoor.fNumber];
  }
  template <class T>
  T const& word(unsigned aSlot) const noexcept {
    return reinterpret_cast<T const*>(fElement->slots())[aSlot];
  }
};

Found find(void const* aId) noexcept {
  auto const [object, deviant] = DeviantRegistry::getVariantInfo(aId);
  auto* const element =
      static_cast<Element*>(Kelm::queryInterface<Kelm::NSInterface::ClassObjectIntf>(object));
  if (element == nullptr || !element->existsIn(deviant)) [[unlikely]]
    return {};
  return {element, deviant};
}
/// The same if the id may change it.
Found findToChange(void const* aId) noexcept {
  return DeviantRegistry::isImmutable(aId) ? Found() : find(aId);
}

KelmmiProperty const& propertyOf(PropertyDoor const& aDoor) noexcept {
  return static_cast<KelmmiProperty const&>(*aDoor.fProperty);
}

// --- reading

bool readText(PropertyDoor const& aDoor, void const* aId, PropertyDoor::Value& aValue) {
  Found const found = find(aId);
  if (!found) return false;
  unsigned const slot = found.slot(aDoor);
  if (slot == Kelm::ClassTable::kNoSlot) return false;
  if (auto const* const text = found.word<Kelm::StringObject const*>(slot)) {
    aValue.fText = text->text();
    aValue.fMark = &text->hostMark();
  }
  return true;
}

bool readLogical(PropertyDoor const& aDoor, void const* aId, PropertyDoor::Value& aValue) {
  Found const found = find(aId);
  if (!found) return false;
  unsigned const slot = found.slot(aDoor);
  if (slot == Kelm::ClassTable::kNoSlot) return false;
  std::uint32_t const bits = found.fElement->flags() >> slot;
  aValue.fIsAbsent = aDoor.fFlag && (bits & 2) == 0;
  aValue.fNumber = static_cast<std::int32_t>(bits & 1);
  return true;
}

bool readNumber(PropertyDoor const& aDoor, void const* aId, PropertyDoor::Value& aValue) {
  Found const found = find(aId);
  if (!found) return false;
  unsigned const slot = found.slot(aDoor);
  if (slot == Kelm::ClassTable::kNoSlot) return false;
  aValue.fNumber = found.word<std::int32_t>(slot);
  return true;
}

/// What the host shows of a target already; any other is the descriptor's to show.
bool show(Found aFound, void const* aId, Element const* aTarget, PropertyDoor::Value& aValue) noexcept {
  aValue.fIsAbsent = aTarget == nullptr;
  if (aTarget == nullptr) return true;
  void const* const id =
      DeviantRegistry::findId(*aTarget, aFound.fDeviant, DeviantRegistry::isImmutable(aId));
  if (id == nullptr) return false;
  aValue.fObject = vesk::host::bindings::lookUp(id);
  return aValue.fObject != nullptr && aValue.fObject->isBound();
}

bool readReference(PropertyDoor const& aDoor, void const* aId, PropertyDoor::Value& aValue) {
  Found const found = find(aId);
  if (!found) return false;
  unsigned const slot = found.slot(aDoor);
  return slot != Kelm::ClassTable::kNoSlot && show(found, aId, found.word<Element const*>(slot), aValue);
}
bool readOwner(PropertyDoor const&, void const* aId, PropertyDoor::Value& aValue) {
  Found const found = find(aId);
  return found && show(found, aId, found.fElement->container(), aValue);
}
bool readContainer(PropertyDoor const& aDoor, void const* aId, PropertyDoor::Value& aValue) {
  Found const found = find(aId);
  return found && show(found, aId, umlmm::detail::containerIn(*found.fElement, aDoor.fNumber), aValue);
}

// --- writing: the host's value is of the property's type, all else the accessors check

bool writeText(PropertyDoor const& aDoor, void const* aId, PropertyDoor::Value const& aValue) {
  Found const found = findToChange(aId);
  if (!found || aValue.fText.empty() || found.slot(aDoor) == Kelm::ClassTable::kNoSlot) return false;
  Kelm::String const text(aValue.fText);
  umlmm::detail::setText(*found.fElement, found.fDeviant, aDoor.fNumber, text.record());
  return true;
}

template <PrimitiveKind Kind>
bool writeNumber(PropertyDoor const& aDoor, void const* aId, PropertyDoor::Value const& aValue) {
  Found const found = findToChange(aId);
  if (!found) return false;
  KelmmiProperty const& property = propertyOf(aDoor);
  property.methods->setEntry(found.fElement, found.fDeviant, property.id,
                             Kelm::makePrimitive(Kind, static_cast<std::uint32_t>(aValue.fNumber)));
  return true;
}

bool writeReference(PropertyDoor const& aDoor, void const* aId, PropertyDoor::Value const& aValue) {
  Found const found = findToChange(aId);
  if (!found) return false;
  KelmmiProperty const& property = propertyOf(aDoor);
  if (aValue.fIsAbsent) {
    property.methods->unsetEntry(found.fElement, found.fDeviant, property.id);
    return true;
  }
  auto const [object, deviant] = DeviantRegistry::getVariantInfo(aValue.fObject->nativeId());
  auto* const value = Kelm::queryInterface<Kelm::NSInterface::ClassObjectIntf>(object);
  if (value == nullptr) return false;
  property.methods->setEntry(found.fElement, found.fDeviant, property.id, Kelm::Object(value, deviant));
  return true;
}

// --- opening

/// The descriptions of all metaclasses that were announced. A door is opened once, when its property is first
/// used, and goes through them all.
std::vector<ElementDescription const*>& descriptions() {
  static std::vector<ElementDescription const*> sDescriptions;
  return sDescriptions;
}

PropertyRow const* rowOf(KelmmiProperty const& aProperty) noexcept {
  for (ElementDescription const* const description : descriptions()) {
    if (description->fMethods != aProperty.methods) continue;
    for (PropertyRow const& row : description->fProperties)
      if (row.fId == aProperty.id) return &row;
  }
  return nullptr;
}

/// The kind and the functions of a feature; a closed door for what is worked out.
PropertyDoor doorTo(StoredFeature aFeature, std::string_view aType) {
  using Kind = PropertyDoor::Kind;
  if (aFeature.fIsOwner) return {readOwner, nullptr, Kind::Object};
  switch (aFeature.fStorage) {
    case Storage::String:
      return {readText, writeText, Kind::Text};
    case Storage::Reference:
      return {readReference, writeReference, Kind::Object};
    case Storage::Container:
      return {readContainer, writeReference, Kind::Object};
    case Storage::Flag:
      return {readLogical, writeNumber<PrimitiveKind::Boolean>, Kind::Logical};
    case Storage::Integer:
      if (aType.find("int32") != aType.npos)
        return {readNumber, writeNumber<PrimitiveKind::Integer>, Kind::Int32};
      return {readNumber, writeNumber<PrimitiveKind::UnlimitedNatural>, Kind::Natural};
    default:
      return {};
  }
}

bool openDoor(vesk::VeskPropInfo const& aProperty, PropertyDoor& aDoor) {
  auto const* const property = dynamic_cast<KelmmiProperty const*>(&aProperty);
  if (property == nullptr || property->has(KelmmiProperty::multiValued)) return false;
  PropertyRow const* const row = rowOf(*property);
  if (row == nullptr) return false;
  aDoor = doorTo(row->fStored, row->fType);
  aDoor.fNumber = row->fStored.fNumber;
  aDoor.fFlag = !property->has(KelmmiProperty::required);
  aDoor.fProperty = property;
  if (property->has(KelmmiProperty::readOnly)) aDoor.fWrite = nullptr;
  return aDoor.fKind != PropertyDoor::Kind::Closed;
}

}  // namespace

void offerDoors(ElementDescription const& aDescription) {
  if (descriptions().empty()) Kelm::mi::BoundObjectHook::instance().setDoors(&openDoor);
  descriptions().push_back(&aDescription);
}

}  // namespace umlmm::mi
