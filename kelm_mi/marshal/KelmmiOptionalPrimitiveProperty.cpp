#include "kelm_mi/marshal/KelmmiOptionalPrimitiveProperty.h"

#include "kelm_mi/marshal/OptionalPrimitiveMarshaling.h"
#include "vesk/factory/BindingRegistry.h"

namespace Kelm::mi {

template <class T>
KelmmiOptionalPrimitiveProperty<T>::~KelmmiOptionalPrimitiveProperty() = default;

template <class T>
void KelmmiOptionalPrimitiveProperty<T>::setValue(vesk::VeskInterface* aInstance, vesk::VeskValue aValue) {
  Borrowed<ClassObject> const object = openForSet(aInstance, detail::Primitive<T>::valueType(),
                                                  "kelm_mi/marshal/KelmmiOptionalPrimitiveProperty");
  if (auto const value = OptionalPrimitiveMarshaling<T>::unbox(aValue.array()))
    methods->setEntry(object->get(), object->getDeviant(), id, *value);
  else
    methods->unsetEntry(object->get(), object->getDeviant(), id);
}

template <class T>
void KelmmiOptionalPrimitiveProperty<T>::releaseValue(vesk::VeskInterface*, vesk::VeskValue aValue) {
  tarnDestroyArray(aValue.array());
}

template <class T>
vesk::VeskValue KelmmiOptionalPrimitiveProperty<T>::getSingleValuedValue(Kelm::ClassObject& aObject) {
  if (!methods->isSetEntry(aObject.get(), aObject.getDeviant(), id)) {
    // Without an id the host gives the empty value of the data type.
    return vesk::factory::basic::BindingRegistry::announce(static_cast<void*>(nullptr), fDataTypeName);
  }
  return OptionalPrimitiveMarshaling<T>::box(T(methods->getEntry(aObject.get(), aObject.getDeviant(), id)));
}

template class KelmmiOptionalPrimitiveProperty<umlmm::Boolean>;
template class KelmmiOptionalPrimitiveProperty<umlmm::Integer>;

}  // namespace Kelm::mi
