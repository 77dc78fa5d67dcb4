#include "uml_metamodel_mi/package.h"

#include "frame/addTypedMethod.h"
#include "kelm/Model.h"
#include "uml_metamodel/umlmm/detail/metamodel.h"
#include "uml_metamodel_mi/registration.h"
#include "vesk/VeskPackage.h"
#include "vesk/factory/BindingRegistry.h"

namespace umlmm::mi {

namespace {

// The library's whole state. Plain memory: the entry points run on the host's loading thread. A flag is set
// before the work is done, so that work that failed is not started again.
bool sInitialized = false;
bool sTerminated = false;
bool sProviderGiven = false;
vesk::VeskPackage* sPackage = nullptr;

}  // namespace

void umlmmPackageWrapper::initializePackage(vesk::VeskPackage* aPackage) {
  sPackage = aPackage;
  umlmmStaticInitializePackage(aPackage);
}

void initumlmmPackageWrapper(vesk::VeskPackage*) {
  if (sProviderGiven) return;
  sProviderGiven = true;
  vesk::VeskPackage::addPackage(new umlmmPackageWrapper);
}

vesk::VeskPackage* getumlmmVeskPackage() { return sPackage; }

void umlmmStaticInitializePackage(vesk::VeskPackage* aPackage) {
  for (Registrar const registrar : kRegistrars) registrar(aPackage);
  if (aPackage == nullptr) return;
  vesk::factory::detail::initStringDataTypes();
  Kelm::mi::addPackageFunction(aPackage, {"MetaPackage",
                                          0,
                                          Kelm::mi::Form::FreeFunction,
                                          {"", "Kelm.ImmutablePackage", nullptr},
                                          &Kelm::mi::bindFunction<&umlmm::MetaPackage>});
}

}  // namespace umlmm::mi

void SarnInitialize_uml_metamodel_mi() {
  if (umlmm::mi::sInitialized) return;
  umlmm::mi::sInitialized = true;
  Kelm::initialize();
  umlmm::mi::initumlmmPackageWrapper(nullptr);
}

void SarnTerminate_uml_metamodel_mi() {
  // Everything belongs to the host and outlives this call.
  if (!umlmm::mi::sTerminated) umlmm::mi::sTerminated = true;
}
