#include "operations/queries.h"
#include "rules/rules.h"

/// Interfaces that ports and components provide and require.
namespace umlmm::rules {

namespace {

using engine::Element;
using queries::Elements;

enum class Side : bool { Required, Provided };

/// Interfaces in order, each once.
class Interfaces {
 public:
  explicit Interfaces(Side aSide) noexcept : fSide(aSide) {}

  /// Those of the classifier's own dependencies.
  void addOf(Element const& aClassifier) {
    add(fSide == Side::Provided ? queries::realizedInterfaces(&aClassifier)
                                : queries::usedInterfaces(&aClassifier));
  }

  void addOfPort(Element const& aPort) {
    Element* const type = values::reference(aPort, ids::TypedElement::Type);
    if (type == nullptr) return;
    bool const isConjugated = values::flag(aPort, ids::Port::IsConjugated);
    bool const isRealized = (fSide == Side::Provided) != isConjugated;
    if (isRealized && queries::isA(*type, ids::metaclass::Interface)) return add({type});
    for (Element* const classifier : queries::withAllParents(*type))
      add(isRealized ? queries::realizedInterfaces(classifier) : queries::usedInterfaces(classifier));
  }

  /// Those of what realizes a component, with all that it inherits from.
  void addOfRealizers(Element const& aComponent) {
    for (Element* const realization : values::elements(aComponent, ids::Component::Realization))
      if (Element* const realizer =
              values::reference(*realization, ids::ComponentRealization::RealizingClassifier))
        for (Element* const classifier : queries::withAllParents(*realizer)) addOf(*classifier);
  }

  void addOfPorts(Element const& aClassifier) {
    for (Element* const attribute : values::elements(aClassifier, ids::StructuredClassifier::OwnedAttribute))
      if (queries::isA(*attribute, ids::metaclass::Port)) addOfPort(*attribute);
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
void readComponent(Element const& aComponent, Elements& aOut) {
  Interfaces interfaces(Asked);
  Elements const line = queries::withAllParents(const_cast<Element&>(aComponent));
  interfaces.addOf(aComponent);
  for (Element* const classifier : line)
    if (queries::isA(*classifier, ids::metaclass::Component)) interfaces.addOfRealizers(*classifier);
  for (Element* const classifier : line)
    if (queries::isA(*classifier, ids::metaclass::EncapsulatedClassifier)) interfaces.addOfPorts(*classifier);
  aOut.insert(aOut.end(), interfaces.found().begin(), interfaces.found().end());
}

template <Side Asked>
void readPort(Element const& aPort, Elements& aOut) {
  Interfaces interfaces(Asked);
  interfaces.addOfPort(aPort);
  aOut.insert(aOut.end(), interfaces.found().begin(), interfaces.found().end());
}

}  // namespace

engine::Rule const Component::Required{.fValues = readComponent<Side::Required>};
engine::Rule const Component::Provided{.fValues = readComponent<Side::Provided>};
engine::Rule const Port::Required{.fValues = readPort<Side::Required>};
engine::Rule const Port::Provided{.fValues = readPort<Side::Provided>};

}  // namespace umlmm::rules
