#include "kelm/ModelCache.h"

#include <algorithm>
#include <utility>

namespace Kelm {

namespace {

std::u16string numbered(std::u16string const& aBase, unsigned aNumber) {
  std::string const digits = std::to_string(aNumber);
  return aBase + std::u16string(digits.begin(), digits.end());
}

}  // namespace

std::u16string const ModelCache::UNTITLED = u"untitled";

// Never destroyed: its models would die after the metamodel.
ModelCache& ModelCache::instance() {
  static ModelCache& sInstance = *new ModelCache;
  return sInstance;
}

std::u16string ModelCache::getNextAvailableModelUri(std::u16string const& aBase) const {
  auto const own = guard();
  if (!fModels.contains(aBase)) return aBase;
  unsigned& last = fBoundUpTo[aBase];
  for (;; ++last) {
    std::u16string candidate = numbered(aBase, last + 1);
    if (!fModels.contains(candidate)) return candidate;
  }
}

void ModelCache::bindModel(std::u16string const& aUri, Model const& aModel) {
  if (aModel.isNull()) raiseNullReference("kelm/Kelm/Model_h");
  auto const own = guard();
  std::u16string uri(aUri);
  auto const [entry, isNew] = fModels.try_emplace(aUri, Entry{aModel.get(), aModel.getDeviant(), aModel});
  if (!isNew) {
    if (entry->second.fModel == aModel.get()) return;
    Asserter::MakeAlways<Exception>("A model with the uri '%s' exists", String::to_string(aUri).c_str())
        .handle("kelm/Kelm/ModelCache", __LINE__, "");
  }
  auto const known = fUris.find(aModel.get());
  if (known == fUris.end()) {
    try {
      fUris.emplace(aModel.get(), std::move(uri));
    } catch (...) {
      fModels.erase(entry);
      throw;
    }
    return;
  }
  // Nothing can fail from here on.
  std::u16string const old = std::exchange(known->second, std::move(uri));
  auto const before = fModels.find(old);
  if (before->second.fHold.isNull()) entry->second.fHold = Model();
  fModels.erase(before);
  forgetNumber(old);
}

void ModelCache::letGo(ModelObject const& aModel) noexcept {
  // Without the guard by then, and with nothing of the table in hand: the model may close.
  Model hold;
  auto const own = guard();
  if (auto const known = fUris.find(&aModel); known != fUris.end())
    std::swap(hold, fModels.find(known->second)->second.fHold);
}

void ModelCache::unbindModel(ModelObject const& aModel) noexcept {
  // The count that goes with the entry may be the model's last: nothing may point into the tables then.
  decltype(fModels)::node_type entry;
  auto const own = guard();
  auto const known = fUris.find(&aModel);
  if (known == fUris.end()) return;
  auto const uri = fUris.extract(known);
  entry = fModels.extract(uri.mapped());
  forgetNumber(uri.mapped());
}

Model ModelCache::findModel(std::u16string const& aUri) const {
  auto const own = guard();
  auto const entry = fModels.find(aUri);
  return entry == fModels.end() ? Model() : Model(entry->second.fModel, entry->second.fDeviant);
}

bool ModelCache::isBound(ModelObject const& aModel) const noexcept {
  auto const own = guard();
  return fUris.contains(&aModel);
}

std::size_t ModelCache::size() const noexcept {
  auto const own = guard();
  return fModels.size();
}

// Every way to read the uri as a base name and a number behind it makes that number free again.
void ModelCache::forgetNumber(std::u16string_view aUri) const noexcept {
  constexpr std::size_t kDigits = 9;
  unsigned number = 0;
  unsigned weight = 1;
  for (std::size_t digits = 1; digits <= std::min(kDigits, aUri.size()); ++digits, weight *= 10) {
    char16_t const unit = aUri[aUri.size() - digits];
    if (unit < u'0' || unit > u'9') return;
    number += weight * (unit - u'0');
    if (unit == u'0') continue;
    auto const base = fBoundUpTo.find(aUri.substr(0, aUri.size() - digits));
    if (base != fBoundUpTo.end()) base->second = std::min(base->second, number - 1);
  }
}

}  // namespace Kelm
