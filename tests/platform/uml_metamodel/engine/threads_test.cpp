// Models in different threads are independent, and a model may go from one thread to another between calls.

#include <unistd.h>

#include <atomic>
#include <deque>
#include <fstream>
#include <thread>
#include <vector>

#include "kelm/DeviantRegistry.h"
#include "models.h"

namespace {

constexpr int kThreads = 4;
constexpr int kClasses = 40;

/// What all threads share is constant: a text that each gives to models of its own.
umlmm::String const kShared(u"shared");

/// Runs `aWork(number)` in several threads at once and waits for all.
template <class Work>
void inThreads(Work aWork) {
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int number = 0; number < kThreads; ++number) threads.emplace_back(aWork, number);
  for (std::thread& thread : threads) thread.join();
}

umlmm::String text(std::string const& aText) { return umlmm::String(Kelm::toUtf16(aText)); }

/// A model with references into it. Every step may run in another thread than the one before.
class Shop {
 public:
  Shop() : fModel(umlmm::createNewModel()) {
    bind();
    fPackage = umlmm::Package::create(fModel);
    fPackage.setName(text(fName));
    for (int number = 0; number < kClasses; ++number) add(number);
  }

  void bind() {
    auto& cache = Kelm::ModelCache::instance();
    auto const guard = cache.guard();
    std::u16string const uri = cache.getNextAvailableModelUri(u"shop");
    cache.bindModel(uri, fModel);
    fName = umlmm::String::to_string(uri);
  }

  void add(int aNumber) {
    auto const one = umlmm::Class::create(fModel);
    fPackage.getPackagedElement().push_back(one);
    one.setName(text("c" + std::to_string(aNumber)));
    auto const attribute = umlmm::Property::create(fModel);
    one.getOwnedAttribute().push_back(attribute);
    attribute.setName(kShared);
    attribute.setType(one);
    if (!fClasses.empty()) umlmm::Generalization::create(fModel, one, fClasses.back());
    fClasses.push_back(one);
  }

  void ask() const {
    auto const& last = fClasses.back();
    EXPECT_EQ(last.allParents().size(), static_cast<int>(fClasses.size()) - 1);
    EXPECT_EQ(fPackage.getOwnedMember().size(), static_cast<int>(fClasses.size()));
    EXPECT_EQ(fPackage.allOwnedElements().size(), 3 * static_cast<int>(fClasses.size()) - 1);
    EXPECT_EQ(umlmm::instancesOf<umlmm::Property>(fModel).size(), static_cast<int>(fClasses.size()));
    EXPECT_EQ(umlmm::referencedBy(last).size(), 1);
    EXPECT_EQ(last.getOwnedAttribute().front().getQualifiedName().to_string(),
              fName + "::" + last.getName().to_string() + "::shared");
    EXPECT_EQ(umlmm::Comment::create(fModel).getBody().text(), u"") << "the one empty text";
  }

  void reflect() const {
    for (auto const* const property : umlmm::Class::MetaClass().get()->allProperties()) {
      void* const id = Kelm::DeviantRegistry::getId(const_cast<Kelm::NSInterface::PropertyIntf*>(property),
                                                    Kelm::metaDeviant(), true);
      EXPECT_EQ(Kelm::DeviantRegistry::getVariantInfo(id).first, property);
    }
    for (auto const& one : fClasses)
      EXPECT_EQ(Kelm::DeviantRegistry::getVariantInfo(
                    Kelm::DeviantRegistry::getId(one.get(), one.getDeviant(), false))
                    .first,
                one.get());
    EXPECT_EQ(Kelm::DeviantRegistry::getId(nullptr, fModel.getDeviant(), true),
              Kelm::DeviantRegistry::getId(nullptr, fModel.getDeviant(), true));
    for (int number = 100; number < 110; ++number)
      EXPECT_EQ(Kelm::Object(umlmm::AggregationKind(number)), Kelm::Object(umlmm::AggregationKind(number)));
    constexpr unsigned kExternalId = Kelm::NSInterface::ClassObjectIntf::ExternalId;
    auto* const element = fPackage.get();
    element->setKernelEntry(fModel.getDeviant(), kExternalId, text(fName));
    EXPECT_EQ(umlmm::String(element->getKernelEntry(fModel.getDeviant(), kExternalId)).to_string(), fName);
  }

  void read() const {
    auto const factory = umlmm::Factory::createNewFactory(fModel);
    auto const made = umlmm::cast<umlmm::Class>(factory.createFromString(
        text("Class 'made' { superClass = [" + fName + "::c1]; isAbstract = true }")));
    EXPECT_EQ(made.getSuperClass().front().get(), fClasses[1].get());
    made.destroy();
    EXPECT_NE(failureOf([&] { factory.createFromString(text(fName)); }).find("cannot read '" + fName + "'"),
              std::string::npos);
  }

  void refuse() const {
    umlmm::Class const view(fClasses[0].get(), fModel.object().readOnlyDeviant());
    EXPECT_EQ(
        failureOf([&] { view.setName("other"); }).find("Assertion failed: The object cannot be changed"), 0U);
    bool const old = Kelm::DeviantAssertions::enableAssertions(false);
    EXPECT_TRUE(old) << "nobody else's switch";
    view.setIsAbstract(false);
    Kelm::DeviantAssertions::enableAssertions(old);
  }

  /// Destroys every second class, and keeps what was read from the last of them.
  void shrink() {
    for (std::size_t at = fClasses.size(); at > 0; at -= std::min<std::size_t>(at, 2)) {
      fMembers.push_back(fClasses[at - 1].getOwnedMember());
      fGone.push_back(fClasses[at - 1]);
      EXPECT_EQ(fMembers.back().size(), 1);
      auto const parents = fClasses[at - 1].allParents();
      fClasses[at - 1].destroy();
      for (auto const& parent : parents.values()) EXPECT_FALSE(parent.getName().empty());
    }
    std::erase_if(fClasses, [](umlmm::Class const& aClass) { return !aClass.isvalid(); });
    EXPECT_EQ(fClasses.size(), static_cast<std::size_t>(kClasses / 2));
    EXPECT_NE(failureOf([&] { fMembers.back().size(); }).find(Kelm::words::kNotInVariant), std::string::npos);
  }

  void close() { fModel.object().close(); }

 private:
  std::string fName;
  Kelm::Model fModel;
  umlmm::Package fPackage;
  std::vector<umlmm::Class> fClasses;
  std::vector<umlmm::Class> fGone;
  std::vector<Kelm::ImmutableSequence<umlmm::NamedElement>> fMembers;
};

constexpr auto kSteps = {+[](Shop& aShop) { aShop.ask(); },    +[](Shop& aShop) { aShop.reflect(); },
                         +[](Shop& aShop) { aShop.read(); },   +[](Shop& aShop) { aShop.refuse(); },
                         +[](Shop& aShop) { aShop.shrink(); }, +[](Shop& aShop) { aShop.close(); }};

TEST(Threads, ModelsOfTheirOwnAreIndependent) {
  inThreads([](int) {
    for (int round = 0; round < 30; ++round) {
      Shop shop;
      for (auto const step : kSteps) step(shop);
    }
  });
}

TEST(Threads, AModelGoesFromThreadToThread) {
  constexpr int kModels = 3 * kThreads;
  for (int round = 0; round < 10; ++round) {
    std::deque<std::optional<Shop>> shops(kModels);
    auto const forOwn = [&](int aTurn, auto aWork) {
      // Each turn every thread has other models than before, and those that made them are gone.
      inThreads([&](int aNumber) {
        for (int at = 0; at < kModels; ++at)
          if ((at + aTurn) % kThreads == aNumber) aWork(shops[static_cast<std::size_t>(at)]);
      });
    };
    forOwn(0, [](std::optional<Shop>& aShop) { aShop.emplace(); });
    int turn = 0;
    for (auto const step : kSteps) forOwn(++turn, [step](std::optional<Shop>& aShop) { step(*aShop); });
    forOwn(++turn, [](std::optional<Shop>& aShop) { aShop.reset(); });
  }
}

TEST(Threads, EachHasItsOwnMessageAndSwitch) {
  std::atomic<int> ready = 0;
  inThreads([&](int aNumber) {
    std::string const own = "of thread " + std::to_string(aNumber);
    EXPECT_TRUE(Kelm::DeviantAssertions::enableAssertions(aNumber % 2 == 0));
    auto const reporter = Kelm::Asserter::MakeAlways<Kelm::Exception>("%s", own.c_str());
    for (++ready; ready < kThreads;) std::this_thread::yield();
    EXPECT_EQ(failureOf([&] { reporter.handle("file", 1, ""); }),
              "Assertion failed: " + own + " at file:1: ");
    EXPECT_EQ(Kelm::DeviantAssertions::sAssertionsEnabled, aNumber % 2 == 0);
  });
  EXPECT_TRUE(Kelm::DeviantAssertions::sAssertionsEnabled);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
std::size_t pagesInUse() {
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  return pages;
}

TEST(Threads, MemoryOutlivesItsThreadAndServesTheNext) {
  constexpr int kElements = 5000;
  auto const makeAndLeave = [](Kelm::Model const& aModel) {
    std::thread([&] {
      for (int number = 0; number < kElements; ++number) umlmm::Class::create(aModel).setName("left behind");
    }).join();
    EXPECT_EQ(umlmm::instancesOf<umlmm::Class>(aModel).front().getName().text(), u"left behind");
    aModel.object().close();
  };
  for (int round = 0; round < 5; ++round) makeAndLeave(umlmm::createNewModel());
  std::size_t const before = pagesInUse();
  constexpr int kRounds = 60;
  for (int round = 0; round < kRounds; ++round) makeAndLeave(umlmm::createNewModel());
  // All rounds together make some seventy megabytes.
  EXPECT_LE((pagesInUse() - std::min(before, pagesInUse())) * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)),
            std::size_t{16} << 20);
}
#endif

}  // namespace
