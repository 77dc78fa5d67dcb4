#include "kelm_mi/marshal/PropHelper.h"

#include "kelm/ClassObject.h"
#include "uml_metamodel_mi/datatypes/values.h"

namespace Kelm::mi {

namespace {

template <EnumerationType E>
vesk::VeskValue box(E aValue, char const* aTypeName) {
  return boxEnumeration(aValue, internClassName(aTypeName));
}
vesk::VeskValue box(umlmm::UnlimitedNatural aValue, char const*) { return boxUnlimitedNatural(aValue); }

}  // namespace

template <class T>
PropHelper<T>::~PropHelper() = default;

template <class T>
vesk::VeskValue PropHelper<T>::unboxAndReturn(Object aValue, char const* aTypeName) {
  return box(T(aValue), aTypeName);
}

template <class T>
bool PropHelper<T>::boxAndSet(Kelm::ClassObject* aObject, vesk::VeskValue& aValue,
                              IntrospectiveMethods const* aMethods, unsigned aId) {
  UnboxedArgument<T> const value = ArgumentUnboxer<T>::unbox(aValue);
  if (!value.fHasValue) return false;
  aMethods->setEntry(aObject->get(), aObject->getDeviant(), aId, value.fValue);
  return true;
}

template class PropHelper<umlmm::AggregationKind>;
template class PropHelper<umlmm::CallConcurrencyKind>;
template class PropHelper<umlmm::ConnectorKind>;
template class PropHelper<umlmm::InteractionOperatorKind>;
template class PropHelper<umlmm::MessageKind>;
template class PropHelper<umlmm::MessageSort>;
template class PropHelper<umlmm::ParameterDirectionKind>;
template class PropHelper<umlmm::VisibilityKind>;
template class PropHelper<umlmm::UnlimitedNatural>;

}  // namespace Kelm::mi
