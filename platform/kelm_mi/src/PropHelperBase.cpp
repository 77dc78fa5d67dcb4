#include "kelm_mi/PropHelperBase.h"

namespace Kelm::mi {

PropHelperBase::PropHelperBase() = default;
PropHelperBase::~PropHelperBase() = default;

}  // namespace Kelm::mi
