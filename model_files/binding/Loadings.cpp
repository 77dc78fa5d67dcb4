#include "Loadings.h"

#include <utility>

#include "descriptors.h"
#include "vesk/host/Lock.h"

namespace umlmm::files::mi {

namespace {

struct Entry {
  std::vector<Input> fInputs;
  LoadOptions fOptions;
  std::unique_ptr<Loading> fLoading;
  bool fIsWorking = false;
};

std::map<int, Entry>& loadings() {
  static auto& sLoadings = *new std::map<int, Entry>;
  return sLoadings;
}

Entry& entryOf(int aNumber) {
  auto const found = loadings().find(aNumber);
  if (found == loadings().end()) throw Error("There is no reading under way with this number.");
  return found->second;
}

/// Marks a reading as being worked at; one that was not done well is dropped.
class Working {
 public:
  explicit Working(int aNumber) : fNumber(aNumber), fEntry(entryOf(aNumber)) {
    if (std::exchange(fEntry.fIsWorking, true)) throw Error("Another thread reads these files already.");
  }
  Working(Working const&) = delete;
  Working& operator=(Working const&) = delete;
  ~Working() {
    fEntry.fIsWorking = false;
    if (!fIsWell) loadings().erase(fNumber);
  }

  Entry& entry() const noexcept { return fEntry; }
  bool isWell(bool aAnswer) noexcept {
    fIsWell = true;
    return aAnswer;
  }

 private:
  int fNumber;
  Entry& fEntry;
  bool fIsWell = false;
};

/// Runs while scripts do other things.
bool work(Entry& aEntry, std::chrono::milliseconds aTime) {
  vesk::host::Unlocked const unlocked;
  if (!aEntry.fLoading)
    aEntry.fLoading = std::make_unique<Loading>(std::move(aEntry.fInputs), std::move(aEntry.fOptions));
  return aEntry.fLoading->step(aTime);
}

}  // namespace

int beginLoading(bool aIsStrict) {
  static int sLast = 0;
  sLast = sLast == INT32_MAX ? 1 : sLast + 1;
  LoadOptions& options = loadings()[sLast].fOptions;
  options.fStrict = aIsStrict;
  options.fBind = true;
  return sLast;
}

void addFile(int aNumber, Kelm::String const& aPath) {
  entryOf(aNumber).fInputs.push_back({aPath.to_string(), std::nullopt});
}

void addBytes(int aNumber, Kelm::String const& aName, int aDescriptor) {
  entryOf(aNumber).fInputs.push_back({aName.to_string(), readAll(aDescriptor)});
}

void addPath(int aNumber, Kelm::String const& aPrefix, Kelm::String const& aPlace) {
  entryOf(aNumber).fOptions.fPaths[aPrefix.to_string()] = aPlace.to_string();
}

bool stepLoading(int aNumber, int aMilliseconds) {
  Working working(aNumber);
  return working.isWell(work(working.entry(), std::chrono::milliseconds(aMilliseconds)));
}

int progressOfLoading(int aNumber) {
  Entry const& entry = entryOf(aNumber);
  return entry.fLoading ? static_cast<int>(entry.fLoading->progress() * 1000) : 0;
}

Kelm::Model takeModel(int aNumber) {
  Entry const& entry = entryOf(aNumber);
  Kelm::Model const model = entry.fLoading ? entry.fLoading->model() : Kelm::Model();
  if (model.isNull()) throw Error("The files are not read to their end.");
  loadings().erase(aNumber);
  return model;
}

void dropLoading(int aNumber) {
  auto const found = loadings().find(aNumber);
  if (found != loadings().end() && !found->second.fIsWorking) loadings().erase(found);
}

}  // namespace umlmm::files::mi
