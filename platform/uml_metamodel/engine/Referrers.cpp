#include "engine/Referrers.h"

#include <algorithm>
#include <new>
#include <unordered_set>

namespace umlmm::engine {

namespace {

/// Lists are searched up to this length.
constexpr std::size_t kSearched = 32;

void const* key(std::uintptr_t aReference) noexcept { return reinterpret_cast<void const*>(aReference); }

}  // namespace

void Referrers::add(Element& aValue, Reference aReference) {
  Word& word = aValue.fReferrers;
  if (word == 0) {
    word = pack(aReference);
  } else if (Referrers* const list = listIn(word)) {
    list->append(pack(aReference));
  } else {
    auto made = std::make_unique<Referrers>();
    made->fWords = {word, pack(aReference)};
    word = reinterpret_cast<Word>(made.release()) | kIsList;
  }
}

void Referrers::remove(Element& aValue, Reference aReference) noexcept {
  Word& word = aValue.fReferrers;
  if (word == pack(aReference)) {
    word = 0;
  } else if (Referrers* const list = listIn(word)) {
    list->erase(pack(aReference));
    if (list->fWords.size() == list->fHoles) clear(aValue);
  }
}

void Referrers::arrange(Element& aValue, std::vector<Reference> const& aOrder) {
  Referrers* const list = listIn(aValue.fReferrers);
  if (list == nullptr) return;
  std::unordered_set<Word> arranged;
  for (Reference const& reference : aOrder) arranged.insert(pack(reference));
  auto next = aOrder.begin();
  for (Word& word : list->fWords)
    if (arranged.contains(word)) word = pack(*next++);
  list->fPlaces.reset();
}

void Referrers::clear(Element& aValue) noexcept {
  delete listIn(aValue.fReferrers);
  aValue.fReferrers = 0;
}

std::vector<Reference> Referrers::of(Element const& aValue) {
  std::vector<Reference> references;
  if (Referrers const* const list = listIn(aValue.fReferrers)) {
    references.reserve(list->fWords.size() - list->fHoles);
    for (Word const word : list->fWords)
      if (word != 0) references.push_back(unpack(word));
  } else if (aValue.fReferrers != 0) {
    references.push_back(unpack(aValue.fReferrers));
  }
  return references;
}

void Referrers::append(Word aReference) {
  fWords.push_back(aReference);
  if (fPlaces == nullptr) return;
  try {
    fPlaces->insert(key(aReference), static_cast<std::uint32_t>(fWords.size() - 1));
  } catch (std::bad_alloc const&) {
    fPlaces.reset();
  }
}

void Referrers::erase(Word aReference) noexcept {
  std::size_t const place = takePlaceOf(aReference);
  if (place == fWords.size()) return;
  fWords[place] = 0;
  ++fHoles;
  for (; !fWords.empty() && fWords.back() == 0; --fHoles) fWords.pop_back();
  if (fHoles * 2 > fWords.size()) closeHoles();
}

std::size_t Referrers::takePlaceOf(Word aReference) noexcept {
  if (fPlaces != nullptr || (fWords.size() > kSearched && fWords.back() != aReference && makePlaces())) {
    std::uint32_t const place = fPlaces->take(key(aReference));
    return place == Kelm::PointerTable::kNotFound ? fWords.size() : place;
  }
  return static_cast<std::size_t>(std::find(fWords.begin(), fWords.end(), aReference) - fWords.begin());
}

// Without a table the list is right, only slower.
bool Referrers::makePlaces() noexcept try {
  auto places = std::make_unique<Kelm::PointerTable>();
  places->reserve(static_cast<std::uint32_t>(fWords.size()));
  for (std::size_t place = 0; place < fWords.size(); ++place)
    if (fWords[place] != 0) places->insert(key(fWords[place]), static_cast<std::uint32_t>(place));
  fPlaces = std::move(places);
  return true;
} catch (std::bad_alloc const&) {
  return false;
}

void Referrers::closeHoles() noexcept {
  if (fHoles == 0) return;
  std::erase(fWords, Word{0});
  fHoles = 0;
  if (fPlaces == nullptr) return;
  for (std::size_t place = 0; place < fWords.size(); ++place)
    fPlaces->assign(key(fWords[place]), static_cast<std::uint32_t>(place));
}

}  // namespace umlmm::engine
