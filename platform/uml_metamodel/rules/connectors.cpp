#include <algorithm>

#include "engine/Referrers.h"
#include "engine/access.h"
#include "operations/queries.h"
#include "rules/rules.h"

namespace umlmm::rules {

namespace {

using engine::Element;

engine::Feature const& role() noexcept { return engine::feature(ids::ConnectorEnd::Role); }

Element* definingEnd(Element const& aEnd) {
  Element const* const connector = aEnd.container();
  if (connector == nullptr || aEnd.containerFeature() != ids::Connector::End) return nullptr;
  Element const* const type = values::reference(*connector, ids::Connector::Type);
  if (type == nullptr) return nullptr;
  auto* const memberEnds = engine::pointerSlot<engine::ElementList>(*type, ids::Association::MemberEnd);
  auto* const ends = engine::pointerSlot<engine::PartList>(*connector, ids::Connector::End);
  std::uint32_t const position = ends->positionOf(&aEnd);
  return position < engine::ElementList::size(memberEnds) ? memberEnds->at(position) : nullptr;
}

void readEnds(Element const& aConnectable, std::vector<Element*>& aOut) {
  for (engine::Reference const& reference : engine::Referrers::of(aConnectable))
    if (reference.fFeature == ids::ConnectorEnd::Role) aOut.push_back(reference.fOwner);
}

void arrangeEnds(Element& aConnectable, std::vector<Element*> const& aOrder) {
  std::vector<engine::Reference> references;
  references.reserve(aOrder.size());
  for (Element* const end : aOrder) references.push_back({end, ids::ConnectorEnd::Role});
  engine::Change::arrangeReferrers(aConnectable, references);
}

}  // namespace

engine::Rule const ConnectorEnd::DefiningEnd{
    .fValue = [](engine::Element const& aElement, Kelm::Deviant const& aDeviant) {
      return Kelm::Object(definingEnd(aElement), aDeviant);
    }};

engine::Rule const ConnectableElement::End{
    .fValues = readEnds,
    .fInsert =
        [](engine::Element& aElement, engine::Element& aValue, engine::Element* aBefore) {
          engine::setReference(aValue, role(), &aElement);
          if (aBefore == nullptr) return;
          std::vector<engine::Element*> ends;
          readEnds(aElement, ends);
          ends.pop_back();
          ends.insert(std::find(ends.begin(), ends.end(), aBefore), &aValue);
          arrangeEnds(aElement, ends);
        },
    .fErase = [](engine::Element&,
                 engine::Element& aValue) { engine::setReference(aValue, role(), nullptr); },
    .fArrange = arrangeEnds};

}  // namespace umlmm::rules
