#pragma once

#include "kelm/IntrospectiveMethods.h"

namespace Kelm::NSInterface {

/// The class of all elements.
extern ClassIntf const* const kernelClassObject;
/// Its properties by id; row 0 is empty.
extern MetaPropertyRecord const kernelPropertyTable[];

}  // namespace Kelm::NSInterface
