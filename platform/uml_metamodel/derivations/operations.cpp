#include "derivations/derivations.h"
#include "engine/engine.h"
#include "engine/failures.h"
#include "engine/featureAccess.h"
#include "engine/links.h"
#include "queries/queries.h"
#include "uml_metamodel/umlmm/ParameterDirectionKind.h"

/// What operations and expressions have from the first parameter with direction Return.
namespace umlmm::derivations {

namespace {

constexpr char kSource[] = "uml_metamodel/derivations/operations";

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

  static constexpr engine::Derivation kDerivation{.fValue = read, .fSet = set};
};

}  // namespace

engine::Derivation const Operation::IsOrdered =
    OfResult<ids::Operation::IsOrdered, ids::MultiplicityElement::IsOrdered>::kDerivation;
engine::Derivation const Operation::IsUnique =
    OfResult<ids::Operation::IsUnique, ids::MultiplicityElement::IsUnique>::kDerivation;
engine::Derivation const Operation::Lower =
    OfResult<ids::Operation::Lower, ids::MultiplicityElement::Lower>::kDerivation;
engine::Derivation const Operation::Upper =
    OfResult<ids::Operation::Upper, ids::MultiplicityElement::Upper>::kDerivation;
engine::Derivation const Operation::Type =
    OfResult<ids::Operation::Type, ids::TypedElement::Type>::kDerivation;

engine::Derivation const OpaqueExpression::Result{.fValue = [](Reading aElement) {
  Reading const behavior = aElement.reference(ids::OpaqueExpression::Behavior);
  if (!behavior) return behavior.object();
  return queries::returnParameter(behavior, ids::Behavior::OwnedParameter).object();
}};

}  // namespace umlmm::derivations
