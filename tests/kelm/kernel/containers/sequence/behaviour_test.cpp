#include <array>

#include "kelm/kernel/containers/sequence_suite.h"
#include "kelm/kernel/containers/values.h"

namespace sequence_suite {
namespace {

/// A list whose data another list shares whenever the suite says so.
class SharedListSubject : public HandleSubject<Number> {
 public:
  explicit SharedListSubject(std::shared_ptr<Kelm::ListQImpl<Number>> aList)
      : HandleSubject(
            {aList.get(), {}}, [](int aNumber) { return Number{aNumber}; },
            [](Number const& aNumber) { return aNumber.fValue; }, aList),
        fList(aList) {
    share();
  }

  void share() override {
    if (fCopy != nullptr) {
      Kelm::Sequence<Number> const copy(fCopy.get(), {});
      std::vector<int> values;
      for (Number const& value : copy.values()) values.push_back(value.fValue);
      EXPECT_EQ(values, fExpected) << "a write went through to shared data";
    }
    fExpected = contentsInBlocks();
    fCopy = std::make_unique<Kelm::ListQImpl<Number>>(*fList);
  }

 private:
  std::shared_ptr<Kelm::ListQImpl<Number>> fList;
  std::unique_ptr<Kelm::ListQImpl<Number>> fCopy;
  std::vector<int> fExpected;
};

template <class Implementation, bool Counted>
std::unique_ptr<Subject> makeNumbers() {
  auto const toValue = [](int aNumber) { return Number{aNumber}; };
  auto const toNumber = [](Number const& aNumber) { return aNumber.fValue; };
  if constexpr (Counted) {
    return std::make_unique<HandleSubject<Number>>(counted<Number, Implementation>(), toValue, toNumber);
  } else {
    auto const bare = std::make_shared<Implementation>();
    Kelm::Sequence<Number> const handle(bare.get(), {});
    return std::make_unique<HandleSubject<Number>>(handle, toValue, toNumber, bare);
  }
}

template <class T, class Implementation>
std::unique_ptr<Subject> makeFragile() {
  return std::make_unique<HandleSubject<T>>(
      counted<T, Implementation>(), [](int aNumber) { return T(aNumber); },
      [](T const& aValue) { return aValue.fValue; });
}

template <class Implementation>
std::unique_ptr<Subject> makeTexts() {
  return std::make_unique<HandleSubject<Text>>(
      counted<Text, Implementation>(),
      [](int aNumber) {
        Text text(Kelm::toUtf16(std::to_string(aNumber)));
        text.narrow();
        return text;
      },
      [](Text const& aText) { return std::stoi(aText.narrow()); });
}

template <class Implementation>
std::unique_ptr<Subject> makeReferences() {
  auto const things = std::make_shared<std::array<Thing, 80>>();
  return std::make_unique<HandleSubject<Kelm::Object>>(
      counted<Kelm::Object, Implementation>(),
      [things](int aNumber) { return Kelm::Object(&(*things)[aNumber], {}); },
      [things](Kelm::Object const& aThing) {
        return static_cast<int>(static_cast<Thing const*>(aThing.get()) - things->data());
      },
      things);
}

Kind const kKinds[] = {
    {"Model", false, [] { return std::make_unique<ModelSubject>(false); }},
    {"UniqueModel", true, [] { return std::make_unique<ModelSubject>(true); }},
    {"BareList", false, makeNumbers<Kelm::ListQImpl<Number>, false>},
    {"List", false, makeNumbers<Kelm::ListQImpl<Number>, true>},
    {"SharedList", false,
     [] { return std::make_unique<SharedListSubject>(std::make_shared<Kelm::ListQImpl<Number>>()); }},
    {"ListOfUnsafeMoves", false, makeFragile<Fragile, Kelm::ListQImpl<Fragile>>},
    {"ListOfTexts", false, makeTexts<Kelm::ListQImpl<Text>>},
    {"ListOfReferences", false, makeReferences<Kelm::ListQImpl<Kelm::Object>>},
    {"BareMultiIndex", false, makeNumbers<Repeating<Number>, false>},
    {"MultiIndex", false, makeNumbers<Repeating<Number>, true>},
    {"MultiIndexOfUnsafeMoves", false, makeFragile<Fragile, Repeating<Fragile>>},
    {"MultiIndexOfTexts", false, makeTexts<Repeating<Text>>},
    {"MultiIndexOfReferences", false, makeReferences<Repeating<Kelm::Object>>},
    {"BareUniqueMultiIndex", true, makeNumbers<Unique<Number>, false>},
    {"UniqueMultiIndex", true, makeNumbers<Unique<Number>, true>},
    {"UniqueMultiIndexOfTexts", true, makeTexts<Unique<Text>>},
    {"UniqueMultiIndexOfReferences", true, makeReferences<Unique<Kelm::Object>>},
};

INSTANTIATE_TEST_SUITE_P(Kinds, SequenceSuite, testing::ValuesIn(kKinds), nameOf);

}  // namespace
}  // namespace sequence_suite
