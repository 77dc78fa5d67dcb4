#include "kelm_mi/marshal/KelmmiPrimitiveProperty.h"

#include "kelm_mi/marshal/primitives.h"

namespace Kelm::mi {

template <class T>
KelmmiPrimitiveProperty<T>::~KelmmiPrimitiveProperty() = default;

template <class T>
void KelmmiPrimitiveProperty<T>::setValue(vesk::VeskInterface* aInstance, vesk::VeskValue aValue) {
  Borrowed<ClassObject> const object =
      openForSet(aInstance, detail::Primitive<T>::valueType(), "kelm_mi/marshal/KelmmiPrimitiveProperty");
  methods->setEntry(object->get(), object->getDeviant(), id, ArgumentUnboxer<T>::unbox(aValue).fValue);
}

template <class T>
vesk::VeskValue KelmmiPrimitiveProperty<T>::getSingleValuedValue(Kelm::ClassObject& aObject) {
  return Boxer<T>::box(T(methods->getEntry(aObject.get(), aObject.getDeviant(), id)));
}

template class KelmmiPrimitiveProperty<umlmm::Boolean>;
template class KelmmiPrimitiveProperty<umlmm::Integer>;

}  // namespace Kelm::mi
