#include "factory/textual.h"

#include <charconv>
#include <vector>

#include "engine/Change.h"
#include "engine/FeatureSequence.h"
#include "engine/Reading.h"
#include "engine/engine.h"
#include "engine/enumerations.h"
#include "engine/failures.h"
#include "engine/featureAccess.h"
#include "engine/ids.h"
#include "factory/Scanner.h"
#include "kelm/kernel/containers/sequence/SequenceCreator.h"
#include "kelm/values.h"
#include "uml_metamodel/umlmm/Boolean.h"
#include "uml_metamodel/umlmm/String.h"
#include "uml_metamodel/umlmm/UnlimitedNatural.h"
#include "uml_metamodel/umlmm/detail/metamodel.h"

namespace umlmm::factory::textual {

namespace {

using engine::Element;
using engine::Feature;
using engine::ValueType;
using Kelm::Object;

/// A feature with its values, looked up and ready to be written.
struct Setting {
  Feature const* fFeature;
  std::vector<Object> fValues;
};

int metaclassNamed(std::u16string_view aName) {
  std::string name = Kelm::toUtf8(aName);
  if (name.starts_with("umlmm.")) name.erase(0, 6);
  for (int index = 0; index < engine::metaclassCount(); ++index)
    if (name == engine::metaclass(index).fName) return index;
  return -1;
}

int concreteMetaclass(std::u16string_view aName, std::size_t aPosition) {
  int const index = metaclassNamed(aName);
  if (index < 0 || engine::metaclass(index).fAbstract) raiseUnreadable(aName, aPosition);
  return index;
}

Feature const& featureNamed(int aMetaclass, Assignment const& aAssignment) {
  std::string const name = Kelm::toUtf8(aAssignment.fFeature);
  for (engine::FeatureIndex const index : engine::metaclass(aMetaclass).fVisible)
    if (name == engine::feature(index).fName && !engine::feature(index).fReadOnly)
      return engine::feature(index);
  raiseUnreadable(aAssignment.fFeature, aAssignment.fPosition);
}

std::int64_t numberOf(Value const& aValue) {
  std::string const digits = Kelm::toUtf8(aValue.fText);
  std::int64_t number = 0;
  auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size())
    raiseUnreadable(aValue.fText, aValue.fPosition);
  return number;
}

/// The first element of the qualified name, from the top level of the model on; null if there is none.
Element* elementNamed(Kelm::Model const& aModel, std::u16string_view aQualifiedName) {
  std::vector<Element*> candidates;
  if (auto* const roots = aModel.object().roots())
    for (Element* const root : *roots)
      if (root != nullptr) candidates.push_back(root);
  for (std::u16string_view rest = aQualifiedName;;) {
    std::size_t const end = rest.find(u"::");
    std::u16string_view const name = rest.substr(0, end);
    engine::Reading found;
    for (Element* const candidate : candidates) {
      found = engine::readable(*candidate, aModel.getDeviant(), "uml_metamodel/factory/textual");
      if (found.isA(ids::metaclass::NamedElement) && found.text(ids::NamedElement::Name) == name) break;
      found = found.none();
    }
    if (!found || end == std::u16string_view::npos) return found.element();
    rest.remove_prefix(end + 2);
    candidates.clear();
    found.collectParts(candidates);
  }
}

Object readEnumeration(Feature const& aFeature, Value const& aValue) {
  auto const& type = engine::enumeration(aFeature.fType);
  try {
    return Object(type.object(type.parse(Kelm::toUtf8(aValue.fText))), Kelm::Deviant());
  } catch (Kelm::Exception const&) {
    raiseUnreadable(aValue.fText, aValue.fPosition);
  }
}

/// The value for a feature; raises where it does not fit.
Object readValue(Kelm::Model const& aModel, Feature const& aFeature, Value const& aValue) {
  using Kind = Value::Kind;
  Kind const kind = aValue.fKind;
  switch (aFeature.fValueType) {
    case ValueType::Boolean:
      if (kind == Kind::Word && (aValue.fText == u"true" || aValue.fText == u"false"))
        return Boolean(aValue.fText == u"true");
      break;
    case ValueType::Integer: {
      std::int64_t const number = kind == Kind::Number ? numberOf(aValue) : INT64_MAX;
      if (number >= INT32_MIN && number <= INT32_MAX)
        return Kelm::makePrimitive(Kelm::PrimitiveKind::Integer, static_cast<std::uint32_t>(number));
      break;
    }
    case ValueType::UnlimitedNatural: {
      if (kind == Kind::Star) return UnlimitedNatural(UINT32_MAX);
      std::int64_t const number = kind == Kind::Number ? numberOf(aValue) : -1;
      if (number >= 0 && number < UINT32_MAX) return UnlimitedNatural(static_cast<std::uint32_t>(number));
      break;
    }
    case ValueType::String:
      if (kind == Kind::Text) return Object(Kelm::String(aValue.fText).record(), Kelm::Deviant());
      break;
    case ValueType::Enumeration:
      if (kind == Kind::Word || kind == Kind::Text) return readEnumeration(aFeature, aValue);
      break;
    case ValueType::Reference:
      if (kind == Kind::Word || kind == Kind::Text) {
        Element* const element = elementNamed(aModel, aValue.fText);
        if (element != nullptr && engine::isA(*element, aFeature.fType))
          return Object(element, aModel.getDeviant());
      }
      break;
  }
  raiseUnreadable(aValue.fText, aValue.fPosition);
}

Setting readSetting(Kelm::Model const& aModel, int aMetaclass, Assignment const& aAssignment) {
  Setting setting{&featureNamed(aMetaclass, aAssignment), {}};
  if (!setting.fFeature->isMany() && aAssignment.fValues.size() != 1)
    raiseUnreadable(aAssignment.fFeature, aAssignment.fPosition);
  for (Value const& value : aAssignment.fValues)
    setting.fValues.push_back(readValue(aModel, *setting.fFeature, value));
  return setting;
}

void apply(Element& aElement, Kelm::Deviant const& aDeviant, Setting const& aSetting) {
  if (!aSetting.fFeature->isMany())
    return engine::write(aElement, aDeviant, *aSetting.fFeature, aSetting.fValues[0]);
  Kelm::Generic::SequenceIntf& values = *engine::sequence(aElement, aDeviant, *aSetting.fFeature);
  for (Object const& value : aSetting.fValues) {
    using Kelm::Generic::RefAccess;
    if (aSetting.fFeature->fValueType == ValueType::String)
      values.generic_push_back(aDeviant, RefAccess<String>::make(String(value)));
    else if (aSetting.fFeature->fValueType == ValueType::Boolean)
      values.generic_push_back(aDeviant, RefAccess<Boolean>::make(Boolean(value)));
    else
      values.generic_push_back(aDeviant, RefAccess<Object>::make(value));
  }
}

/// Text goes into the name, or into the text feature of elements without a name.
engine::FeatureIndex textFeature(int aMetaclass) {
  if (aMetaclass == ids::metaclass::Comment) return ids::Comment::Body;
  if (aMetaclass == ids::metaclass::LiteralString) return ids::LiteralString::Value;
  if (aMetaclass == ids::metaclass::Expression) return ids::Expression::Symbol;
  return engine::conforms(aMetaclass, ids::metaclass::NamedElement) ? ids::NamedElement::Name
                                                                    : engine::kNoFeature;
}

Object make(Kelm::Model const& aModel, int aMetaclass, std::vector<Setting> const& aSettings) {
  if (!aModel.isvalid()) Kelm::raiseFailure(Kelm::words::kNotInVariant, "uml_metamodel/factory/textual");
  // Reading from text may fill the model of a read-only variant: it writes in the model's own variant.
  Kelm::Deviant const writable = aModel.object().baseDeviant();
  engine::Change change(aModel.object());
  Element* const element = detail::createElement(aMetaclass, Kelm::Model(aModel.get(), writable));
  for (Setting const& setting : aSettings) apply(*element, writable, setting);
  change.commit();
  return Object(element, aModel.getDeviant());
}

}  // namespace

Object create(Kelm::Model const& aModel, std::u16string_view aText) {
  Description const description = scan(aText);
  int const metaclass = concreteMetaclass(description.fMetaclass, description.fMetaclassPosition);
  std::vector<Setting> settings;
  if (description.fHasName) {
    engine::FeatureIndex const index = textFeature(metaclass);
    if (index == engine::kNoFeature || engine::feature(index).fValueType != ValueType::String)
      raiseUnreadable(description.fName, description.fMetaclassPosition + description.fMetaclass.size() + 1);
    settings.push_back(
        {&engine::feature(index), {Object(Kelm::String(description.fName).record(), Kelm::Deviant())}});
  }
  for (Assignment const& assignment : description.fAssignments)
    settings.push_back(readSetting(aModel, metaclass, assignment));
  return make(aModel, metaclass, settings);
}

Object create(Kelm::Model const& aModel, std::u16string_view aType, std::u16string_view aText) {
  std::string type = Kelm::toUtf8(aType);
  if (type.starts_with("umlmm.")) type.erase(0, 6);
  for (int index = 0; index < engine::kEnumerationCount; ++index)
    if (auto const& enumeration = engine::enumeration(index); type == enumeration.name())
      return Object(enumeration.object(enumeration.parse(Kelm::toUtf8(aText))), Kelm::Deviant());
  int const metaclass = metaclassNamed(aType);
  if (metaclass < 0 || engine::metaclass(metaclass).fAbstract) kelm::Error_IncorrectType(type);
  engine::FeatureIndex const index = textFeature(metaclass);
  Value const value{Value::Kind::Number, std::u16string(aText), 0};
  // The value of a literal specification is its text read as a value of its type.
  engine::FeatureIndex const literal =
      metaclass == ids::metaclass::LiteralBoolean            ? ids::LiteralBoolean::Value
      : metaclass == ids::metaclass::LiteralInteger          ? ids::LiteralInteger::Value
      : metaclass == ids::metaclass::LiteralUnlimitedNatural ? ids::LiteralUnlimitedNatural::Value
                                                             : engine::kNoFeature;
  if (literal != engine::kNoFeature) {
    Value typed = value;
    if (literal == ids::LiteralBoolean::Value) typed.fKind = Value::Kind::Word;
    if (aText == u"*") typed.fKind = Value::Kind::Star;
    Feature const& feature = engine::feature(literal);
    return make(aModel, metaclass, {{&feature, {readValue(aModel, feature, typed)}}});
  }
  if (index == engine::kNoFeature) kelm::Error_IncorrectType(type);
  return make(
      aModel, metaclass,
      {{&engine::feature(index), {Object(Kelm::String(std::u16string(aText)).record(), Kelm::Deviant())}}});
}

}  // namespace umlmm::factory::textual
