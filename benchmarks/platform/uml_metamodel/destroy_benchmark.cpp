// Destroying every second class of a model with all that it contains and with all references to it, against
// the same model of plain structs whose references know their way back.

#include <cstdint>
#include <string>
#include <vector>

#include "Stopwatch.h"
#include "TestModel.h"
#include "graphs.h"

namespace {

constexpr int kAttributes = 4;

/// Classes of one package; each specializes another one and has attributes: one of a type that all classes
/// use and that stays, the others of classes nearby. A comment goes with each class and annotates it and the
/// next.
template <class Model>
void fill(Model& aModel, int aSize) {
  auto const common = aModel.makeClass(u"Common");
  for (int at = 0; at < aSize; ++at) aModel.add(aModel.makeClass(graphs::numbered(u"Class", at)));
  auto const& classes = aModel.classes();
  auto const at = [&](int aPlace) { return classes[static_cast<std::size_t>(aPlace % aSize)]; };
  for (int place = 0; place < aSize; ++place) {
    for (int number = 0; number < kAttributes; ++number)
      aModel.addAttribute(at(place), graphs::numbered(u"attribute", number),
                          number == 0 ? common : at(place + number));
    aModel.addGeneral(at(place), at(place / 2));
    aModel.addComment(at(place), at(place + 1));
  }
}

class Metamodel {
 public:
  umlmm::Class makeClass(std::u16string const& aName) const {
    auto const made = umlmm::Class::create(fModel);
    made.setName(umlmm::String(aName));
    return made;
  }
  void add(umlmm::Class const& aClass) {
    fPackage.getPackagedElement().push_back(aClass);
    fClasses.push_back(aClass);
  }
  std::vector<umlmm::Class>& classes() noexcept { return fClasses; }
  void addAttribute(umlmm::Class const& aOwner, std::u16string const& aName,
                    umlmm::Class const& aType) const {
    auto const attribute = umlmm::Property::create(fModel);
    attribute.setName(umlmm::String(aName));
    attribute.setType(aType);
    aOwner.getOwnedAttribute().push_back(attribute);
  }
  void addGeneral(umlmm::Class const& aSpecial, umlmm::Class const& aGeneral) const {
    umlmm::Generalization::create(fModel, aSpecial, aGeneral);
  }
  void addComment(umlmm::Class const& aFirst, umlmm::Class const& aSecond) const {
    auto const comment = umlmm::Comment::create(fModel);
    comment.getAnnotatedElement().push_back(aFirst);
    comment.getAnnotatedElement().push_back(aSecond);
    fPackage.getOwnedComment().push_back(comment);
  }
  static void destroy(umlmm::Class const& aClass) { aClass.destroy(); }

 private:
  TestModel fModel;
  umlmm::Package fPackage = umlmm::Package::create(fModel);
  std::vector<umlmm::Class> fClasses;
};

/// Elements know their place in the list that owns them, references theirs among those to the same element.
class Structs {
 public:
  struct Node;
  struct Link {
    Node* fTarget = nullptr;
    std::size_t fPlace = 0;
  };
  struct Node {
    explicit Node(std::u16string const& aName) : fName(aName) {}

    std::u16string fName;
    Node* fOwner = nullptr;
    std::size_t fPlace = 0;
    /// Null where a part was taken out, so that the places of the others stay.
    std::vector<Node*> fParts;
    /// The type of an attribute, the general end of a generalization, what a comment annotates.
    std::vector<Link> fLinks;
    struct Referrer {
      Node* fFrom;
      std::size_t fLink;
    };
    std::vector<Referrer> fReferrers;
  };

  Structs() = default;
  Structs(Structs const&) = delete;
  Structs& operator=(Structs const&) = delete;
  ~Structs() {
    deleteAll(&fPackage);
    delete fCommon;
  }

  Node* makeClass(std::u16string const& aName) {
    auto* const made = new Node(aName);
    if (fCommon == nullptr) fCommon = made;
    return made;
  }
  void add(Node* aClass) {
    put(&fPackage, aClass);
    fClasses.push_back(aClass);
  }
  std::vector<Node*>& classes() noexcept { return fClasses; }
  static void addAttribute(Node* aOwner, std::u16string const& aName, Node* aType) {
    auto* const attribute = new Node(aName);
    refer(attribute, aType);
    put(aOwner, attribute);
  }
  static void addGeneral(Node* aSpecial, Node* aGeneral) {
    auto* const generalization = new Node({});
    refer(generalization, aGeneral);
    put(aSpecial, generalization);
  }
  void addComment(Node* aFirst, Node* aSecond) {
    auto* const comment = new Node({});
    refer(comment, aFirst);
    refer(comment, aSecond);
    put(&fPackage, comment);
  }
  static void destroy(Node* aNode) {
    aNode->fOwner->fParts[aNode->fPlace] = nullptr;
    remove(aNode);
  }

 private:
  static void put(Node* aOwner, Node* aPart) {
    aPart->fOwner = aOwner;
    aPart->fPlace = aOwner->fParts.size();
    aOwner->fParts.push_back(aPart);
  }
  static void refer(Node* aFrom, Node* aTarget) {
    aFrom->fLinks.push_back({aTarget, aTarget->fReferrers.size()});
    aTarget->fReferrers.push_back({aFrom, aFrom->fLinks.size() - 1});
  }
  /// Deletes a node with its parts; no link leads to them or from them afterwards.
  static void remove(Node* aNode) {
    for (Node* const part : aNode->fParts)
      if (part != nullptr) remove(part);
    for (Link const& link : aNode->fLinks) {
      if (link.fTarget == nullptr) continue;
      auto& back = link.fTarget->fReferrers;
      back[link.fPlace] = back.back();
      back[link.fPlace].fFrom->fLinks[back[link.fPlace].fLink].fPlace = link.fPlace;
      back.pop_back();
    }
    for (Node::Referrer const& referrer : aNode->fReferrers)
      referrer.fFrom->fLinks[referrer.fLink].fTarget = nullptr;
    delete aNode;
  }
  static void deleteAll(Node* aNode) {
    for (Node* const part : aNode->fParts) {
      if (part == nullptr) continue;
      deleteAll(part);
      delete part;
    }
  }

  Node fPackage{u"package"};
  Node* fCommon = nullptr;
  std::vector<Node*> fClasses;
};

/// Times of one class.
template <class Model>
void destroyEverySecond(benchmark::State& aState) {
  auto const size = static_cast<std::size_t>(aState.range(0));
  for (auto _ : aState) {
    Model model;
    fill(model, static_cast<int>(size));
    auto& classes = model.classes();
    Stopwatch const watch(aState);
    for (std::size_t place = 0; place < size; place += 2) {
      Model::destroy(classes[place]);
      // A handle would keep the memory.
      classes[place] = {};
    }
  }
  aState.SetItemsProcessed(aState.iterations() * static_cast<std::int64_t>(size / 2));
}

void destroyClasses(benchmark::State& aState) { destroyEverySecond<Metamodel>(aState); }
void destroyClassesPlain(benchmark::State& aState) { destroyEverySecond<Structs>(aState); }

void sizes(benchmark::internal::Benchmark* aBenchmark) {
  aBenchmark->Arg(1'000)->Arg(10'000)->Arg(100'000)->UseManualTime()->Iterations(2);
}

BENCHMARK(destroyClasses)->Apply(sizes);
BENCHMARK(destroyClassesPlain)->Apply(sizes);

}  // namespace
