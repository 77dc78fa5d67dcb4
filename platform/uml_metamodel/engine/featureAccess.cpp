#include "engine/featureAccess.h"

#include <cstring>

#include "engine/FeatureSequence.h"
#include "engine/ValueSequence.h"
#include "engine/accessors.h"
#include "engine/computed.h"
#include "engine/enumerations.h"
#include "engine/failures.h"
#include "engine/links.h"
#include "kelm/kernel/containers/Ref.h"
#include "kelm/values.h"

namespace umlmm::engine {

namespace {

constexpr char kSource[] = "uml_metamodel/engine/access";

using Kelm::Object;
using Kelm::PrimitiveKind;
using Kelm::StringObject;

PrimitiveKind primitiveKind(Feature const& aFeature) noexcept {
  switch (aFeature.fValueType) {
    case ValueType::Boolean:
      return PrimitiveKind::Boolean;
    case ValueType::Integer:
      return PrimitiveKind::Integer;
    default:
      return PrimitiveKind::UnlimitedNatural;
  }
}

[[gnu::always_inline]] inline Object readText(Element const& aElement, Feature const& aFeature) {
  auto const* text = pointerSlot<StringObject>(aElement, aFeature.fRoot);
  if (text == nullptr && rootOf(aFeature).fLower > 0) text = StringObject::empty();
  return Object(text, Deviant());
}

/// A Boolean or enumeration with its presence bit, if it has one.
struct FlagLayout {
  unsigned fWidth;
  bool fHasPresence;

  explicit FlagLayout(Feature const& aRoot) noexcept
      : fWidth(aRoot.fStorage == Storage::Enumeration ? kEnumerationBits : 1),
        fHasPresence(aRoot.fStorage == Storage::Enumeration || aRoot.isOptional()) {}
  unsigned width() const noexcept { return fWidth + (fHasPresence ? 1 : 0); }
  std::uint32_t value(std::uint32_t aBits) const noexcept { return aBits & ((1U << fWidth) - 1); }
  bool isPresent(std::uint32_t aBits) const noexcept { return !fHasPresence || (aBits >> fWidth) != 0; }
  std::uint32_t bits(std::uint32_t aValue) const noexcept {
    return aValue | (fHasPresence ? 1U << fWidth : 0);
  }
};

[[gnu::always_inline]] inline Object readFlag(Element const& aElement, Feature const& aRoot) {
  FlagLayout const layout(aRoot);
  std::uint32_t const bits = flagBits(aElement, indexOf(aRoot), layout.width());
  if (!layout.isPresent(bits)) return Object();
  if (aRoot.fStorage == Storage::Flag) return Kelm::makePrimitive(PrimitiveKind::Boolean, layout.value(bits));
  return Object(enumeration(aRoot.fType).object(static_cast<int>(layout.value(bits))), Deviant());
}

std::uint32_t literalIn(Feature const& aFeature, Object const& aValue) {
  int const number = Kelm::literalNumber(aValue, enumeration(aFeature.fType));
  if (number < 0 || number >= static_cast<int>(enumeration(aFeature.fType).literals().size()))
    failures::raiseNotAValue(kSource, aFeature);
  return static_cast<std::uint32_t>(number);
}

inline std::uint32_t numberIn(Feature const& aFeature, Object const& aValue) {
  if (!Kelm::isPrimitive(aValue, primitiveKind(aFeature))) [[unlikely]]
    failures::raiseNotAValue(kSource, aFeature);
  return aValue.getDeviant().value();
}

void writeFlag(Element& aElement, Feature const& aRoot, std::uint32_t aValue) {
  FlagLayout const layout(aRoot);
  Change::setFlags(aElement, indexOf(aRoot), layout.width(), layout.bits(aValue));
}

/// The bits of a fresh element.
void resetFlag(Element& aElement, Feature const& aRoot) {
  FlagLayout const layout(aRoot);
  if (isAdded(indexOf(aRoot))) return Change::setInteger(aElement, indexOf(aRoot), aRoot.fUnsetBits);
  unsigned const position = slotOf(aElement, indexOf(aRoot));
  bool const required = seenOn(aElement, aRoot).fLower > 0;
  std::uint32_t const fresh = aElement.classTable()->fDefaultFlags >> position & ((1U << layout.width()) - 1);
  Change::setFlags(aElement, indexOf(aRoot), layout.width(), required ? fresh : 0);
}

Element& referenceIn(Feature const& aFeature, Object const& aValue) {
  Element* const element = elementOf(aValue);
  if (element == nullptr) failures::raiseNotAValue(kSource, aFeature);
  return *element;
}

void writeReference(Element& aElement, Feature const& aFeature, Object const& aValue) {
  Feature const& root = rootOf(aFeature);
  Element& value = referenceIn(aFeature, aValue);
  Element* const old = single(aElement, root);
  if (old == &value) return;
  checkLink(aElement, root, value, old);
  replace(aElement, root, old, &value);
}

/// Values are handed over behind pointers: those of another type must not be taken for values of the feature.
void checkValueType(Kelm::Generic::SequenceIntf const& aOwn, Kelm::Generic::SequenceIntf const* aValues,
                    Feature const& aFeature) {
  if (aValues != nullptr && aValues->valueType() != aOwn.valueType())
    failures::raiseNotAValue(kSource, aFeature);
}

void checkMutable(Element const& aElement, Deviant const& aDeviant, Feature const& aFeature, Place aPlace) {
  checkWritable(aElement, aDeviant, aPlace);
  if (aFeature.fReadOnly) failures::raiseReadOnly(aPlace, aFeature);
}

}  // namespace

void writeBits(Element& aElement, Feature const& aRoot, std::uint32_t aBits) {
  if (aRoot.fStorage == Storage::Integer) return Change::setInteger(aElement, indexOf(aRoot), aBits);
  writeFlag(aElement, aRoot, aBits);
}

void setReference(Element& aElement, Feature const& aRoot, Element* aValue) {
  // A many-valued slot that a redefinition has narrowed to one value is replaced as a whole.
  Element* const old = single(aElement, aRoot);
  if (old != aValue) replace(aElement, aRoot, old, aValue);
}

namespace {

/// The body of `read`, which also stands in the accessors' own: every property read goes through it, so it is
/// a switch, where each kind of storage is a row for everything else.
[[gnu::always_inline]] inline Object readValue(Element const& aElement, Deviant const& aDeviant,
                                               Feature const& aFeature) {
  checkReadable(aElement, aDeviant, kSource);
  // A redefinition has the storage of its root: what stands in its own record needs no look at that of the
  // root.
  switch (aFeature.fStorage) {
    case Storage::String:
      return readText(aElement, aFeature);
    case Storage::Flag:
    case Storage::Enumeration:
      return readFlag(aElement, rootOf(aFeature));
    case Storage::Integer:
      return Kelm::makePrimitive(primitiveKind(aFeature), integerSlot(aElement, aFeature.fRoot));
    case Storage::Reference:
    case Storage::Container:
      return Object(single(aElement, rootOf(aFeature)), aDeviant);
    case Storage::List:
      return aFeature.isMany() ? Object() : Object(single(aElement, rootOf(aFeature)), aDeviant);
    case Storage::PrimitiveList:
      return Object();
    case Storage::Computed:
      return aFeature.isMany() ? Object() : computeValue({aElement, aDeviant}, aFeature);
  }
  return Object();
}

/// A feature of the catalogue as the compiler may see it: nothing of it was added.
[[gnu::always_inline]] inline Feature const& published(Feature const& aFeature) {
  if (isAdded(aFeature.fRoot) || aFeature.fOwner >= kMetaclassCount) __builtin_unreachable();
  return aFeature;
}

/// A feature by the ids behind those of the catalogue. Metaclasses that extensions add share their accessors,
/// and with them the numbers of their features, which are those of all added ones.
Feature const& addedFeature(int aMetaclass, unsigned aId) {
  if (aMetaclass == kAddedMetaclass) {
    if (aId - 1 < records::sAddedFeatures.size()) return *records::sAddedFeatures[aId - 1];
  } else {
    Metaclass const& owner = metaclass(aMetaclass);
    unsigned const place = aId - 1 - owner.fFeatureCount;
    if (aId > owner.fFeatureCount && place < owner.fAdded.size()) return feature(owner.fAdded[place]);
  }
  Kelm::raiseFailure(Kelm::words::kInvalidMetaPropertyId, kSource);
}

[[gnu::always_inline]] inline Feature const& featureAt(int aMetaclass, unsigned aId) {
  // There is a record behind the last, for the metaclasses of extensions; it has no features.
  Metaclass const& owner = records::sMetaclasses[static_cast<std::size_t>(aMetaclass)];
  if (aId - 1 >= owner.fFeatureCount) [[unlikely]]
    return addedFeature(aMetaclass, aId);
  return records::sFeatures[owner.fFirstFeature + aId - 1];
}

/// The element, if its metaclass has the feature.
template <class E>
auto& elementWith(E* aElement, Feature const& aFeature) {
  using Wanted = std::conditional_t<std::is_const_v<E>, Element const, Element>;
  auto& element = static_cast<Wanted&>(*aElement);
  if (!isA(element, aFeature.fOwner)) [[unlikely]]
    failures::raiseNotMember(kSource, element, aFeature);
  return element;
}

}  // namespace

Object read(Element const& aElement, Deviant const& aDeviant, Feature const& aFeature) {
  return readValue(aElement, aDeviant, aFeature);
}

namespace {

/// What is done to one kind of storage, beside reading it. The element and the feature's root come checked.
struct StorageKind {
  bool (*fIsSet)(Reading aElement, Feature const& aFeature, Feature const& aRoot);
  /// A single value that is not null.
  void (*fWrite)(Element& aElement, Deviant const& aDeviant, Feature const& aFeature, Object const& aValue);
  void (*fUnset)(Element& aElement, Deviant const& aDeviant, Feature const& aFeature);
};

bool hasValue(Reading aElement, Feature const& aFeature, Feature const&) {
  return !readValue(*aElement, aElement.deviant(), aFeature).isNull();
}
void assignNothing(Element& aElement, Deviant const& aDeviant, Feature const& aFeature) {
  assign(aElement, aDeviant, aFeature, nullptr, Deviant());
}
void writeSingle(Element& aElement, Deviant const&, Feature const& aFeature, Object const& aValue) {
  writeReference(aElement, aFeature, aValue);
}
void unsetSingle(Element& aElement, Deviant const&, Feature const& aFeature) {
  setReference(aElement, rootOf(aFeature), nullptr);
}
void unsetFlag(Element& aElement, Deviant const&, Feature const& aFeature) {
  resetFlag(aElement, rootOf(aFeature));
}

constexpr StorageKind kSingle{hasValue, writeSingle, unsetSingle};
constexpr StorageKind kFlag{hasValue,
                            [](Element& e, Deviant const&, Feature const& f, Object const& v) {
                              Feature const& root = rootOf(f);
                              writeFlag(e, root, numberIn(root, v));
                            },
                            unsetFlag};
constexpr StorageKind kEnumeration{hasValue,
                                   [](Element& e, Deviant const&, Feature const& f, Object const& v) {
                                     Feature const& root = rootOf(f);
                                     writeFlag(e, root, literalIn(root, v));
                                   },
                                   unsetFlag};
constexpr StorageKind kInteger{
    hasValue,
    [](Element& e, Deviant const&, Feature const& f, Object const& v) {
      Change::setInteger(e, f.fRoot, numberIn(rootOf(f), v));
    },
    [](Element& e, Deviant const&, Feature const& f) { Change::setInteger(e, f.fRoot, 0); }};
constexpr StorageKind kString{
    [](Reading e, Feature const&, Feature const& r) {
      return r.fLower > 0 || e.record(indexOf(r)) != nullptr;
    },
    [](Element& e, Deviant const&, Feature const& f, Object const& v) {
      StringObject const* const text = Kelm::asString(v);
      if (text == nullptr) failures::raiseNotAValue(kSource, f);
      Change::setText(e, rootOf(f), text);
    },
    [](Element& e, Deviant const&, Feature const& f) { Change::setText(e, rootOf(f), nullptr); }};
constexpr StorageKind kList{[](Reading e, Feature const&, Feature const& r) { return countOf(*e, r) != 0; },
                            // A redefinition may have narrowed the list to one value.
                            writeSingle, assignNothing};
constexpr StorageKind kPrimitiveList{[](Reading e, Feature const&, Feature const& r) {
                                       auto const* const values =
                                           pointerSlot<Kelm::Generic::SequenceIntf>(*e, indexOf(r));
                                       return values != nullptr && !values->generic_empty(e.deviant());
                                     },
                                     writeSingle, assignNothing};
constexpr StorageKind kComputed{[](Reading e, Feature const& f, Feature const& r) {
                                  return f.isMany() ? !valuesOf(e, f).empty() : hasValue(e, f, r);
                                },
                                [](Element& e, Deviant const& d, Feature const& f, Object const& v) {
                                  if (f.isReference()) checkComputed(e, f, referenceIn(f, v));
                                  setComputed({e, d}, f, v);
                                },
                                [](Element& e, Deviant const& d, Feature const& f) {
                                  if (f.isMany()) return assignNothing(e, d, f);
                                  setComputed({e, d}, f, Object());
                                }};

/// By Storage.
constexpr StorageKind const* kKinds[] = {&kFlag, &kEnumeration,   &kInteger, &kString,  &kSingle,
                                         &kList, &kPrimitiveList, &kSingle,  &kComputed};

StorageKind const& kindOf(Feature const& aFeature) noexcept {
  return *kKinds[static_cast<std::size_t>(rootOf(aFeature).fStorage)];
}

}  // namespace

bool isSet(Element const& aElement, Deviant const& aDeviant, Feature const& aFeature) {
  checkReadable(aElement, aDeviant, kSource);
  return kindOf(aFeature).fIsSet({aElement, aDeviant}, aFeature, rootOf(aFeature));
}

void write(Element& aElement, Deviant const& aDeviant, Feature const& aFeature, Object const& aValue) {
  checkMutable(aElement, aDeviant, aFeature, kSource);
  if (aValue.isNull()) return kindOf(aFeature).fUnset(aElement, aDeviant, aFeature);
  if (aFeature.isMany()) failures::raiseManyExpected(kSource, aFeature);
  kindOf(aFeature).fWrite(aElement, aDeviant, aFeature, aValue);
}

void unset(Element& aElement, Deviant const& aDeviant, Feature const& aFeature) {
  checkMutable(aElement, aDeviant, aFeature, kSource);
  kindOf(aFeature).fUnset(aElement, aDeviant, aFeature);
}

Kelm::Generic::SequenceIntf* sequence(Element const& aElement, Deviant const& aDeviant,
                                      Feature const& aFeature) {
  checkReadable(aElement, aDeviant, kSource);
  if (!aFeature.isMany()) failures::raiseSingleExpected(kSource, aFeature);
  auto& element = const_cast<Element&>(aElement);
  if (aFeature.fStorage == Storage::PrimitiveList) return &valueSequence(element, rootOf(aFeature));
  return &FeatureSequence::of(element, aFeature);
}

void assign(Element& aElement, Deviant const& aDeviant, Feature const& aFeature,
            Kelm::Generic::SequenceIntf const* aValues, Deviant const& aValuesDeviant) {
  checkMutable(aElement, aDeviant, aFeature, kSource);
  if (aFeature.fStorage == Storage::PrimitiveList) {
    checkValueType(valueSequence(aElement, rootOf(aFeature)), aValues, aFeature);
    return assignValues(aElement, rootOf(aFeature), aDeviant, aValues, aValuesDeviant);
  }
  FeatureSequence& own = FeatureSequence::of(aElement, aFeature);
  if (aValues == &own) return;
  checkValueType(own, aValues, aFeature);
  std::vector<Element*> values;
  if (aValues != nullptr) {
    std::vector<Kelm::Generic::Loan> given(static_cast<std::size_t>(aValues->generic_size(aValuesDeviant)));
    aValues->readBlock(aValuesDeviant, 0, static_cast<int>(given.size()), given.data());
    for (auto const& value : given) {
      values.push_back(elementOf(value));
      if (values.back() == nullptr) failures::raiseNotAValue(kSource, aFeature);
    }
  }
  own.assign(aDeviant, values);
}

namespace accessors {

using Base = Kelm::NSInterface::ClassObjectIntf;

namespace {
[[gnu::noinline]] Kelm::Object getAdded(Base const* aElement, Kelm::Deviant const& aDeviant, int aMetaclass,
                                        unsigned aId) {
  Feature const& wanted = addedFeature(aMetaclass, aId);
  return readValue(elementWith(aElement, wanted), aDeviant, wanted);
}
}  // namespace

Kelm::Object getEntry(Base const* aElement, Kelm::Deviant const& aDeviant, int aMetaclass, unsigned aId) {
  Metaclass const& owner = records::sMetaclasses[static_cast<std::size_t>(aMetaclass)];
  if (aId - 1 >= owner.fFeatureCount) [[unlikely]]
    return getAdded(aElement, aDeviant, aMetaclass, aId);
  Feature const& wanted = published(records::sFeatures[owner.fFirstFeature + aId - 1]);
  return readValue(elementWith(aElement, wanted), aDeviant, wanted);
}

bool isSetEntry(Base const* aElement, Kelm::Deviant const& aDeviant, int aMetaclass, unsigned aId) {
  Feature const& wanted = featureAt(aMetaclass, aId);
  return isSet(elementWith(aElement, wanted), aDeviant, wanted);
}

void setEntry(Base* aElement, Kelm::Deviant const& aDeviant, int aMetaclass, unsigned aId,
              Kelm::Object const& aValue) {
  Feature const& wanted = featureAt(aMetaclass, aId);
  write(elementWith(aElement, wanted), aDeviant, wanted, aValue);
}

Kelm::Generic::SequenceIntf* getSequenceEntry(Base const* aElement, Kelm::Deviant const& aDeviant,
                                              int aMetaclass, unsigned aId) {
  Feature const& wanted = featureAt(aMetaclass, aId);
  return sequence(elementWith(aElement, wanted), aDeviant, wanted);
}

void unsetEntry(Base* aElement, Kelm::Deviant const& aDeviant, int aMetaclass, unsigned aId) {
  Feature const& wanted = featureAt(aMetaclass, aId);
  unset(elementWith(aElement, wanted), aDeviant, wanted);
}

void setSequenceEntry(Base* aElement, Kelm::Deviant const& aDeviant, int aMetaclass, unsigned aId,
                      Kelm::Generic::SequenceIntf const* aValues, Kelm::Deviant const& aValuesDeviant) {
  Feature const& wanted = featureAt(aMetaclass, aId);
  assign(elementWith(aElement, wanted), aDeviant, wanted, aValues, aValuesDeviant);
}

bool isReadOnlyEntry(int aMetaclass, unsigned aId) { return featureAt(aMetaclass, aId).fReadOnly; }

}  // namespace accessors

}  // namespace umlmm::engine
