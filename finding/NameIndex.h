#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "kelm/ClassObject.h"
#include "kelm/ModelObject.h"
#include "uml_metamodel/umlmm/ChangeObserver.h"

/// Elements by their names from the top level down.
namespace umlmm::finding {

/// The parts of owners by name. An owner's parts are taken up when it is first asked for one, each of them
/// once; from then on every change is followed, so that a look-up takes the same time in small and large
/// models. Names are looked up where elements are owned: what has a qualified name is found by it, and so is
/// what stands in owners that give none.
///
/// Belongs to its model and counts nothing in it. A change that finds no memory for the index empties it.
class NameIndex final : public Kelm::ModelCompanion, private ChangeObserver {
 public:
  using Element = Kelm::NSInterface::ClassObjectIntf;

  /// The index of a model, which is made when it is first asked for. Raises for a model that is closed.
  static NameIndex& of(Kelm::Model const& aModel);

  /// What the names of a path, parted by "::", lead to from an owner, or from the top level for null; null if
  /// there is no such element. Of parts with the same name the first is meant, in the order in which the
  /// owner lists them.
  Element* find(Element const* aOwner, std::string_view aPath);

 private:
  /// Texts of UTF-8, looked up without a copy.
  struct Hash : std::hash<std::string_view> {
    using is_transparent = void;
  };
  using Parts = std::unordered_multimap<std::string, Element*, Hash, std::equal_to<>>;
  struct Place {
    Element const* fOwner;
    Parts::iterator fAt;
  };

  explicit NameIndex(Kelm::Model const& aModel);
  void changed(ChangeSteps const& aSteps) noexcept override;

  Element* part(Element const* aOwner, std::string_view aName);
  Parts& partsOf(Element const* aOwner);
  template <class Visit>
  void forEachPart(Element const* aOwner, Visit aVisit) const;
  void add(Element const* aOwner, Parts& aParts, Element* aElement);
  /// Strikes an element out where it stood, as a part.
  void forget(Element const* aElement);
  /// The element has come, or is called otherwise now.
  void follow(Element* aElement);
  void drop(Element const* aOwner);

  Kelm::ModelObject& fModel;
  Kelm::Deviant fDeviant;
  std::unordered_map<Element const*, Parts> fParts;
  std::unordered_map<Element const*, Place> fPlaces;
};

}  // namespace umlmm::finding
