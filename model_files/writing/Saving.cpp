#include <algorithm>
#include <chrono>
#include <filesystem>
#include <numeric>

#include "kelm/ModelElementIntf.h"
#include "model_files/reading/Reading.h"
#include "model_files/store/ModelFiles.h"
#include "model_files/text/writeFile.h"
#include "model_files/writing/Comparison.h"
#include "model_files/writing/Patcher.h"
#include "model_files/writing/WholeFile.h"
#include "uml_metamodel/umlmm/models.h"

namespace umlmm::files {

namespace {

/// Texts, by file, read into a model of its own as those of another were.
Kelm::Model readAgain(std::vector<Input> aTexts, ModelFiles const& aFiles) {
  LoadOptions options;
  options.fPaths = aFiles.fPlaces;
  Reading reading(std::move(aTexts), std::move(options), true);
  while (!reading.step(std::chrono::hours(1))) {
  }
  return reading.model();
}

void pairStandIns(Comparison& aComparison, ModelFiles const& aFiles, ModelFiles const& aRead) {
  for (auto const& [name, standIn] : aFiles.fStandIns)
    if (auto const found = aRead.fStandIns.find(name); found != aRead.fStandIns.end())
      aComparison.pair(*standIn.fElement, *found->second.fElement);
}

/// One saving: what files hold now, what they shall hold, and the model's knowledge of them afterwards.
class Saving {
 public:
  Saving(Kelm::Model const& aModel, ModelFiles& aFiles) : fModel(aModel), fFiles(aFiles) {}

  /// The one file of a model that had none.
  std::string whole(Dialect const& aDialect) {
    WholeFile file(fModel, aDialect);
    std::string text = file.write(fOrders.emplace_back());
    return text;
  }

  /// Whether the files are what the model is.
  bool isUnchanged() const { return fModel.object().revision() == fFiles.fRevision; }
  /// The new texts, by file.
  std::vector<std::string> texts() {
    std::vector<std::string> texts;
    Kelm::Model const read =
        readAgain(inputs([&](std::size_t aFile) { return fFiles.fFiles[aFile].fText.utf8(); }), fFiles);
    ModelFiles const& readFiles = ModelFiles::of(read);
    Comparison comparison(fModel, read);
    for (std::size_t file = 0; file < fFiles.fFiles.size(); ++file)
      pairMade(comparison, fFiles.fFiles[file].fMade, readFiles.fFiles[file].fMade);
    pairStandIns(comparison, fFiles, readFiles);
    auto const moved = movedElements();
    std::deque<Patcher> patchers;
    for (std::uint32_t file = 0; file < fFiles.fFiles.size(); ++file) {
      patchers.emplace_back(fModel, fFiles, file, readFiles, comparison, moved).fIdIn =
          [&](std::size_t aFile, Element& aElement) { return patchers[aFile].idOf(aElement); };
      fOrders.emplace_back();
    }
    texts.resize(patchers.size());
    // Writing may name elements that have no id in their text yet.
    auto const newIds = [&] {
      return std::accumulate(patchers.begin(), patchers.end(), std::size_t{0},
                             [](std::size_t aSum, Patcher const& aOne) { return aSum + aOne.newIds(); });
    };
    for (std::optional<std::size_t> known; known != newIds();) {
      known = newIds();
      for (std::size_t file = 0; file < patchers.size(); ++file)
        texts[file] = patchers[file].write(fOrders[file]);
    }
    return texts;
  }

  /// Reads the new texts and holds them against the model; raises Error for one that would not be read as it
  /// is.
  void check(std::vector<std::string> const& aTexts) {
    if (fOrders.empty()) return;
    fRead = readAgain(inputs([&](std::size_t aFile) { return std::string_view(aTexts[aFile]); }), fFiles);
    ModelFiles& readFiles = ModelFiles::of(fRead);
    Comparison comparison(fModel, fRead);
    for (std::size_t file = 0; file < aTexts.size(); ++file)
      pairOrder(comparison, file, readFiles.fFiles[file]);
    pairStandIns(comparison, fFiles, readFiles);
    verify(comparison);
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
  }

  /// The new texts, which were checked, are the model's files from now on.
  void adopt() {
    if (fOrders.empty()) return;
    ModelFiles& readFiles = ModelFiles::of(fRead);
    fFiles.fFiles = std::move(readFiles.fFiles);
    fFiles.fKept = std::move(readFiles.fKept);
    fFiles.fDangling = std::move(readFiles.fDangling);
    fFiles.fApplications = std::move(readFiles.fApplications);
    if (fFiles.fReport.fFiles.empty()) fFiles.fReport = std::move(readFiles.fReport);
    fFiles.forgetTags();
    fFiles.fRevision = fModel.object().revision();
  }

 private:
  template <class TextOf>
  std::vector<Input> inputs(TextOf aTextOf) const {
    std::vector<Input> inputs;
    for (std::size_t file = 0; file < fFiles.fFiles.size(); ++file) {
      SourceText const& text = fFiles.fFiles[file].fText;
      inputs.push_back({text.name(), text.encoded(aTextOf(file))});
    }
    return inputs;
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
    for (std::size_t at = 0; at < order.size(); ++at) aComparison.pair(*order[at], *aRead.fMade[at].fElement);
  }

  /// A text that would not be read as the model is must not be written.
  void verify(Comparison& aComparison) const {
    Metamodel const& metamodel = Metamodel::instance();
    for (auto const& order : fOrders)
      for (Element* const element : order) {
        Metaclass const& metaclass = metamodel.metaclassOf(*element);
        for (Feature const* const feature : metaclass.fOrder) {
          if (!isWritten(*feature) || aComparison.isSame(*element, *aComparison.toRead(element), *feature))
            continue;
          throw Error("The model was not saved: " + std::string(metaclass.fName) + " " +
                      externalIdOf(*element, fModel.getDeviant()) + " can't be written with its " +
                      std::string(feature->fName));
        }
      }
  }

  Kelm::Model fModel;
  ModelFiles& fFiles;
  /// The model of the new texts.
  Kelm::Model fRead;
  /// Elements of each file in the order of their tags.
  std::vector<std::vector<Element*>> fOrders;
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
    std::vector<Element*> order;
    return WholeFile(aModel, dialectCalled(aOptions.fDialect)).write(order);
  }
  ModelFile const* const file = aFile.empty() ? &own->fFiles.front() : own->fileCalled(aFile);
  if (file == nullptr) throw Error("The model has no file " + std::string(aFile));
  Saving saving(aModel, *own);
  if (saving.isUnchanged()) return file->fText.encoded(file->fText.utf8());
  auto const texts = saving.texts();
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
  auto const texts = saving.texts();
  std::vector<std::string> bytes;
  for (std::size_t at = 0; at < texts.size(); ++at) {
    ModelFile const& file = files.fFiles[at];
    SourceText const& text = file.fText;
    bytes.push_back(texts[at] == text.utf8() ? std::string() : text.encoded(texts[at]));
    if (bytes.back().empty()) continue;
    if (file.fPath.empty())
      throw Error(text.name() + " was given as bytes, and lies nowhere; save to a path");
    if (!aOptions.fForce && stampOf(file.fPath) != file.fStamp)
      throw Error(text.name() + " has changed on disk since it was read; save with force to write over it");
  }
  saving.check(texts);
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
