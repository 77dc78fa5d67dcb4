#include "operations/queries.h"
#include "rules/rules.h"
#include "uml_metamodel/umlmm/MessageKind.h"

namespace umlmm::rules {

namespace {

using engine::Element;

/// What the events of one metaclass name.
struct Naming {
  int fEvent;
  engine::FeatureIndex fNamed;
};

constexpr Naming kNamings[] = {
    {ids::metaclass::SendOperationEvent, ids::SendOperationEvent::Operation},
    {ids::metaclass::ReceiveOperationEvent, ids::ReceiveOperationEvent::Operation},
    {ids::metaclass::CallEvent, ids::CallEvent::Operation},
    {ids::metaclass::SendSignalEvent, ids::SendSignalEvent::Signal},
    {ids::metaclass::ReceiveSignalEvent, ids::ReceiveSignalEvent::Signal},
    {ids::metaclass::SignalEvent, ids::SignalEvent::Signal},
};

Element* sendEnd(Element const& aMessage) noexcept {
  return values::reference(aMessage, ids::Message::SendEvent);
}
Element* receiveEnd(Element const& aMessage) noexcept {
  return values::reference(aMessage, ids::Message::ReceiveEvent);
}

/// The operation or signal of an end, or null. A gate has no event.
Element* namedBy(Element const* aEnd) noexcept {
  if (aEnd == nullptr || !queries::isA(*aEnd, ids::metaclass::OccurrenceSpecification)) return nullptr;
  Element const* const event = values::reference(*aEnd, ids::OccurrenceSpecification::Event);
  if (event == nullptr) return nullptr;
  for (Naming const& naming : kNamings)
    if (queries::isA(*event, naming.fEvent)) return values::reference(*event, naming.fNamed);
  return nullptr;
}

}  // namespace

engine::Rule const Message::MessageKind{
    .fValue = [](engine::Element const& aElement, Kelm::Deviant const&) -> Kelm::Object {
      using Kind = umlmm::MessageKind;
      bool const isSent = sendEnd(aElement) != nullptr;
      bool const isReceived = receiveEnd(aElement) != nullptr;
      if (isSent) return Kind(isReceived ? Kind::Complete : Kind::Lost);
      return Kind(isReceived ? Kind::Found : Kind::Unknown);
    }};

engine::Rule const Message::Signature{
    .fValue = [](engine::Element const& aElement, Kelm::Deviant const& aDeviant) {
      engine::Element const* const sent = namedBy(sendEnd(aElement));
      return Kelm::Object(sent != nullptr ? sent : namedBy(receiveEnd(aElement)), aDeviant);
    }};

}  // namespace umlmm::rules
