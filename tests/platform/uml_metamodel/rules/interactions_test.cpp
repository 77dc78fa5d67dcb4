#include "../operations/names.h"

using umlmm::MessageKind;

class InteractionsTest : public NamedModelTest {
 protected:
  umlmm::MessageOccurrenceSpecification occurrence(umlmm::Event const& aEvent) const {
    auto const made = make<umlmm::MessageOccurrenceSpecification>();
    made.setEvent(aEvent);
    return made;
  }

  umlmm::Message const fMessage = make<umlmm::Message>();
};

TEST_F(InteractionsTest, TheEndsThatAreThereTellTheKindOfAMessage) {
  auto const end = make<umlmm::Gate>();
  EXPECT_EQ(fMessage.getMessageKind(), MessageKind(MessageKind::Unknown));
  fMessage.setSendEvent(end);
  EXPECT_EQ(fMessage.getMessageKind(), MessageKind(MessageKind::Lost));
  fMessage.setReceiveEvent(end);
  EXPECT_EQ(fMessage.getMessageKind(), MessageKind(MessageKind::Complete));
  fMessage.setSendEvent(umlmm::MessageEnd());
  EXPECT_EQ(fMessage.getMessageKind(), MessageKind(MessageKind::Found));
}

TEST_F(InteractionsTest, TheSignatureIsWhatTheEventOfAnEndNames) {
  auto const run = named<umlmm::Operation>(u"run");
  auto const stop = named<umlmm::Signal>(u"stop");
  EXPECT_TRUE(fMessage.getSignature().isNull());
  fMessage.setReceiveEvent(occurrence(umlmm::ReceiveOperationEvent::create(fModel, run)));
  EXPECT_EQ(nameOf(fMessage.getSignature()), "run");
  fMessage.setSendEvent(make<umlmm::Gate>());
  EXPECT_EQ(nameOf(fMessage.getSignature()), "run") << "a gate names nothing";
  fMessage.setSendEvent(occurrence(make<umlmm::CreationEvent>()));
  EXPECT_EQ(nameOf(fMessage.getSignature()), "run");
  fMessage.setSendEvent(occurrence(umlmm::SendSignalEvent::create(fModel, stop)));
  EXPECT_EQ(nameOf(fMessage.getSignature()), "stop");
  stop.destroy();
  EXPECT_EQ(nameOf(fMessage.getSignature()), "run");
}
