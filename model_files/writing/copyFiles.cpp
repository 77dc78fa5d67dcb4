#include <unordered_map>

#include "kelm/ModelElementIntf.h"
#include "model_files/dialect/values.h"
#include "model_files/files.h"
#include "model_files/store/ModelFiles.h"
#include "model_files/writing/readAgain.h"

namespace umlmm::files {

namespace {

/// The elements of a model, each with the one at the same place of its copy. What is gone from the model has
/// none, and stands for itself: it is gone from the copy as well.
class Copies {
 public:
  Copies(Kelm::Model const& aFrom, Kelm::Model const& aTo) {
    pair(rootsOf(aFrom), rootsOf(aTo));
    while (!fOpen.empty()) {
      auto const [from, to] = fOpen.back();
      fOpen.pop_back();
      pair(partsOf(*from, aFrom), partsOf(*to, aTo));
    }
  }
  void replace(ElementPtr& aElement) const {
    if (auto const found = fCopies.find(aElement.get()); found != fCopies.end())
      aElement.reset(found->second);
  }

 private:
  using Elements = std::vector<Element*>;

  static Elements rootsOf(Kelm::Model const& aModel) {
    Elements roots;
    if (auto const* const all = aModel.object().roots())
      for (Element* const root : *all)
        if (root != nullptr) roots.push_back(root);
    return roots;
  }
  static Elements partsOf(Element const& aElement, Kelm::Model const& aModel) {
    Feature const& parts = *Metamodel::instance().metaclassOf(aElement).feature("ownedElement");
    return elementsOf(aElement, parts, aModel.getDeviant());
  }
  void pair(Elements const& aFrom, Elements const& aTo) {
    if (aFrom.size() != aTo.size()) throw Error("The other model is no copy of this one.");
    for (std::size_t at = 0; at < aFrom.size(); ++at) {
      fCopies.emplace(aFrom[at], aTo[at]);
      fOpen.emplace_back(aFrom[at], aTo[at]);
    }
  }

  std::unordered_map<Element const*, Element*> fCopies;
  std::vector<std::pair<Element*, Element*>> fOpen;
};

/// What was changed of stereotypes and not saved.
void copyChanges(ModelFiles const& aFrom, ModelFiles& aTo, Copies const& aCopies) {
  for (Application row : aFrom.fAdded) {
    row.fName = aTo.fFiles[row.fSpot.fFile].fDecoded.emplace_back(row.fName);
    aCopies.replace(row.fElement);
    aTo.fApplicationCount = row.fNumber;
    aTo.add(row, {});
  }
  aTo.fApplicationCount = aFrom.fApplicationCount;
  aTo.fChanges = aFrom.fChanges;
}

}  // namespace

void copyFiles(Kelm::Model const& aFrom, Kelm::Model const& aTo) {
  ModelFiles const& from = ModelFiles::of(aFrom);
  Copies const copies(aFrom, aTo);
  // The texts are read anew, and what was made of them stands in the same order as it did.
  auto const place = [&](auto& aRows, auto const& aOwn) {
    if (aRows.size() != aOwn.size()) throw Error("A text was not read as before.");
    for (std::size_t at = 0; at < aRows.size(); ++at) {
      aRows[at].fElement = aOwn[at].fElement;
      if (aRows[at].fElement != nullptr) copies.replace(aRows[at].fElement);
    }
  };
  Kelm::Model const read = readAgain(from);
  ModelFiles& known = ModelFiles::of(read);
  auto files = std::make_unique<ModelFiles>();
  std::unordered_map<Element const*, Element*> ofRead;
  for (std::size_t file = 0; file < known.fFiles.size(); ++file) {
    auto& made = known.fFiles[file].fMade;
    auto const old = made;
    place(made, from.fFiles[file].fMade);
    for (std::size_t at = 0; at < made.size(); ++at)
      ofRead.emplace(old[at].fElement.get(), made[at].fElement.get());
  }
  for (ModelFile& file : known.fFiles)
    file.fIds.forEach([&](std::string_view, Element*& aElement) { aElement = ofRead.at(aElement); });
  place(known.fKept, from.fKept);
  place(known.fDangling, from.fDangling);
  place(known.fApplications, from.fApplications);
  for (std::size_t at = 0; at < from.fApplications.size(); ++at)
    known.fApplications[at].fNumber = from.fApplications[at].fNumber;
  files->fFiles = std::move(known.fFiles);
  files->fKept = std::move(known.fKept);
  files->fDangling = std::move(known.fDangling);
  files->fApplications = std::move(known.fApplications);
  copyChanges(from, *files, copies);
  files->fReport = from.fReport;
  files->fPlaces = from.fPlaces;
  for (auto const& [name, standIn] : from.fStandIns) {
    StandIn copy = standIn;
    copies.replace(copy.fElement);
    files->fStandIns.emplace(name, std::move(copy));
  }
  bool const isUnchanged = aFrom.object().revision() == from.fRevision;
  files->fRevision = isUnchanged ? aTo.object().revision() : ~std::uint64_t{0};
  ModelFiles::attach(aTo, std::move(files));
}

}  // namespace umlmm::files
