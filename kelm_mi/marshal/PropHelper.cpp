#include "kelm_mi/marshal/PropHelper.h"

#include "kelm_mi/marshal/PropHelperImplementation.h"

// The enumerations' instances are in their own units.
template class Kelm::mi::PropHelper<umlmm::UnlimitedNatural>;
