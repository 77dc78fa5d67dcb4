#include "model_files/reading/Reading.h"

#include <filesystem>
#include <new>

#include "kelm/ModelCache.h"
#include "model_files/dialect/namespaces.h"
#include "uml_metamodel/umlmm/models.h"

namespace umlmm::files {

namespace {

using Clock = std::chrono::steady_clock;

/// Tags or references between two looks at the clock.
constexpr std::size_t kChunk = 512;
/// What of the progress is due to tags; the rest to references.
constexpr double kTags = 0.8;

double since(Clock::time_point aStart) {
  return std::chrono::duration<double>(Clock::now() - aStart).count();
}

/// "Eclipse UML 5.0.0, XMI 20131001".
std::string dialectOf(Builder const& aBuilder) {
  std::string_view const uml = aBuilder.umlAddress();
  std::string text = isEclipse(uml) ? "Eclipse UML " : "UML ";
  text += versionOf(uml);
  std::string_view const xmi = versionOf(aBuilder.xmiAddress());
  text += ", XMI";
  if (!xmi.empty()) (text += ' ') += xmi;
  return text;
}

bool mentionsUml(std::string_view aText) noexcept {
  return aText.find("/spec/UML/") != std::string_view::npos || aText.find("/uml2/") != std::string_view::npos;
}

/// By its uri the model can be found as long as somebody has it.
void bindTo(Kelm::Model const& aModel, std::string const& aName) {
  auto& cache = Kelm::ModelCache::instance();
  auto const guard = cache.guard();
  std::u16string const uri = cache.getNextAvailableModelUri(Kelm::toUtf16(aName.empty() ? "model" : aName));
  aModel.setModelUri(Kelm::String(uri));
  cache.bindModel(uri, aModel);
  cache.letGo(aModel.object());
}

}  // namespace

Reading::Reading(std::vector<Input> aInputs, LoadOptions aOptions, bool aIsAgain)
    : fInputs(std::move(aInputs)),
      fOptions(std::move(aOptions)),
      fIsAgain(aIsAgain),
      fModel(createNewModel()),
      fFindings(*fFiles, fOptions.fStrict),
      fReferences(*fFiles, fModel, fFindings),
      fAsked(fInputs.size()) {
  fFiles->fPlaces = fOptions.fPaths;
}

bool Reading::step(std::chrono::milliseconds aTime) {
  auto const start = Clock::now();
  while (!fIsDone && !advance())
    if (Clock::now() >= start + aTime) break;
  fTime += since(start);
  if (fIsDone && fFiles != nullptr) finish();
  return fIsDone;
}

double Reading::progress() const noexcept {
  if (fIsDone) return 1;
  auto const files = static_cast<double>(fInputs.size());
  double part = static_cast<double>(fAt) / files;
  if (fBuilder)
    part += static_cast<double>(fBuilder->offset()) /
            static_cast<double>(fFiles->fFiles.back().fText.utf8().size() + 1) / files;
  double const references = fReferences.count() == 0 ? 0
                                                     : static_cast<double>(fReferences.done()) /
                                                           static_cast<double>(fReferences.count());
  // More files may be found on the way.
  fTold = std::max(fTold, kTags * part + (1 - kTags) * references);
  return fTold;
}

bool Reading::advance() {
  if (fBuilder) {
    auto const progress = fBuilder->step(kChunk);
    if (progress == Builder::Progress::NeedsPiece) parse();
    if (progress == Builder::Progress::Done) endFile();
    return false;
  }
  if (fAt == fInputs.size() && fReferences.done() == 0)
    for (std::string& path : fReferences.wanted()) fInputs.push_back({std::move(path), std::nullopt});
  if (fAt < fInputs.size()) {
    try {
      startFile();
    } catch (Error const&) {
      if (fAt < fAsked) throw;
      dropFile();
    }
    return false;
  }
  fIsDone = fReferences.step(kChunk);
  return fIsDone;
}

void Reading::startFile() {
  Input& input = fInputs[fAt];
  bool const isOnDisk = !input.fBytes.has_value() && !input.fPath.empty();
  if (isOnDisk && !fLocations.insert(locationOf(input.fPath)).second) {
    ++fAt;
    return;
  }
  auto const number = static_cast<std::uint32_t>(fFiles->fFiles.size());
  ModelFile& file =
      fFiles->fFiles.emplace_back(input.fBytes ? SourceText::fromBytes(std::move(*input.fBytes), input.fPath)
                                               : SourceText::fromFile(input.fPath));
  std::string_view const text = file.fText.utf8();
  if (isOnDisk) file.fPath = std::filesystem::absolute(input.fPath).string();
  file.fStamp = file.fText.stamp();
  fFiles->fReport.fFiles.push_back(
      {file.fText.name(), "", "", "", file.fText.encoding(), file.fText.bytes()});
  if (isNoXml(text)) throw NotUml(whatItIs(file.fText));
  if (fAt >= fAsked) checkWhole(file);
  fBuilder = std::make_unique<Builder>(*fFiles, number, fModel, fFindings, fReferences, fIsAgain);
  parse();
}

void Reading::parse() {
  auto const start = Clock::now();
  pugi::xml_parse_result const result = fBuilder->parse();
  fFiles->fReport.fParseTime += since(start);
  if (!result) refuse(fFiles->fFiles.back(), result);
}

void Reading::checkWhole(ModelFile const& aFile) {
  // Elements that were built of its first pieces could not be taken back.
  auto const start = Clock::now();
  std::string_view const text = aFile.fText.utf8();
  pugi::xml_document document;
  pugi::xml_parse_result const result = document.load_buffer(
      text.data(), text.size(), pugi::parse_minimal | pugi::parse_fragment, pugi::encoding_utf8);
  fFiles->fReport.fParseTime += since(start);
  if (!result) refuse(aFile, result);
}

void Reading::refuse(ModelFile const& aFile, pugi::xml_parse_result const& aResult) {
  if (aResult.status == pugi::status_out_of_memory) throw std::bad_alloc();
  if (!mentionsUml(aFile.fText.utf8())) throw NotUml(whatItIs(aFile.fText));
  auto const offset = static_cast<std::size_t>(std::max<std::ptrdiff_t>(aResult.offset, 0));
  throw ReadError("not well-formed XML (" + std::string(aResult.description()) +
                      "); the file is damaged or was cut off, get a whole copy of it",
                  aFile.fText.placeOf(offset), {});
}

void Reading::endFile() {
  ModelFile& file = fFiles->fFiles.back();
  if (fBuilder->found() == 0 && fAt >= fAsked) return dropFile();
  if (fBuilder->found() == 0) throw NotUml(whatItIs(file.fText));
  fBuilder->finish();
  fFiles->fReport.fFiles.back().fDialect = dialectOf(*fBuilder);
  file.fStyle.fReentrant = isReentrantByDefault(fBuilder->umlAddress());
  file.fStyle.complete();
  fBuilder.reset();
  ++fReadCount;
  ++fAt;
}

void Reading::dropFile() {
  fBuilder.reset();
  // One that can't be opened has not come so far.
  if (fFiles->fReport.fFiles.size() > fReadCount) {
    auto const number = static_cast<std::uint32_t>(fFiles->fFiles.size() - 1);
    std::erase_if(fFiles->fKept, [&](Kept const& aKept) { return aKept.fSpot.fFile == number; });
    fReferences.drop(number);
    fFiles->fReport.fFiles.pop_back();
    fFiles->fFiles.pop_back();
  }
  ++fAt;
}

void Reading::finish() {
  auto const start = Clock::now();
  fReferences.finish();
  if (fOptions.fBind && !fFiles->fFiles.empty()) bindTo(fModel, fFiles->fReport.fFiles.front().fPath);
  fFiles->fRevision = fModel.object().revision();
  fFiles->fReport.fBuildTime = fTime + since(start) - fFiles->fReport.fParseTime;
  ModelFiles::attach(fModel, std::move(fFiles));
}

}  // namespace umlmm::files
