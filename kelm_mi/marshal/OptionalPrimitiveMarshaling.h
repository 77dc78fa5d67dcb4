#pragma once

#include <optional>

#include "kelm/Asserter.h"
#include "kelm_mi/marshal/primitives.h"

namespace Kelm::mi {

/// How a Boolean or Integer that may be absent crosses: as an array, empty for an absent value.
template <class T>
struct OptionalPrimitiveMarshaling {
  /// The value in an array of class `kArrayClass`, which is not checked and stays the caller's; raises for
  /// two or more elements.
  static std::optional<T> unbox(tarnArray const* aArray) {
    std::size_t const count = tarn::numberOfElements(aArray);
    if (count == 0) return std::nullopt;
    if (count > 1) {
      Asserter::MakeAlways<Exception>("%s", kelm::getTooManyElementsMessage())
          .handle("kelm_mi/marshal/OptionalPrimitiveMarshaling", __LINE__, "");
    }
    return detail::Primitive<T>::fromElement(*tarn::dataAs<typename detail::Primitive<T>::Element>(aArray));
  }

  /// A 1 by 1 array that belongs to the caller.
  static tarnArray* box(T aValue) {
    tarnArray* const array = tarnCreateNumericMatrix(1, 1, detail::Primitive<T>::kArrayClass, 0);
    *tarn::dataAs<typename detail::Primitive<T>::Element>(array) = detail::Primitive<T>::toElement(aValue);
    return array;
  }
};

}  // namespace Kelm::mi
