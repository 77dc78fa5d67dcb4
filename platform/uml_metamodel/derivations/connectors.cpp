#include <algorithm>

#include "derivations/derivations.h"
#include "engine/Change.h"
#include "engine/Referrers.h"
#include "engine/featureAccess.h"
#include "queries/queries.h"

namespace umlmm::derivations {

namespace {

using engine::Element;

engine::Feature const& role() noexcept { return engine::feature(ids::ConnectorEnd::Role); }

Reading definingEnd(Reading aEnd) {
  Reading const connector = aEnd.owner();
  if (!connector || aEnd.containment() != ids::Connector::End) return aEnd.none();
  Reading const type = connector.reference(ids::Connector::Type);
  if (!type) return type;
  return type.at(ids::Association::MemberEnd, connector.positionOf(ids::Connector::End, *aEnd));
}

void readEnds(Reading aConnectable, std::vector<Element*>& aOut) {
  for (engine::Reference const& reference : aConnectable.referrers())
    if (reference.fFeature == ids::ConnectorEnd::Role) aOut.push_back(reference.fOwner);
}

void arrangeEnds(Reading aConnectable, std::vector<Element*> const& aOrder) {
  std::vector<engine::Reference> references;
  references.reserve(aOrder.size());
  for (Element* const end : aOrder) references.push_back({end, ids::ConnectorEnd::Role});
  engine::Change::arrangeReferrers(*aConnectable, references);
}

}  // namespace

engine::Derivation const ConnectorEnd::DefiningEnd{
    .fValue = [](Reading aElement) { return definingEnd(aElement).object(); }};

engine::Derivation const ConnectableElement::End{
    .fValues = readEnds,
    .fInsert =
        [](Reading aElement, engine::Element& aValue, engine::Element* aBefore) {
          engine::setReference(aValue, role(), aElement.element());
          if (aBefore == nullptr) return;
          std::vector<engine::Element*> ends;
          readEnds(aElement, ends);
          ends.pop_back();
          ends.insert(std::find(ends.begin(), ends.end(), aBefore), &aValue);
          arrangeEnds(aElement, ends);
        },
    .fErase = [](Reading, engine::Element& aValue) { engine::setReference(aValue, role(), nullptr); },
    .fArrange = arrangeEnds};

}  // namespace umlmm::derivations
