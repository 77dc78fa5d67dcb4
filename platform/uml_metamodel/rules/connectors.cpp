#include "engine/Referrers.h"
#include "engine/access.h"
#include "operations/queries.h"
#include "rules/rules.h"

namespace umlmm::rules {

namespace {

using engine::Element;

engine::Feature const& role() noexcept { return engine::feature(ids::ConnectorEnd::Role); }

Element* definingEnd(Element const& aEnd) {
  Element const* const connector = aEnd.fContainer;
  if (connector == nullptr || aEnd.fContainerFeature != ids::Connector::End) return nullptr;
  Element const* const type = values::reference(*connector, ids::Connector::Type);
  if (type == nullptr) return nullptr;
  auto* const memberEnds = engine::pointerSlot<engine::ElementList>(*type, ids::Association::MemberEnd);
  auto* const ends = engine::pointerSlot<engine::ElementList>(*connector, ids::Connector::End);
  std::uint32_t const position = ends->positionOf(&aEnd, true);
  return position < engine::ElementList::size(memberEnds) ? memberEnds->at(position) : nullptr;
}

}  // namespace

engine::Rule const ConnectorEnd::DefiningEnd{
    .fValue = [](engine::Element const& aElement, Kelm::Deviant const& aDeviant) {
      return Kelm::Object(definingEnd(aElement), aDeviant);
    }};

engine::Rule const ConnectableElement::End{
    .fValues =
        [](engine::Element const& aElement, std::vector<engine::Element*>& aOut) {
          for (engine::Reference const& reference : engine::Referrers::of(aElement))
            if (reference.fFeature == ids::ConnectorEnd::Role) aOut.push_back(reference.fOwner);
        },
    .fInsert = [](engine::Element& aElement, engine::Element& aValue,
                  engine::Element*) { engine::setReference(aValue, role(), &aElement); },
    .fErase = [](engine::Element&,
                 engine::Element& aValue) { engine::setReference(aValue, role(), nullptr); }};

}  // namespace umlmm::rules
