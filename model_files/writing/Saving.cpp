#include <algorithm>
#include <deque>
#include <filesystem>
#include <numeric>
#include <optional>

#include "kelm/ModelElementIntf.h"
#include "model_files/store/ModelFiles.h"
#include "model_files/text/writeFile.h"
#include "model_files/writing/ApplicationCheck.h"
#include "model_files/writing/Comparison.h"
#include "model_files/writing/Patcher.h"
#include "model_files/writing/WholeFile.h"
#include "model_files/writing/readAgain.h"
#include "uml_metamodel/umlmm/MetamodelExtension.h"
#include "uml_metamodel/umlmm/models.h"

namespace umlmm::files {

namespace {

void pairStandIns(Comparison& aComparison, ModelFiles const& aFiles, ModelFiles const& aRead) {
  for (auto const& [name, standIn] : aFiles.fStandIns)
    if (auto const found = aRead.fStandIns.find(name); found != aRead.fStandIns.end())
      aComparison.pair(*standIn.fElement, *found->second.fElement);
}

bool isChanged(Element const& aStandIn, std::string_view aName, Kelm::Deviant const& aDeviant,
               Element const& aFresh, Kelm::Deviant const& aFreshDeviant) {
  if (containerOf(aStandIn, aDeviant) != nullptr) return true;
  for (Feature const* const feature : Metamodel::instance().metaclassOf(aStandIn).fOrder) {
    if (!isWritten(*feature)) continue;
    if (feature->fKind == Kind::Reference) {
      // Others tell of the links that have another end.
      bool const isOwn = feature->fComposite || feature->fOpposite == nullptr;
      if (isOwn && !elementsOf(aStandIn, *feature, aDeviant).empty()) return true;
      continue;
    }
    auto expected = textsOf(aFresh, *feature, aFreshDeviant);
    if (feature->fName == "name") expected = {std::string(aName)};
    if (textsOf(aStandIn, *feature, aDeviant) != expected) return true;
  }
  return false;
}

/// Primitive types of the standard that somebody has changed are the model's own from now on, as no file of
/// it could tell of the change.
void releaseChangedStandIns(Kelm::Model const& aModel, ModelFiles& aFiles) {
  if (aFiles.fStandIns.empty()) return;
  Kelm::Model const fresh = createNewModel();
  Metaclass const& metaclass = *Metamodel::instance().metaclass("PrimitiveType");
  Kelm::ClassObject const made =
      createElement(fresh, Kelm::ImmutableClass(metaclass.fClass, Kelm::metaDeviant()));
  std::erase_if(aFiles.fStandIns, [&](auto const& aNamed) {
    Element const& standIn = *aNamed.second.fElement;
    return standIn.deviant_isValid(aModel.getDeviant()) &&
           isChanged(standIn, aNamed.first, aModel.getDeviant(), *made.get(), fresh.getDeviant());
  });
}

/// One saving: what files hold now, what they shall hold, and the model's knowledge of them afterwards.
class Saving {
 public:
  Saving(Kelm::Model const& aModel, ModelFiles& aFiles) : fModel(aModel), fFiles(aFiles) {
    if (!isUnchanged()) releaseChangedStandIns(aModel, aFiles);
  }

  /// The one file of a model that had none.
  std::string whole(Dialect const& aDialect) {
    WholeFile file(fModel, aDialect);
    std::string text = file.write(fOrders.emplace_back());
    return text;
  }

  /// Whether the files are what the model is.
  bool isUnchanged() const {
    return fModel.object().revision() == fFiles.fRevision && fFiles.fChanges.empty();
  }
  /// The new texts, by file.
  std::vector<std::string> texts() {
    std::vector<std::string> texts;
    Kelm::Model const read = readAgain(fFiles);
    ModelFiles const& readFiles = ModelFiles::of(read);
    Comparison comparison(fModel, read);
    for (std::size_t file = 0; file < fFiles.fFiles.size(); ++file)
      pairMade(comparison, fFiles.fFiles[file].fMade, readFiles.fFiles[file].fMade);
    pairStandIns(comparison, fFiles, readFiles);
    auto const moved = movedElements();
    std::vector<Tags::NewIds> renewed(fFiles.fFiles.size());
    while (!write(readFiles, comparison, moved, renewed, texts)) {
    }
    return texts;
  }

  /// The same, once they would be read as the model is. `aLook` sees them before.
  template <class Look>
  std::vector<std::string> checkedTexts(Look aLook) {
    for (;;) {
      auto all = texts();
      aLook(all);
      if (check(all)) return all;
    }
  }

  /// Reads the new texts and holds them against the model; raises Error for one that would not be read as it
  /// is. False if more has to be written than what has changed, as the text told otherwise in a second place,
  /// and all texts have to be made again.
  bool check(std::vector<std::string> const& aTexts) {
    if (fOrders.empty()) return true;
    for (std::size_t file = 0; file < fOrders.size(); ++file)
      if (fOrders[file].empty())
        throw Error(
            fFiles.fFiles[file].fText.name() +
            " was not saved: all its elements are gone, and a file without any is no model; leave one "
            "in it, or save the model to a path");
    fRead = readAgain(fFiles, aTexts);
    ModelFiles& readFiles = ModelFiles::of(fRead);
    Comparison comparison(fModel, fRead);
    for (std::size_t file = 0; file < aTexts.size(); ++file)
      pairOrder(comparison, file, readFiles.fFiles[file]);
    checkNoneIsLost(comparison);
    pairStandIns(comparison, fFiles, readFiles);
    if (!verify(comparison)) return false;
    // What stood with elements of the new reading stands with those of the model.
    auto const toModel = [&](ElementPtr& aElement) {
      if (aElement != nullptr) aElement.reset(comparison.toModel(aElement.get()));
    };
    for (ModelFile& file : readFiles.fFiles) {
      for (Made& made : file.fMade) toModel(made.fElement);
      file.fIds.forEach(
          [&](std::string_view, Element*& aElement) { aElement = comparison.toModel(aElement); });
    }
    for (Kept& kept : readFiles.fKept) toModel(kept.fElement);
    for (Dangling& dangling : readFiles.fDangling) toModel(dangling.fElement);
    for (Application& application : readFiles.fApplications) toModel(application.fElement);
    ApplicationCheck applications(fModel, fFiles, readFiles);
    for (std::uint32_t file = 0; file < fApplications.size(); ++file)
      applications.check(file, fApplications[file]);
    return true;
  }

  /// The new texts, which were checked, are the model's files from now on.
  void adopt() {
    if (fOrders.empty()) return;
    ModelFiles& readFiles = ModelFiles::of(fRead);
    fFiles.fFiles = std::move(readFiles.fFiles);
    fFiles.fKept = std::move(readFiles.fKept);
    fFiles.fDangling = std::move(readFiles.fDangling);
    fFiles.fApplications = std::move(readFiles.fApplications);
    fFiles.fAdded.clear();
    fFiles.fChanges.clear();
    if (fFiles.fReport.fFiles.empty()) fFiles.fReport = std::move(readFiles.fReport);
    fFiles.forget();
    fFiles.fRevision = fModel.object().revision();
  }

 private:
  /// Writes all texts; false if more elements got another id than were known, and all has to be written
  /// again.
  bool write(ModelFiles const& aRead, Comparison& aComparison, Patcher::Elements const& aMoved,
             std::vector<Tags::NewIds>& aRenewed, std::vector<std::string>& aTexts) {
    std::deque<Patcher> patchers;
    for (std::uint32_t file = 0; file < fFiles.fFiles.size(); ++file) {
      Patcher& patcher = patchers.emplace_back(fModel, fFiles, file, aRead, aComparison, aMoved, fForced);
      patcher.fIdIn = [&](std::size_t aFile, Element& aElement) { return patchers[aFile].idOf(aElement); };
      patcher.renew(aRenewed[file]);
    }
    aTexts.resize(patchers.size());
    fOrders.resize(patchers.size());
    fApplications.resize(patchers.size());
    // Writing may name elements that have no id in their text yet.
    auto const newIds = [&] {
      return std::accumulate(patchers.begin(), patchers.end(), std::size_t{0},
                             [](std::size_t aSum, Patcher const& aOne) { return aSum + aOne.newIds(); });
    };
    for (std::optional<std::size_t> known; known != newIds();) {
      known = newIds();
      for (std::size_t file = 0; file < patchers.size(); ++file)
        aTexts[file] = patchers[file].write(fOrders[file]);
    }
    bool isDone = true;
    for (std::size_t file = 0; file < patchers.size(); ++file) {
      fApplications[file] = patchers[file].applications();
      Tags::NewIds renewed = patchers[file].renewed();
      isDone &= renewed.size() == aRenewed[file].size();
      aRenewed[file] = std::move(renewed);
    }
    return isDone;
  }

  /// Those that belong to another file than their tags stand in.
  Patcher::Elements movedElements() const {
    Patcher::Elements moved;
    if (fFiles.fFiles.size() == 1) return moved;
    for (std::size_t file = 0; file < fFiles.fFiles.size(); ++file)
      for (Made const& made : fFiles.fFiles[file].fMade) {
        bool const isThere = made.fElement->deviant_isValid(fModel.getDeviant());
        if (isThere && fFiles.fileOf(*made.fElement, fModel.getDeviant()) != static_cast<int>(file))
          moved.insert(made.fElement.get());
      }
    return moved;
  }

  static void pairMade(Comparison& aComparison, std::vector<Made> const& aMade,
                       std::vector<Made> const& aRead) {
    for (std::size_t at = 0; at < aMade.size() && at < aRead.size(); ++at)
      aComparison.pair(*aMade[at].fElement, *aRead[at].fElement);
  }

  void pairOrder(Comparison& aComparison, std::size_t aFile, ModelFile const& aRead) const {
    std::vector<Element*> const& order = fOrders[aFile];
    if (order.size() != aRead.fMade.size())
      throw Error(aRead.fText.name() + " was not saved: its new text has " +
                  std::to_string(aRead.fMade.size()) + " elements where the model has " +
                  std::to_string(order.size()));
    for (std::size_t at = 0; at < order.size(); ++at) {
      if (aComparison.toRead(order[at]) != nullptr)
        throw Error(aRead.fText.name() + " was not saved: its new text would have " +
                    pathOf(*order[at], fModel.getDeviant()) + " twice");
      aComparison.pair(*order[at], *aRead.fMade[at].fElement);
    }
  }

  void checkNoneIsLost(Comparison const& aComparison) const {
    for (ModelFile const& file : fFiles.fFiles)
      for (Made const& made : file.fMade)
        if (aComparison.isThere(*made.fElement) && aComparison.toRead(made.fElement.get()) == nullptr)
          throw Error(file.fText.name() + " was not saved: its new text would lack " +
                      pathOf(*made.fElement, fModel.getDeviant()));
  }

  /// A text that would not be read as the model is must not be written. False if there is something that can
  /// be forced.
  bool verify(Comparison& aComparison) {
    std::size_t const known = fForced.size();
    for (auto const& order : fOrders)
      for (Element* const element : order)
        for (Feature const* const feature : Metamodel::instance().metaclassOf(*element).fOrder) {
          Element& read = *aComparison.toRead(element);
          if (!isWritten(*feature) || aComparison.isSame(*element, read, *feature)) continue;
          // The end of a link that the text leaves to the other end comes in the order of the others.
          bool const isEnd = feature->fOpposite != nullptr && feature->fMany && !feature->fOrdered;
          if (isEnd && aComparison.isSameSet(*element, read, *feature)) continue;
          if (!force(aComparison, *element, *feature) && fForced.size() == known) refuse(*element, *feature);
        }
    return fForced.size() == known;
  }

  /// Has both ends of links written that the new text tells otherwise than the model; false if they were.
  bool force(Comparison const& aComparison, Element& aElement, Feature const& aFeature) {
    bool isNew = fForced.emplace(&aElement, &aFeature).second;
    if (aFeature.fKind != Kind::Reference || aFeature.fOpposite == nullptr) return isNew;
    auto ends = elementsOf(aElement, aFeature, fModel.getDeviant());
    for (Element const* const end :
         elementsOf(*aComparison.toRead(&aElement), aFeature, aComparison.readDeviant()))
      ends.push_back(aComparison.toModel(end));
    for (Element const* const end : ends)
      if (end != nullptr &&
          Metamodel::instance().metaclassOf(*end).feature(aFeature.fOpposite->fName) != nullptr)
        isNew |=
            fForced.emplace(end, Metamodel::instance().metaclassOf(*end).feature(aFeature.fOpposite->fName))
                .second;
    return isNew;
  }

  [[noreturn]] void refuse(Element const& aElement, Feature const& aFeature) const {
    Kelm::Deviant const deviant = fModel.getDeviant();
    auto const tag = fFiles.tagOf(aElement);
    Place const place = tag ? fFiles.place(*tag) : Place{};
    std::string text =
        "The model was not saved: " + std::string(Metamodel::instance().metaclassOf(aElement).fName) + ' ' +
        pathOf(aElement, deviant) + " can't be written with its " + std::string(aFeature.fName);
    if (tag) ((text += " (") += place.fFile + ':' + std::to_string(place.fLine)) += ')';
    for (Dangling const* const dangling : fFiles.danglingOf(aElement))
      if (dangling->fFeature == &aFeature)
        throw Error(text + ": \"" + dangling->fAddress +
                    "\" led nowhere when it was read, and would lead to an element now; set what is meant");
    std::string others;
    if (aFeature.fKind == Kind::Reference)
      for (Element const* const other : elementsOf(aElement, aFeature, deviant))
        (others += others.empty() ? "" : ", ") += pathOf(*other, deviant);
    if (!others.empty()) (text += ", which the file tells otherwise at ") += others;
    throw Error(text);
  }

  Kelm::Model fModel;
  ModelFiles& fFiles;
  /// The model of the new texts.
  Kelm::Model fRead;
  /// Places that the text tells otherwise than the model, unless they are written.
  Patcher::Places fForced;
  /// Elements of each file in the order of their tags.
  std::vector<std::vector<Element*>> fOrders;
  /// The numbers of its applications in the order of theirs.
  std::vector<std::vector<std::uint32_t>> fApplications;
};

/// A file without an element would be no model that anybody can read.
void checkHasRoot(Kelm::Model const& aModel, std::string const& aPath) {
  ModelFiles const* const files = ModelFiles::find(aModel);
  if (auto const* const roots = aModel.object().roots())
    for (Element* const root : *roots)
      if (root != nullptr && (files == nullptr || files->standIn(*root) == nullptr)) return;
  throw Error(aPath + " was not saved: the model is closed or has no elements");
}

}  // namespace

std::string textOf(Kelm::Model const& aModel, SaveOptions const& aOptions, std::string_view aFile) {
  ModelFiles* const own = ModelFiles::find(aModel);
  if (own == nullptr || !aOptions.fDialect.empty()) {
    if (own != nullptr) releaseChangedStandIns(aModel, *own);
    std::vector<Element*> order;
    return WholeFile(aModel, dialectCalled(aOptions.fDialect)).write(order);
  }
  ModelFile const* const file = aFile.empty() ? &own->fFiles.front() : own->fileCalled(aFile);
  if (file == nullptr) throw Error("The model has no file " + std::string(aFile));
  Saving saving(aModel, *own);
  if (saving.isUnchanged()) return file->fText.encoded(file->fText.utf8());
  auto const texts = saving.checkedTexts([](auto const&) {});
  auto const isIt = [&](ModelFile const& aOne) { return &aOne == file; };
  auto const number = std::ranges::find_if(own->fFiles, isIt) - own->fFiles.begin();
  return file->fText.encoded(texts[static_cast<std::size_t>(number)]);
}

void save(Kelm::Model const& aModel, SaveOptions const& aOptions) {
  ModelFiles& files = ModelFiles::of(aModel);
  if (!aOptions.fDialect.empty())
    throw Error("A model is saved in another dialect to a path of its own; name one");
  Saving saving(aModel, files);
  if (saving.isUnchanged()) return;
  checkHasRoot(aModel, files.fFiles.front().fText.name());
  std::vector<std::string> bytes;
  auto const texts = saving.checkedTexts([&](std::vector<std::string> const& aTexts) {
    bytes.clear();
    for (std::size_t at = 0; at < aTexts.size(); ++at) {
      ModelFile const& file = files.fFiles[at];
      SourceText const& text = file.fText;
      bytes.push_back(aTexts[at] == text.utf8() ? std::string() : text.encoded(aTexts[at]));
      if (bytes.back().empty()) continue;
      if (file.fPath.empty())
        throw Error(text.name() +
                    " lies nowhere: it was given as bytes, or the model is a copy; save to a path");
      if (!aOptions.fForce && stampOf(file.fPath) != file.fStamp)
        throw Error(text.name() + " has changed on disk since it was read; save with force to write over it");
    }
  });
  for (std::size_t at = 0; at < texts.size(); ++at)
    if (!bytes[at].empty()) writeFile(files.fFiles[at].fPath, bytes[at]);
  std::vector<std::string> paths;
  paths.reserve(files.fFiles.size());
  for (ModelFile& file : files.fFiles) paths.push_back(std::move(file.fPath));
  saving.adopt();
  for (std::size_t at = 0; at < paths.size(); ++at) {
    ModelFile& file = files.fFiles[at];
    file.fPath = std::move(paths[at]);
    if (!file.fPath.empty()) file.fStamp = stampOf(file.fPath);
  }
}

void save(Kelm::Model const& aModel, std::string const& aPath, SaveOptions const& aOptions) {
  checkHasRoot(aModel, aPath);
  if (ModelFiles const* const loaded = ModelFiles::find(aModel)) {
    SaveOptions options = aOptions;
    // Several files become one, which none of their texts is.
    if (options.fDialect.empty() && loaded->fFiles.size() > 1)
      options.fDialect =
          loaded->fReport.fFiles.front().fDialect.starts_with("Eclipse") ? "eclipse" : "omg-2.5.1";
    return writeFile(aPath, textOf(aModel, options));
  }
  // A model made in memory has its file from now on.
  auto files = std::make_unique<ModelFiles>();
  Saving saving(aModel, *files);
  std::string const text = saving.whole(dialectCalled(aOptions.fDialect));
  files->fFiles.emplace_back(SourceText::fromBytes(text, aPath));
  saving.check({text});
  writeFile(aPath, text);
  saving.adopt();
  files->fFiles.front().fPath = std::filesystem::absolute(aPath).string();
  files->fFiles.front().fStamp = stampOf(aPath);
  ModelFiles::attach(aModel, std::move(files));
}

}  // namespace umlmm::files
