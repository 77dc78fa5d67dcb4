#include "derivations/derivations.h"
#include "queries/queries.h"

/// Interfaces that ports and components provide and require.
namespace umlmm::derivations {

namespace {

using engine::Element;
using queries::Elements;

enum class Side : bool { Required, Provided };

/// Interfaces in order, each once.
class Interfaces {
 public:
  explicit Interfaces(Side aSide) noexcept : fSide(aSide) {}

  /// Those of the classifier's own dependencies.
  void addOf(Reading aClassifier) {
    add(fSide == Side::Provided ? queries::realizedInterfaces(aClassifier)
                                : queries::usedInterfaces(aClassifier));
  }

  void addOfPort(Reading aPort) {
    Reading const type = aPort.reference(ids::TypedElement::Type);
    if (!type) return;
    bool const isConjugated = aPort.flag(ids::Port::IsConjugated);
    bool const isRealized = (fSide == Side::Provided) != isConjugated;
    if (isRealized && type.isA(ids::metaclass::Interface)) return add({type.element()});
    for (Element* const each : queries::withAllParents(type)) {
      Reading const classifier = type.on(*each);
      add(isRealized ? queries::realizedInterfaces(classifier) : queries::usedInterfaces(classifier));
    }
  }

  /// Those of what realizes a component, with all that it inherits from.
  void addOfRealizers(Reading aComponent) {
    for (Reading const realization : aComponent.list(ids::Component::Realization))
      if (Reading const realizer = realization.reference(ids::ComponentRealization::RealizingClassifier))
        for (Element* const classifier : queries::withAllParents(realizer)) addOf(realizer.on(*classifier));
  }

  void addOfPorts(Reading aClassifier) {
    for (Reading const attribute : aClassifier.list(ids::StructuredClassifier::OwnedAttribute))
      if (attribute.isA(ids::metaclass::Port)) addOfPort(attribute);
  }

  Elements const& found() const noexcept { return fFound; }

 private:
  void add(Elements const& aInterfaces) {
    for (Element* const interface : aInterfaces)
      if (fSeen.insert(*interface)) fFound.push_back(interface);
  }

  Side fSide;
  queries::Visited fSeen;
  Elements fFound;
};

template <Side Asked>
void readComponent(Reading aComponent, Elements& aOut) {
  Interfaces interfaces(Asked);
  Elements const line = queries::withAllParents(aComponent);
  interfaces.addOf(aComponent);
  for (Element* const each : line)
    if (Reading const classifier = aComponent.on(*each); classifier.isA(ids::metaclass::Component))
      interfaces.addOfRealizers(classifier);
  for (Element* const each : line)
    if (Reading const classifier = aComponent.on(*each);
        classifier.isA(ids::metaclass::EncapsulatedClassifier))
      interfaces.addOfPorts(classifier);
  aOut.insert(aOut.end(), interfaces.found().begin(), interfaces.found().end());
}

template <Side Asked>
void readPort(Reading aPort, Elements& aOut) {
  Interfaces interfaces(Asked);
  interfaces.addOfPort(aPort);
  aOut.insert(aOut.end(), interfaces.found().begin(), interfaces.found().end());
}

}  // namespace

engine::Derivation const Component::Required{.fValues = readComponent<Side::Required>};
engine::Derivation const Component::Provided{.fValues = readComponent<Side::Provided>};
engine::Derivation const Port::Required{.fValues = readPort<Side::Required>};
engine::Derivation const Port::Provided{.fValues = readPort<Side::Provided>};

}  // namespace umlmm::derivations
