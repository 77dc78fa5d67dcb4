#include "operations/answers.h"

#include "engine/FeatureSequence.h"
#include "kelm/kernel/containers/sequence/SequenceCreator.h"

namespace umlmm::operations {

std::vector<Element*> givenElements(Reading aAsked, Kelm::SequenceRef const& aArgument) {
  std::vector<Element*> elements;
  Kelm::Generic::SequenceIntf const* const sequence = aArgument.get();
  if (sequence == nullptr) return elements;
  Deviant const& deviant = aArgument.getDeviant();
  std::vector<Kelm::Generic::Loan> values(static_cast<std::size_t>(sequence->generic_size(deviant)));
  sequence->readBlock(deviant, 0, static_cast<int>(values.size()), values.data());
  for (auto const& value : values)
    if (Element* const element = engine::elementOf(value);
        element != nullptr && element->model() == &aAsked.model())
      elements.push_back(element);
  return elements;
}

Kelm::ImmutableSequence<String> makeTexts(Deviant const& aDeviant,
                                          std::vector<std::u16string_view> const& aTexts) {
  auto const result = Kelm::SequenceCreator::create<String>({aDeviant, Kelm::STD_VECTOR, false, true});
  for (std::u16string_view const text : aTexts) result.push_back(makeText(text));
  return result;
}

}  // namespace umlmm::operations
