#include "vesk/host/Extensions.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "vesk/VeskError.h"
#include "vesk/host/ClassRecord.h"

namespace vesk::host {

namespace {

struct NamedFailure {
  char const* fName;
  FailureMatcher fMatches;
  FailureClassifier fClassify;
};
struct Registrar {
  std::string fPackage;
  ExtensionRegistrar fRegister;
};

// Both lists live as long as the process: failures are named while the last objects go.
std::vector<NamedFailure>& namedFailures() {
  static auto& sFailures = *new std::vector<NamedFailure>;
  return sFailures;
}
NamedFailure const* find(std::exception const& failure) noexcept {
  for (NamedFailure const& known : namedFailures())
    if (known.fMatches(failure)) return &known;
  return nullptr;
}
std::vector<Registrar>& registrars() {
  static auto& sRegistrars = *new std::vector<Registrar>;
  return sRegistrars;
}

}  // namespace

void nameFailures(char const* name, FailureMatcher matches, FailureClassifier classify) {
  NamedFailure const named{name, matches, classify};
  for (NamedFailure& known : namedFailures()) {
    if (std::strcmp(known.fName, name) == 0) {
      known = named;
      return;
    }
  }
  namedFailures().push_back(named);
}

char const* failureName(std::exception const& failure) noexcept {
  NamedFailure const* known = find(failure);
  return known ? known->fName : nullptr;
}

FailureKind failureKind(std::exception const& failure) noexcept {
  NamedFailure const* known = find(failure);
  return known && known->fClassify ? known->fClassify(failure) : FailureKind::General;
}

std::vector<char const*> failureNames() {
  std::vector<char const*> names;
  for (NamedFailure const& known : namedFailures()) names.push_back(known.fName);
  return names;
}

void setExtensionRegistrar(char const* package, ExtensionRegistrar registrar) {
  std::erase_if(registrars(), [&](Registrar const& known) { return known.fPackage == package; });
  if (registrar) registrars().push_back({package, registrar});
}

void addExtension(char const* className, ClassExtension extension) {
  std::string_view const name = classOf(internal::intern(className)).fName.view();
  std::string_view const package = name.substr(0, name.find('.'));
  auto found = std::find_if(registrars().begin(), registrars().end(),
                            [&](Registrar const& known) { return known.fPackage == package; });
  if (found == registrars().end()) found = registrars().begin();
  if (found == registrars().end())
    throw VeskError("No library takes extensions of class '" + std::string(name) + "'",
                    VeskError::Kind::Name);
  found->fRegister(className, std::move(extension));
}

}  // namespace vesk::host
