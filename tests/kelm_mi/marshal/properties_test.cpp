#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>
#include <string>

#include "kelm/ClassObject.h"
#include "kelm/DeviantRegistry.h"
#include "kelm/Model.h"
#include "kelm/kernel/containers/sequence/SequenceRef.h"
#include "kelm_mi/KelmmiProperty.h"
#include "kelm_mi/KelmmiPropertyFactory.h"
#include "kelm_mi/marshal/KelmmiOptionalPrimitiveProperty.h"
#include "kelm_mi/marshal/KelmmiPrimitiveProperty.h"
#include "kelm_mi/marshal/KelmmiStringProperty.h"
#include "kelm_mi/marshal/PropHelper.h"
#include "tarn/tarn.h"
#include "uml_metamodel/umlmm/Boolean.h"
#include "uml_metamodel/umlmm/Integer.h"
#include "uml_metamodel/umlmm/String.h"
#include "uml_metamodel/umlmm/UnlimitedNatural.h"
#include "uml_metamodel/umlmm/VisibilityKind.h"
#include "uml_metamodel_mi/package.h"
#include "uml_metamodel_mi/support/Recording.h"
#include "uml_metamodel_mi/support/Thing.h"

namespace Kelm::mi {
namespace {

using umlmm::testing::Array;
using vesk::VeskValue;

/// An element whose features are whatever was written.
class Element final : public NSInterface::ClassObjectIntf {
 public:
  int incRef() const override { return ++fCount; }
  int decRef() const override { return --fCount; }
  int numRef() const override { return fCount; }
  char const* getVeskName(bool) const override { return "Element"; }
  bool deviant_isValid(Deviant) const override { return true; }
  ImmutableClass getMetaClass() const override { return {}; }
  Object getKernelEntry(Deviant const&, unsigned) const override { return {}; }
  void setKernelEntry(Deviant const&, unsigned, Object const&) override {}
  Generic::SequenceIntf* getKernelSequence(Deviant const&, unsigned) const override { return nullptr; }

  std::map<unsigned, Object> fValues;
  mutable int fCount = 0;
};

Element& elementOf(NSInterface::ClassObjectIntf const* aElement) {
  return const_cast<Element&>(static_cast<Element const&>(*aElement));
}

IntrospectiveMethods const kMethods{
    [](auto const* aElement, Deviant const&, unsigned aId) { return elementOf(aElement).fValues[aId]; },
    [](auto const* aElement, Deviant const&, unsigned aId) {
      return elementOf(aElement).fValues.contains(aId);
    },
    [](auto* aElement, Deviant const&, unsigned aId, Object const& aValue) {
      elementOf(aElement).fValues[aId] = aValue;
    },
    nullptr,
    [](auto* aElement, Deviant const&, unsigned aId) { elementOf(aElement).fValues.erase(aId); },
    nullptr,
    nullptr,
    nullptr,
    nullptr,
};

/// An instance that is bound to one id, and remembers the names by which it was asked.
class FakeInstance final : public vesk::VeskInterface {
 public:
  explicit FakeInstance(void* aId) : fId(aId) {}
  void* getNativeObject(vesk::VeskInterned aName) override {
    fAsked.emplace_back(aName.view());
    return fId;
  }

  void* fId;
  std::vector<std::string> fAsked;
};

constexpr unsigned kId = 5;

class Descriptors : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { SarnInitialize_uml_metamodel_mi(); }

  template <class Descriptor>
  static std::unique_ptr<Descriptor> make(char const* aType, Multiplicity aMultiplicity,
                                          Mutability aMutability = MutabilityChangeable) {
    return std::make_unique<Descriptor>("umlmm.ImmutableThing", "feature", &kMethods, kId, aType,
                                        aMultiplicity, aMutability, vesk::factory::PropertyAttributes(0));
  }
  template <class Descriptor>
  std::string refusal(Descriptor& aDescriptor, FakeInstance& aInstance, VeskValue aValue) {
    auto const before = fElement.fValues.size();
    try {
      aDescriptor.setValue(&aInstance, aValue);
    } catch (Exception const& failure) {
      EXPECT_EQ(fElement.fValues.size(), before);
      return failure.what();
    }
    return "";
  }

  Element fElement;
  FakeInstance fMutable{DeviantRegistry::getId(&fElement, Deviant(), false)};
  FakeInstance fImmutable{DeviantRegistry::getId(&fElement, Deviant(), true)};
};

using Truth = KelmmiPrimitiveProperty<umlmm::Boolean>;
using Number = KelmmiPrimitiveProperty<umlmm::Integer>;
using Text = KelmmiStringProperty<umlmm::String>;
using OptionalTruth = KelmmiOptionalPrimitiveProperty<umlmm::Boolean>;
using OptionalNumber = KelmmiOptionalPrimitiveProperty<umlmm::Integer>;

TEST_F(Descriptors, primitivesTravelRaw) {
  auto const truth = make<Truth>("logical scalar", MultiplicitySingle);
  truth->setValue(&fMutable, VeskValue::ofWord(std::uint64_t{2} << 32));
  EXPECT_EQ(truth->getValue(&fImmutable).word(), 1u);
  truth->setValue(&fMutable, VeskValue::ofWord(0));
  EXPECT_EQ(truth->getValue(&fMutable).word(), 0u);
  EXPECT_EQ(fMutable.fAsked.front(), "logical scalar");

  auto const number = make<Number>("int32 scalar", MultiplicitySingle);
  number->setValue(&fMutable, VeskValue::ofWord(0x7FFFFFFF'FFFFFFFDu));
  EXPECT_EQ(number->getValue(&fMutable).int32(), -3);
  EXPECT_EQ(fElement.fCount, 0);
}

TEST_F(Descriptors, refusalsComeInOrderAndChangeNothing) {
  auto const check = [&](auto aMake, std::string const& aSource) {
    auto const both = aMake(MultiplicityMany, MutabilityReadOnly);
    std::string const many = refusal(*both, fMutable, VeskValue());
    EXPECT_NE(many.find("You cannot set a multi-valued property at " + aSource + ":"), std::string::npos)
        << many;
    auto const fixed = aMake(MultiplicityOptional, MutabilityReadOnly);
    std::string const readOnly = refusal(*fixed, fImmutable, VeskValue());
    EXPECT_NE(readOnly.find("You cannot set a read-only property at " + aSource + ":"), std::string::npos)
        << readOnly;
    auto const free = aMake(MultiplicityOptional, MutabilityChangeable);
    EXPECT_NE(refusal(*free, fImmutable, VeskValue()).find("immutable"), std::string::npos);
  };
  check([](auto m, auto w) { return make<Truth>("logical scalar", m, w); },
        "kelm_mi/marshal/KelmmiPrimitiveProperty");
  check([](auto m, auto w) { return make<Text>("char", m, w); }, "kelm_mi/marshal/KelmmiStringProperty");
  check([](auto m, auto w) { return make<OptionalNumber>("kelmint32", m, w); },
        "kelm_mi/marshal/KelmmiOptionalPrimitiveProperty");
}

TEST_F(Descriptors, lockedElementsRefuseUntilUnlocked) {
  auto const number = make<Number>("int32 scalar", MultiplicitySingle);
  ImmutableObject const view(&fElement, Deviant());
  DeviantRegistry::setIsImmutable(view, true);
  EXPECT_NE(refusal(*number, fMutable, VeskValue::ofInt32(1)), "");
  DeviantRegistry::setIsImmutable(view, false);
  EXPECT_EQ(refusal(*number, fMutable, VeskValue::ofInt32(1)), "");
}

class Texts : public Descriptors {
 protected:
  static std::u16string read(Text& aText, FakeInstance& aInstance) {
    VeskValue const value = aText.getValue(&aInstance);
    std::u16string const text = tarn::get_ustring(value.array());
    aText.releaseValue(&aInstance, value);
    return text;
  }
  static void write(Text& aText, FakeInstance& aInstance, char16_t const* aValue) {
    Array const array(tarnCreateString_UTF16(aValue));
    aText.setValue(&aInstance, array);
  }
};

TEST_F(Texts, emptyTextRemovesAnOptionalOneAndIsStoredInARequiredOne) {
  std::size_t const arrays = tarn::liveArrayCount();
  auto const optional = make<Text>("char", MultiplicityOptional);
  EXPECT_EQ(read(*optional, fMutable), u"");
  write(*optional, fMutable, u"\u00fcber \U0001F600");
  EXPECT_EQ(read(*optional, fImmutable), u"\u00fcber \U0001F600");
  write(*optional, fMutable, u"");
  EXPECT_FALSE(fElement.fValues.contains(kId));
  auto const required = make<Text>("char", MultiplicitySingle);
  write(*required, fMutable, u"");
  EXPECT_TRUE(fElement.fValues.contains(kId));
  EXPECT_EQ(read(*required, fMutable), u"");
  EXPECT_EQ(tarn::liveArrayCount(), arrays);
}

TEST_F(Texts, aZeroEndsTheTextOnTheWayOut) {
  auto const text = make<Text>("char", MultiplicityOptional);
  Array const array(tarnCreateStringOfLength(u"a\0b", 3));
  text->setValue(&fMutable, array);
  EXPECT_EQ(umlmm::String(fElement.fValues[kId]).text(), std::u16string_view(u"a\0b", 3));
  EXPECT_EQ(read(*text, fMutable), u"a");
}

TEST_F(Descriptors, optionalPrimitivesAreArrays) {
  auto const number = make<OptionalNumber>("kelmint32", MultiplicityOptional);
  Array const one(tarnCreateNumericMatrix(1, 1, int32ClassId, 0));
  *tarn::dataAs<std::int32_t>(one.get()) = -9;
  number->setValue(&fMutable, one);
  {
    Array const value(number->getValue(&fMutable));
    ASSERT_EQ(value.get()->fClassId, int32ClassId);
    ASSERT_EQ(tarn::numberOfElements(value.get()), 1u);
    EXPECT_EQ(*tarn::dataAs<std::int32_t>(value.get()), -9);
  }
  Array const two(tarnCreateNumericMatrix(1, 2, int32ClassId, 0));
  std::string const tooMany = refusal(*number, fMutable, two);
  EXPECT_NE(tooMany.find(kelm::getTooManyElementsMessage()), std::string::npos);
  EXPECT_NE(tooMany.find("kelm_mi/marshal/OptionalPrimitiveMarshaling:"), std::string::npos);
  Array const still(number->getValue(&fMutable));
  EXPECT_EQ(*tarn::dataAs<std::int32_t>(still.get()), -9);

  Array const none(tarnCreateNumericMatrix(0, 0, int32ClassId, 0));
  number->setValue(&fMutable, none);
  EXPECT_FALSE(fElement.fValues.contains(kId));
  Array const absent(number->getValue(&fMutable));
  EXPECT_EQ(tarn::numberOfElements(absent.get()), 0u);
}

TEST_F(Descriptors, optionalTruthReadsAnyByteAndUndecidedDimensions) {
  auto const truth = make<OptionalTruth>("kelmlogical", MultiplicityOptional);
  Array const opaque(tarnCreateOpaque(1, logicalClassId));
  *tarn::dataAs<unsigned char>(opaque.get()) = 4;
  truth->setValue(&fMutable, opaque);
  Array const value(truth->getValue(&fMutable));
  EXPECT_EQ(value.get()->fClassId, logicalClassId);
  EXPECT_EQ(*tarn::dataAs<unsigned char>(value.get()), 1);
}

class Helpers : public Descriptors {
 protected:
  ClassObject object() { return ClassObject(&fElement, Deviant()); }
};

TEST_F(Helpers, enumerationsTravelAsTheInstanceOfTheirLiteral) {
  PropHelper<umlmm::VisibilityKind> helper;
  Object const literal = umlmm::VisibilityKind(umlmm::VisibilityKind::Protected);
  Array const value(helper.unboxAndReturn(literal, "umlmm.VisibilityKind"));
  Array const again(helper.unboxAndReturn(literal, "umlmm.VisibilityKind"));
  EXPECT_EQ(value.instance(), again.instance());
  ClassObject target = object();
  VeskValue given = value;
  EXPECT_TRUE(helper.boxAndSet(&target, given, &kMethods, kId));
  EXPECT_EQ(umlmm::VisibilityKind(fElement.fValues[kId]).value(), umlmm::VisibilityKind::Protected);
  Array const none(tarnCreateEmpty(objectClassId));
  given = none;
  EXPECT_FALSE(helper.boxAndSet(&target, given, &kMethods, kId));
  EXPECT_EQ(umlmm::VisibilityKind(fElement.fValues[kId]).value(), umlmm::VisibilityKind::Protected);
}

TEST_F(Helpers, naturalNumbersTravelAsText) {
  PropHelper<umlmm::UnlimitedNatural> helper;
  ClassObject target = object();
  auto const set = [&](char const* aText) {
    Array const text(tarnCreateString(aText));
    VeskValue given = text;
    return helper.boxAndSet(&target, given, &kMethods, kId);
  };
  EXPECT_TRUE(set(" 0042 "));
  EXPECT_EQ(umlmm::UnlimitedNatural(fElement.fValues[kId]).value(), 42u);
  EXPECT_FALSE(set(""));
  EXPECT_TRUE(set("*"));
  Array const text(helper.unboxAndReturn(fElement.fValues[kId], "char vector"));
  EXPECT_EQ(tarn::get_ustring(text.get()), u"*");
  EXPECT_THROW(set("-1"), Exception);
  EXPECT_TRUE(umlmm::UnlimitedNatural(fElement.fValues[kId]).isUnlimited());
}

/// Keeps texts as string objects; the empty text is nothing.
class TextHelper final : public PropHelperBase {
 public:
  explicit TextHelper(bool* aGone = nullptr) : fGone(aGone) {}
  ~TextHelper() override {
    if (fGone != nullptr) *fGone = true;
  }
  VeskValue unboxAndReturn(Object aValue, char const* aTypeName) override {
    EXPECT_STREQ(aTypeName, "char");
    return tarnCreateString_UTF16(asString(aValue)->data());
  }
  bool boxAndSet(ClassObject* aObject, VeskValue& aValue, IntrospectiveMethods const* aMethods,
                 unsigned aId) override {
    String const text(tarn::get_ustring(aValue.array()));
    if (text.empty()) return false;
    aMethods->setEntry(aObject->get(), aObject->getDeviant(), aId, Object(text.record(), Deviant()));
    return true;
  }

 private:
  bool* fGone;
};

class Factories : public Descriptors {
 protected:
  KelmmiProperty& property(std::size_t aIndex) const {
    return dynamic_cast<KelmmiProperty&>(*fClass.fProperties[aIndex]);
  }

  umlmm::testing::RecordingClass fClass;
  KelmmiPropertyFactory const fFactory{&fClass, "umlmm.ImmutableThing", &kMethods};
};

TEST_F(Factories, flagsAndAccessFollowTheCodesOfTheFeature) {
  fFactory.ClassObject("one", MultiplicitySingle, MutabilityChangeable, 1, "umlmm.ImmutableThing", 0);
  fFactory.PrimitiveSequence("many", MultiplicityMany, MutabilityReadOnly, 2,
                             "umlmm.ImmutableSequenceOfString", 0);
  fFactory.DataType("kind", MultiplicityOptional, MutabilityReadOnly, 3, nullptr, new TextHelper, 0);
  EXPECT_EQ(property(0).flags, KelmmiProperty::required);
  EXPECT_EQ(property(1).flags, KelmmiProperty::multiValued | KelmmiProperty::readOnly);
  EXPECT_EQ(property(2).flags, KelmmiProperty::readOnly);
  EXPECT_EQ(property(0).getMemberSetAccess(), 0);
  EXPECT_EQ(property(1).getMemberSetAccess(), 1);
  EXPECT_STREQ(property(1).getDataType(), "umlmm.ImmutableSequenceOfString");
  EXPECT_STREQ(property(2).getDataType(), "");
}

TEST_F(Factories, aDataTypeGoesThroughItsHelperAndAnEmptyValueUnsets) {
  bool gone = false;
  fFactory.DataType("kind", MultiplicityOptional, MutabilityChangeable, kId, "char", new TextHelper(&gone),
                    0);
  auto const read = [&] {
    VeskValue const value = property(0).getValue(&fMutable);
    std::u16string const text = tarn::get_ustring(value.array());
    property(0).releaseValue(&fMutable, value);
    return text;
  };
  property(0).setValue(&fMutable, Array(tarnCreateString("grey")));
  EXPECT_EQ(read(), u"grey");
  property(0).setValue(&fMutable, Array(tarnCreateEmpty(charClassId)));
  EXPECT_FALSE(fElement.fValues.contains(kId));
  EXPECT_EQ(read(), u"");
  fClass.fProperties.clear();
  EXPECT_TRUE(gone);
}

/// The place of a virtual operation among those of its class, as a pointer to member has it.
template <class Member>
std::size_t slotOf(Member aMember) {
  std::size_t words[2];
  static_assert(sizeof aMember == sizeof words);
  std::memcpy(words, &aMember, sizeof words);
  return words[0] / sizeof(void*);
}

TEST_F(Descriptors, theTwoReadersStandBehindTheHostsOperations) {
  std::size_t const last = slotOf(&vesk::VeskPropInfo::getSarnArrays);
  EXPECT_EQ(slotOf(&vesk::VeskPropInfo::getInterfaces), last - 1);
  EXPECT_EQ(slotOf(&KelmmiProperty::getSingleValuedValue), last + 1);
  EXPECT_EQ(slotOf(&KelmmiProperty::getMultiValuedValue), last + 2);
}

}  // namespace
}  // namespace Kelm::mi
