#include <optional>
#include <string>

#include "derivations/derivations.h"
#include "derivations/replace.h"
#include "derivations/texts.h"
#include "engine/Change.h"
#include "engine/ValueSequence.h"
#include "engine/engine.h"
#include "engine/failures.h"
#include "engine/featureAccess.h"
#include "kelm/kernel/containers/Ref.h"
#include "queries/queries.h"
#include "uml_metamodel/umlmm/String.h"
#include "uml_metamodel/umlmm/UnlimitedNatural.h"

/// Default values as text.
namespace umlmm::derivations {

namespace {

constexpr char kSource[] = "uml_metamodel/derivations/defaults";

using engine::Element;
using Kelm::Deviant;
using Kelm::Object;
using TextAccess = Kelm::Generic::RefAccess<umlmm::String>;

Object textObject(std::string const& aText) { return adopt(Kelm::StringObject::make(Kelm::toUtf16(aText))); }
Object textObject(Reading aElement, engine::FeatureIndex aRoot) {
  return Object(aElement.record(aRoot), Deviant());
}

Kelm::Generic::SequenceIntf& bodies(Reading aExpression) {
  return engine::valueSequence(*aExpression, engine::feature(ids::OpaqueExpression::Body));
}

/// How a value specification of one metaclass shows as text, and takes a text in its place.
struct Form {
  int fMetaclass;
  Object (*fText)(Reading aValue);
  /// False if the text does not have the form; null where no text is taken.
  bool (*fTake)(Reading aValue, Object const& aText);
};

Object stringText(Reading aValue) { return textObject(aValue, ids::LiteralString::Value); }
bool takeString(Reading aValue, Object const& aText) {
  engine::write(*aValue, aValue.deviant(), engine::feature(ids::LiteralString::Value), aText);
  return true;
}

Object expressionText(Reading aValue) {
  auto const& texts = bodies(aValue);
  if (texts.generic_empty(aValue.deviant())) return {};
  return TextAccess::get(texts.generic_at(aValue.deviant(), 0));
}
bool takeExpression(Reading aValue, Object const& aText) {
  auto& texts = bodies(aValue);
  auto const text = TextAccess::make(umlmm::String(aText));
  if (texts.generic_empty(aValue.deviant()))
    texts.generic_push_back(aValue.deviant(), text);
  else
    texts.generic_replace(aValue.deviant(), 0, text);
  return true;
}

Object booleanText(Reading aValue) {
  return textObject(std::string(aValue.flag(ids::LiteralBoolean::Value) ? "true" : "false"));
}
bool takeBoolean(Reading aValue, Object const& aText) {
  std::u16string_view const text = Kelm::asString(aText)->text();
  if (text != u"true" && text != u"false") return false;
  engine::write(*aValue, aValue.deviant(), engine::feature(ids::LiteralBoolean::Value),
                Kelm::makePrimitive(Kelm::PrimitiveKind::Boolean, text == u"true" ? 1 : 0));
  return true;
}

Object integerText(Reading aValue) {
  return textObject(std::to_string(static_cast<int>(aValue.number(ids::LiteralInteger::Value))));
}
bool takeInteger(Reading aValue, Object const& aText) {
  auto const number = queries::numberIn(Kelm::asString(aText)->text());
  if (!number || *number != static_cast<std::int32_t>(*number)) return false;
  engine::write(*aValue, aValue.deviant(), engine::feature(ids::LiteralInteger::Value),
                Kelm::makePrimitive(Kelm::PrimitiveKind::Integer, static_cast<std::uint32_t>(*number)));
  return true;
}

Object unlimitedText(Reading aValue) {
  std::uint32_t const number = aValue.number(ids::LiteralUnlimitedNatural::Value);
  return textObject(number == UnlimitedNatural::kUnlimited ? std::string("*") : std::to_string(number));
}
bool takeUnlimited(Reading aValue, Object const& aText) {
  std::u16string_view const text = Kelm::asString(aText)->text();
  bool const isUnlimited = text == u"*";
  std::int64_t const number =
      isUnlimited ? UnlimitedNatural::kUnlimited : queries::numberIn(text).value_or(-1);
  if (!isUnlimited && static_cast<std::uint64_t>(number) >= UnlimitedNatural::kUnlimited) return false;
  engine::write(
      *aValue, aValue.deviant(), engine::feature(ids::LiteralUnlimitedNatural::Value),
      Kelm::makePrimitive(Kelm::PrimitiveKind::UnlimitedNatural, static_cast<std::uint32_t>(number)));
  return true;
}

Object symbolText(Reading aValue) { return textObject(aValue, ids::Expression::Symbol); }

Object instanceText(Reading aValue) {
  Reading const instance = aValue.reference(ids::InstanceValue::Instance);
  return instance ? textObject(instance, ids::NamedElement::Name) : Object();
}

constexpr Form kForms[] = {
    {ids::metaclass::LiteralString, stringText, takeString},
    {ids::metaclass::OpaqueExpression, expressionText, takeExpression},
    {ids::metaclass::LiteralBoolean, booleanText, takeBoolean},
    {ids::metaclass::LiteralInteger, integerText, takeInteger},
    {ids::metaclass::LiteralUnlimitedNatural, unlimitedText, takeUnlimited},
    {ids::metaclass::Expression, symbolText, nullptr},
    {ids::metaclass::InstanceValue, instanceText, nullptr},
};

Form const* formOf(Reading aValue) {
  if (!aValue) return nullptr;
  for (Form const& form : kForms)
    if (aValue.isA(form.fMetaclass)) return &form;
  return nullptr;
}

template <engine::FeatureIndex Default, engine::FeatureIndex Value>
struct DefaultText {
  static Object read(Reading aElement) {
    Reading const value = aElement.reference(Value);
    Form const* const form = formOf(value);
    return form == nullptr ? Object() : form->fText(value);
  }
  static void set(Reading aElement, Object const& aText) {
    Kelm::StringObject const* const text = Kelm::asString(aText);
    if (text == nullptr && !aText.isNull())
      engine::failures::raiseNotAValue(kSource, engine::feature(Default));
    if (text == nullptr || text->text().empty()) return replaceValue(aElement, Value, nullptr);
    Reading const value = aElement.reference(Value);
    Form const* const form = formOf(value);
    if (form != nullptr && form->fTake != nullptr && form->fTake(value, aText)) return;
    Element& literal = engine::Change::create(ids::metaclass::LiteralString, aElement.model());
    takeString(aElement.on(literal), aText);
    replaceValue(aElement, Value, &literal);
  }

  static constexpr engine::Derivation kDerivation{.fValue = read, .fSet = set};
};

}  // namespace

engine::Derivation const Parameter::Default =
    DefaultText<ids::Parameter::Default, ids::Parameter::DefaultValue>::kDerivation;
engine::Derivation const Property::Default =
    DefaultText<ids::Property::Default, ids::Property::DefaultValue>::kDerivation;

}  // namespace umlmm::derivations
