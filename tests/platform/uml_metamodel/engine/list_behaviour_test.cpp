// The lists of elements and values that features hold, in the behaviour suite of all sequences.

#include <unordered_map>

#include "kelm/kernel/containers/sequence_suite.h"
#include "models.h"

namespace sequence_suite {
namespace {

/// As many values as the suite uses.
constexpr int kValues = 80;

/// A model that is closed behind its subject.
struct OpenModel {
  OpenModel() : fModel(Kelm::NSInterface::FactoryIntf::createNewModel()) {}
  OpenModel(OpenModel const&) = delete;
  OpenModel& operator=(OpenModel const&) = delete;
  ~OpenModel() { fModel.object().close(); }

  Kelm::Model fModel;
};

/// Elements that stand for the numbers of the suite.
template <class Value, class Made>
struct Numbered : OpenModel {
  Numbered() {
    for (int number = 0; number < kValues; ++number) {
      fValues.push_back(Made::create(fModel));
      fNumbers[fValues.back().get()] = number;
    }
  }

  std::vector<Value> fValues;
  std::unordered_map<void const*, int> fNumbers;
};

/// A list of elements `Made`, which `aList` answers for a new owner in a model.
template <class Made, class List>
auto elements(List aList) {
  using Value = typename std::invoke_result_t<List, Kelm::Model>::Value;
  return [aList] {
    auto const model = std::make_shared<Numbered<Value, Made>>();
    return std::make_unique<HandleSubject<Value>>(
        aList(model->fModel),
        [model](int aNumber) { return model->fValues[static_cast<std::size_t>(aNumber)]; },
        [model](Value const& aValue) { return model->fNumbers.at(aValue.get()); }, model);
  };
}

template <class List>
auto texts(List aList) {
  return [aList] {
    auto const model = std::make_shared<OpenModel>();
    return std::make_unique<HandleSubject<umlmm::String>>(
        aList(umlmm::OpaqueExpression::create(model->fModel)),
        [](int aNumber) { return umlmm::String(Kelm::toUtf16(std::to_string(aNumber))); },
        [](umlmm::String const& aText) { return std::stoi(aText.narrow()); }, model);
  };
}

using Kelm::Model;
using umlmm::Class;

Kind const kKinds[] = {
    {"OwningWithOpposite", true, elements<umlmm::Property>([](Model const& aModel) {
       return Class::create(aModel).getOwnedAttribute();
     })},
    {"Owning", true, elements<Class>([](Model const& aModel) {
       return umlmm::Package::create(aModel).getPackagedElement();
     })},
    {"ReferringWithOpposite", true,
     elements<Class>([](Model const& aModel) { return umlmm::UseCase::create(aModel).getSubject(); })},
    {"Referring", true, elements<Class>([](Model const& aModel) {
       return umlmm::Comment::create(aModel).getAnnotatedElement();
     })},
    {"Computed", true,
     elements<Class>([](Model const& aModel) { return umlmm::Package::create(aModel).getOwnedType(); })},
    {"RepeatableTexts", false, texts([](auto const& aExpression) { return aExpression.getBody(); })},
    {"UniqueTexts", true, texts([](auto const& aExpression) { return aExpression.getLanguage(); })},
};

INSTANTIATE_TEST_SUITE_P(FeatureLists, SequenceSuite, testing::ValuesIn(kKinds), nameOf);

}  // namespace
}  // namespace sequence_suite
