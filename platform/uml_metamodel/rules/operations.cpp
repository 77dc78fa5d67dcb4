#include "engine/access.h"
#include "engine/engine.h"
#include "engine/failures.h"
#include "engine/links.h"
#include "operations/queries.h"
#include "rules/rules.h"
#include "uml_metamodel/umlmm/ParameterDirectionKind.h"

/// What operations and expressions have from the first parameter with direction Return.
namespace umlmm::rules {

namespace {

constexpr char kSource[] = "uml_metamodel/rules/operations";

Reading resultOf(Reading aOperation) {
  return queries::returnParameter(aOperation, ids::BehavioralFeature::OwnedParameter);
}

Reading makeResult(Reading aOperation) {
  auto& parameter = engine::Change::create(ids::metaclass::Parameter, aOperation.model());
  engine::write(parameter, aOperation.deviant(), engine::feature(ids::Parameter::Direction),
                ParameterDirectionKind(ParameterDirectionKind::Return));
  engine::link(*aOperation, engine::feature(ids::BehavioralFeature::OwnedParameter), parameter);
  return aOperation.on(parameter);
}

/// Raises if a feature of primitive values can't take the value.
void checkPrimitive(engine::Feature const& aFeature, Kelm::Object const& aValue) {
  auto kind = Kelm::PrimitiveKind::UnlimitedNatural;
  if (aFeature.fValueType == engine::ValueType::Boolean) kind = Kelm::PrimitiveKind::Boolean;
  if (aFeature.fValueType == engine::ValueType::Integer) kind = Kelm::PrimitiveKind::Integer;
  if (!aFeature.isReference() && !Kelm::isPrimitive(aValue, kind))
    engine::failures::raiseNotAValue(kSource, aFeature);
}

/// The feature Own of an operation is the feature Shown of its return parameter.
template <engine::FeatureIndex Own, engine::FeatureIndex Shown>
struct OfResult {
  static Kelm::Object read(Reading aOperation) {
    if (Reading const parameter = resultOf(aOperation))
      return engine::read(*parameter, parameter.deviant(), engine::feature(Shown));
    // Required values have an answer without a parameter, too: that of a fresh one.
    if constexpr (Own == ids::Operation::IsUnique)
      return Kelm::makePrimitive(Kelm::PrimitiveKind::Boolean, 1);
    if constexpr (Own == ids::Operation::IsOrdered)
      return Kelm::makePrimitive(Kelm::PrimitiveKind::Boolean, 0);
    return {};
  }
  static void set(Reading aOperation, Kelm::Object const& aValue) {
    Reading parameter = resultOf(aOperation);
    if (aValue.isNull()) {
      if (parameter) engine::unset(*parameter, parameter.deviant(), engine::feature(Shown));
      return;
    }
    checkPrimitive(engine::feature(Own), aValue);
    if (!parameter) parameter = makeResult(aOperation);
    engine::write(*parameter, parameter.deviant(), engine::feature(Shown), aValue);
  }

  static constexpr engine::Rule kRule{.fValue = read, .fSet = set};
};

}  // namespace

engine::Rule const Operation::IsOrdered =
    OfResult<ids::Operation::IsOrdered, ids::MultiplicityElement::IsOrdered>::kRule;
engine::Rule const Operation::IsUnique =
    OfResult<ids::Operation::IsUnique, ids::MultiplicityElement::IsUnique>::kRule;
engine::Rule const Operation::Lower = OfResult<ids::Operation::Lower, ids::MultiplicityElement::Lower>::kRule;
engine::Rule const Operation::Upper = OfResult<ids::Operation::Upper, ids::MultiplicityElement::Upper>::kRule;
engine::Rule const Operation::Type = OfResult<ids::Operation::Type, ids::TypedElement::Type>::kRule;

engine::Rule const OpaqueExpression::Result{.fValue = [](Reading aElement) {
  Reading const behavior = aElement.reference(ids::OpaqueExpression::Behavior);
  if (!behavior) return behavior.object();
  return queries::returnParameter(behavior, ids::Behavior::OwnedParameter).object();
}};

}  // namespace umlmm::rules
