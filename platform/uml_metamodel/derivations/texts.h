#pragma once

#include "kelm/values.h"

namespace umlmm::derivations {

/// A value that takes over a new text's count. `aText` must not be null.
inline Kelm::Object adopt(Kelm::StringObject const* aText) {
  Kelm::Object const object(aText, Kelm::Deviant());
  aText->decRef();
  return object;
}

}  // namespace umlmm::derivations
