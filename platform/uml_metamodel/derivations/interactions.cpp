#include "derivations/derivations.h"
#include "queries/queries.h"
#include "uml_metamodel/umlmm/MessageKind.h"

namespace umlmm::derivations {

namespace {

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

Reading sendEnd(Reading aMessage) noexcept { return aMessage.reference(ids::Message::SendEvent); }
Reading receiveEnd(Reading aMessage) noexcept { return aMessage.reference(ids::Message::ReceiveEvent); }

/// The operation or signal of an end, or none. A gate has no event.
Reading namedBy(Reading aEnd) noexcept {
  if (!aEnd || !aEnd.isA(ids::metaclass::OccurrenceSpecification)) return aEnd.none();
  Reading const event = aEnd.reference(ids::OccurrenceSpecification::Event);
  if (!event) return event;
  for (Naming const& naming : kNamings)
    if (event.isA(naming.fEvent)) return event.reference(naming.fNamed);
  return aEnd.none();
}

}  // namespace

engine::Derivation const Message::MessageKind{.fValue = [](Reading aElement) -> Kelm::Object {
  using Kind = umlmm::MessageKind;
  bool const isSent{sendEnd(aElement)};
  bool const isReceived{receiveEnd(aElement)};
  if (isSent) return Kind(isReceived ? Kind::Complete : Kind::Lost);
  return Kind(isReceived ? Kind::Found : Kind::Unknown);
}};

engine::Derivation const Message::Signature{.fValue = [](Reading aElement) {
  Reading const sent = namedBy(sendEnd(aElement));
  return (sent ? sent : namedBy(receiveEnd(aElement))).object();
}};

}  // namespace umlmm::derivations
