#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "TestModel.h"
#include "plain.h"

/// One graph built twice: in the metamodel and of plain structs. The shapes are templates over either.
namespace graphs {

class Metamodel {
 public:
  using Package = umlmm::Package;
  using Class = umlmm::Class;
  using Named = umlmm::NamedElement;

  Package package(std::u16string const& aName) { return named<umlmm::Package>(aName); }
  Class makeClass(std::u16string const& aName) { return named<umlmm::Class>(aName); }
  template <class Part>
  void put(Package const& aOwner, Part const& aPart) {
    aOwner.getPackagedElement().push_back(aPart);
  }
  Named addAttribute(Class const& aOwner, std::u16string const& aName) {
    auto const attribute = named<umlmm::Property>(aName);
    aOwner.getOwnedAttribute().push_back(attribute);
    return attribute;
  }
  void addGeneral(Class const& aSpecial, Class const& aGeneral) {
    umlmm::Generalization::create(fModel, aSpecial, aGeneral);
  }

 private:
  template <class X>
  X named(std::u16string const& aName) {
    X element = X::create(fModel);
    element.setName(umlmm::String(aName));
    return element;
  }

  TestModel fModel;
};

/// Structs as one writes them by hand for the same questions, walked in the order that the metamodel
/// promises. Answers hold counted pointers, as those of the metamodel do: what was found may be deleted
/// before the answer is.
class Structs {
 public:
  enum Kind : char { kPackage, kClass, kProperty, kGeneralization };
  struct Node {
    Kind fKind;
    bool fIsPrivate = false;
    int fCount = 1;
    unsigned fVisit = 0;
    Node* fOwner = nullptr;
    Node* fGeneral = nullptr;
    std::u16string fName;
    std::vector<Node*> fOwned = {};
    std::vector<Node*> fGeneralizations = {};
    std::vector<Node*> fRedefined = {};
  };
  using Package = Node*;
  using Class = Node*;
  using Named = Node*;
  using Answer = std::vector<plain::Counted<Node>>;

  Structs() = default;
  Structs(Structs const&) = delete;
  Structs& operator=(Structs const&) = delete;
  ~Structs() {
    for (Node* const node : fNodes) delete node;
  }

  Package package(std::u16string const& aName) { return add(kPackage, aName); }
  Class makeClass(std::u16string const& aName) { return add(kClass, aName); }
  void put(Node* aOwner, Node* aPart) {
    aPart->fOwner = aOwner;
    aOwner->fOwned.push_back(aPart);
  }
  Named addAttribute(Class aOwner, std::u16string const& aName) {
    Node* const attribute = add(kProperty, aName);
    put(aOwner, attribute);
    return attribute;
  }
  void addGeneral(Class aSpecial, Class aGeneral) {
    Node* const generalization = add(kGeneralization, {});
    generalization->fOwner = aSpecial;
    generalization->fGeneral = aGeneral;
    aSpecial->fGeneralizations.push_back(generalization);
  }

  // The same questions, as a walk over the structs answers them.

  /// The parts in order, then for each in order all of its own.
  static Answer allOwnedElements(Node* aNode) {
    Answer found;
    addAllOwned(aNode, found);
    return found;
  }
  static Answer members(Node* aNode) {
    Answer found;
    for (Node* const part : aNode->fOwned) found.emplace_back(part);
    return found;
  }
  /// The parents in order, then for each in order all of its own, each once.
  Answer allParents(Node* aNode) {
    Answer found;
    startWalk();
    addAllParents(aNode, found);
    return found;
  }
  /// What is not private and not redefined on the way, from the nearest parent upwards. For classes that are
  /// reached in one way only.
  Answer inheritedMembers(Node* aNode) {
    Answer found;
    startWalk();
    std::unordered_set<Node*> redefined;
    addInherited(aNode, redefined, found);
    return found;
  }
  static std::u16string qualifiedName(Node const* aNode) {
    std::vector<Node const*> path;
    std::size_t length = 0;
    for (; aNode != nullptr; aNode = aNode->fOwner) {
      path.push_back(aNode);
      length += aNode->fName.size() + 2;
    }
    std::u16string name;
    name.reserve(length);
    for (auto at = path.rbegin(); at != path.rend(); ++at) {
      if (!name.empty()) name += u"::";
      name += (*at)->fName;
    }
    return name;
  }

 private:
  Node* add(Kind aKind, std::u16string const& aName) {
    fNodes.push_back(new Node{.fKind = aKind, .fName = aName});
    return fNodes.back();
  }

  static void addAllOwned(Node* aNode, Answer& aOut) {
    for (Node* const part : aNode->fOwned) aOut.emplace_back(part);
    for (Node* const part : aNode->fGeneralizations) aOut.emplace_back(part);
    for (Node* const part : aNode->fOwned) addAllOwned(part, aOut);
  }

  // A walk has two marks of its own: of what it has listed, and of what it has followed.
  void startWalk() noexcept { fListed += 2; }
  bool list(Node* aNode) noexcept {
    if (aNode->fVisit >= fListed) return false;
    aNode->fVisit = fListed;
    return true;
  }
  bool follow(Node* aNode) noexcept {
    if (aNode->fVisit > fListed) return false;
    aNode->fVisit = fListed + 1;
    return true;
  }
  void addAllParents(Node* aNode, Answer& aOut) {
    for (Node const* const generalization : aNode->fGeneralizations)
      if (list(generalization->fGeneral)) aOut.emplace_back(generalization->fGeneral);
    for (Node const* const generalization : aNode->fGeneralizations)
      if (follow(generalization->fGeneral)) addAllParents(generalization->fGeneral, aOut);
  }
  void addInherited(Node* aNode, std::unordered_set<Node*>& aRedefined, Answer& aOut) {
    for (Node const* const part : aNode->fOwned)
      aRedefined.insert(part->fRedefined.begin(), part->fRedefined.end());
    for (Node const* const generalization : aNode->fGeneralizations) {
      Node* const general = generalization->fGeneral;
      for (Node* const part : general->fOwned)
        if (!part->fIsPrivate && list(part) && (aRedefined.empty() || !aRedefined.contains(part)))
          aOut.emplace_back(part);
      addInherited(general, aRedefined, aOut);
    }
  }

  std::vector<Node*> fNodes;
  unsigned fListed = 0;
};

inline std::u16string numbered(char16_t const* aName, int aNumber) {
  std::u16string name = aName;
  for (char const digit : std::to_string(aNumber)) name += static_cast<char16_t>(digit);
  return name;
}

/// Packages in packages, ten in each, with ten classes of eight attributes in every one.
template <class Graph>
struct Tree {
  Tree(Graph& aGraph, int aSize) {
    std::vector<typename Graph::Package> packages;
    for (int made = 0; made < aSize;) {
      auto const package = aGraph.package(numbered(u"package", made++));
      if (!packages.empty()) aGraph.put(packages[(packages.size() - 1) / 10], package);
      packages.push_back(package);
      fNamed.push_back(package);
      for (int count = 0; count < 10; ++count) {
        auto const owner = aGraph.makeClass(numbered(u"Class", made++));
        aGraph.put(package, owner);
        fNamed.push_back(owner);
        for (int attribute = 0; attribute < 8; ++attribute, ++made)
          fNamed.push_back(aGraph.addAttribute(owner, numbered(u"attribute", attribute)));
      }
    }
    fRoot = packages.front();
  }
  typename Graph::Package fRoot{};
  std::vector<typename Graph::Named> fNamed;
};

/// One package of classes.
template <class Graph>
typename Graph::Package wide(Graph& aGraph, int aSize) {
  auto const package = aGraph.package(u"package");
  for (int at = 0; at < aSize; ++at) aGraph.put(package, aGraph.makeClass(numbered(u"Class", at)));
  return package;
}

/// Classes of 98 attributes below each other: with each its generalization. The most special is the answer.
template <class Graph>
typename Graph::Class chain(Graph& aGraph, int aSize) {
  auto special = aGraph.makeClass(u"Class");
  for (int made = 100; made < aSize; made += 100) {
    auto const general = special;
    special = aGraph.makeClass(numbered(u"Class", made));
    aGraph.addGeneral(special, general);
    for (int attribute = 0; attribute < 98; ++attribute)
      aGraph.addAttribute(special, numbered(u"attribute", made + attribute));
  }
  return special;
}

/// Layers of ten classes, each with two generals in the layer above, whose ways meet again and again.
template <class Graph>
typename Graph::Class lattice(Graph& aGraph, int aSize) {
  constexpr int kWidth = 10;
  std::vector<typename Graph::Class> above;
  for (int made = 0; made < aSize || above.empty(); made += 3 * kWidth) {
    std::vector<typename Graph::Class> layer;
    for (int at = 0; at < kWidth; ++at) {
      layer.push_back(aGraph.makeClass(numbered(u"Class", made + at)));
      if (above.empty()) continue;
      aGraph.addGeneral(layer.back(), above[static_cast<std::size_t>(at)]);
      aGraph.addGeneral(layer.back(), above[static_cast<std::size_t>((at + 1) % kWidth)]);
    }
    above = layer;
  }
  return above.front();
}

}  // namespace graphs
