#include "kelm_mi/marshal/KelmmiStringProperty.h"

#include "tarn/tarn.h"
#include "uml_metamodel_mi/datatypes/conversions.h"

namespace Kelm::mi {

template <class T>
KelmmiStringProperty<T>::~KelmmiStringProperty() = default;

template <class T>
void KelmmiStringProperty<T>::setValue(vesk::VeskInterface* aInstance, vesk::VeskValue aValue) {
  Borrowed<ClassObject> const object = openForSet(aInstance, vesk::internal::interned<"char vector">(),
                                                  "kelm_mi/marshal/KelmmiStringProperty");
  UnboxedArgument<T> const text = ArgumentUnboxer<T>::unbox(aValue);
  if (!text.fValue.empty() || has(required))
    methods->setEntry(object->get(), object->getDeviant(), id, text.fValue);
  else
    methods->unsetEntry(object->get(), object->getDeviant(), id);
}

template <class T>
void KelmmiStringProperty<T>::releaseValue(vesk::VeskInterface*, vesk::VeskValue aValue) {
  tarnDestroyArray(aValue.array());
}

template <class T>
vesk::VeskValue KelmmiStringProperty<T>::getSingleValuedValue(Kelm::ClassObject& aObject) {
  if (!methods->isSetEntry(aObject.get(), aObject.getDeviant(), id)) return tarnCreateString_UTF16(u"");
  return Boxer<T>::box(T(methods->getEntry(aObject.get(), aObject.getDeviant(), id)));
}

template class KelmmiStringProperty<umlmm::String>;

}  // namespace Kelm::mi
