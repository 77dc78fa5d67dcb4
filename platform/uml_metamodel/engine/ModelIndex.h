#pragma once

#include <algorithm>
#include <array>
#include <memory>
#include <unordered_map>
#include <vector>

#include "engine/slots.h"

namespace umlmm::engine {

/// What a model knows about its elements beyond their own slots. All of it is made when first asked for, by
/// one walk over the model, and kept up to date from then on; a model that nobody asks pays nothing.
///
/// - References through features without a far end, by value: who refers to an element.
/// - Elements by metaclass, in order of creation.
class ModelIndex final : public Kelm::ModelCompanion {
 public:
  struct Reference {
    Element* fOwner;
    FeatureIndex fFeature;

    friend bool operator==(Reference const&, Reference const&) = default;
  };

  /// The index of a model, made empty if there is none.
  static ModelIndex& of(Kelm::ModelObject& aModel);
  static ModelIndex* find(Kelm::ModelObject const& aModel) noexcept {
    return static_cast<ModelIndex*>(aModel.companion());
  }

  ~ModelIndex() override;

  // Hooks of the engine; cheap while the index in question was never asked for.
  static void noteReference(Element& aOwner, Feature const& aRoot, Element& aValue) {
    if (ModelIndex* const index = find(*aOwner.fModel); index != nullptr && index->fHasReferences)
        [[unlikely]]
      index->addReference(aOwner, indexOf(aRoot), aValue);
  }
  static void forgetReference(Element& aOwner, Feature const& aRoot, Element& aValue) {
    if (ModelIndex* const index = find(*aOwner.fModel); index != nullptr && index->fHasReferences)
        [[unlikely]]
      index->removeReference({&aOwner, indexOf(aRoot)}, aValue);
  }
  static void noteCreated(Element& aElement) {
    if (ModelIndex* const index = find(*aElement.fModel); index != nullptr && index->fHasExtents) [[unlikely]]
      index->addToExtent(aElement);
  }
  static void noteGone(Element& aElement) {
    if (ModelIndex* const index = find(*aElement.fModel); index != nullptr && index->fHasExtents) [[unlikely]]
      index->removeFromExtent(aElement);
  }

  /// References to an element through features without a far end. Takes a copy: callers change links.
  std::vector<Reference> referencesTo(Element const& aValue);
  /// Forgets the element as a value.
  void forgetValue(Element const& aValue);
  /// Living elements of a metaclass and those below it.
  std::vector<Element*> instancesOf(int aMetaclass);

 private:
  /// The references to one element: a list, and a table of places beside it once the list is long.
  class Referrers {
   public:
    void add(Reference const& aReference) {
      if (fPlaces != nullptr) (*fPlaces)[aReference] = fList.size();
      fList.push_back(aReference);
      if (fPlaces == nullptr && fList.size() > kLong) {
        fPlaces = std::make_unique<Places>();
        for (std::size_t place = 0; place < fList.size(); ++place) (*fPlaces)[fList[place]] = place;
      }
    }
    void remove(Reference const& aReference) {
      std::size_t place = fList.size();
      if (fPlaces != nullptr) {
        auto const found = fPlaces->find(aReference);
        if (found == fPlaces->end()) return;
        place = found->second;
        fPlaces->erase(found);
      } else {
        place = static_cast<std::size_t>(std::find(fList.begin(), fList.end(), aReference) - fList.begin());
        if (place == fList.size()) return;
      }
      if (place + 1 != fList.size()) {
        fList[place] = fList.back();
        if (fPlaces != nullptr) (*fPlaces)[fList[place]] = place;
      }
      fList.pop_back();
    }
    bool empty() const noexcept { return fList.empty(); }
    std::vector<Reference> const& list() const noexcept { return fList; }

   private:
    struct Hash {
      std::size_t operator()(Reference const& aReference) const noexcept {
        return std::hash<void*>()(aReference.fOwner) * 31 + aReference.fFeature;
      }
    };
    using Places = std::unordered_map<Reference, std::size_t, Hash>;
    static constexpr std::size_t kLong = 32;

    std::vector<Reference> fList;
    std::unique_ptr<Places> fPlaces;
  };

  explicit ModelIndex(Kelm::ModelObject& aModel) noexcept : fModel(aModel) {}
  void addReference(Element& aOwner, FeatureIndex aRoot, Element& aValue);
  void removeReference(Reference const& aReference, Element const& aValue);
  void addToExtent(Element& aElement);
  void removeFromExtent(Element& aElement);
  void buildReferences();
  void buildExtents();

  Kelm::ModelObject& fModel;
  bool fHasReferences = false;
  bool fHasExtents = false;
  std::unordered_map<Element const*, Referrers> fReferences;
  std::array<ElementList*, kMetaclassCount> fExtents{};
};

/// Calls `aVisit` with every living element of the model, owners before what they own.
template <class Visit>
void forEachElement(Kelm::ModelObject const& aModel, Visit aVisit);

/// Appends what the element contains, in the order of its features.
void collectContents(Element const& aElement, std::vector<Element*>& aOut);

template <class Visit>
void forEachElement(Kelm::ModelObject const& aModel, Visit aVisit) {
  std::vector<Element*> open;
  if (aModel.roots() == nullptr) return;
  for (Element* const root : *aModel.roots())
    if (root != nullptr) open.push_back(root);
  std::vector<Element*> parts;
  for (std::size_t next = 0; next < open.size(); ++next) {
    aVisit(*open[next]);
    parts.clear();
    collectContents(*open[next], parts);
    open.insert(open.end(), parts.begin(), parts.end());
  }
}

}  // namespace umlmm::engine
