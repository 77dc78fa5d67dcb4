#include "engine/Referrers.h"

#include <algorithm>
#include <new>
#include <unordered_set>

namespace umlmm::engine {

namespace {

/// Lists are searched up to this length.
constexpr std::size_t kSearched = 32;
/// Room of a new list.
constexpr std::size_t kFewest = 2;

using State = Kelm::ElementState;

void const* key(std::uintptr_t aReference) noexcept { return reinterpret_cast<void const*>(aReference); }

}  // namespace

void Referrers::makeRoom(Element& aValue) {
  Word& word = State::referrers(aValue);
  if (Referrers* const list = listIn(word)) {
    if (list->fWords.size() == list->fWords.capacity()) list->fWords.reserve(2 * list->fWords.capacity());
    return;
  }
  auto made = std::make_unique<Referrers>();
  made->fWords.reserve(kFewest);
  made->fWords.push_back(word);
  word = reinterpret_cast<Word>(made.release()) | kIsList;
}

void Referrers::add(Element& aValue, Reference aReference) noexcept {
  Word& word = State::referrers(aValue);
  if (Referrers* const list = listIn(word))
    list->append(pack(aReference));
  else
    word = pack(aReference);
}

void Referrers::remove(Element& aValue, Reference aReference) noexcept {
  Word& word = State::referrers(aValue);
  if (word == pack(aReference)) {
    word = 0;
  } else if (Referrers* const list = listIn(word)) {
    list->erase(pack(aReference));
    if (list->fWords.size() == list->fHoles) clear(aValue);
  }
}

void Referrers::removeLast(Element& aValue) noexcept {
  Word& word = State::referrers(aValue);
  Referrers* const list = listIn(word);
  if (list == nullptr) {
    word = 0;
    return;
  }
  list->fWords.pop_back();
  list->fPlaces.reset();
}

std::uint32_t Referrers::strike(Element& aValue, Reference aReference) noexcept {
  Word& word = State::referrers(aValue);
  Referrers* const list = listIn(word);
  if (list == nullptr) {
    word = 0;
    return 0;
  }
  std::size_t const place = list->takePlaceOf(pack(aReference));
  list->fWords[place] = 0;
  ++list->fHoles;
  return static_cast<std::uint32_t>(place);
}

void Referrers::fill(Element& aValue, Reference aReference, std::uint32_t aPlace) noexcept {
  Word& word = State::referrers(aValue);
  Referrers* const list = listIn(word);
  if (list == nullptr) {
    word = pack(aReference);
    return;
  }
  list->fWords[aPlace] = pack(aReference);
  --list->fHoles;
  list->fPlaces.reset();
}

void Referrers::closeHoles(Element& aValue) noexcept {
  Referrers* const list = listIn(State::referrers(aValue));
  if (list == nullptr) return;
  if (list->fWords.size() == list->fHoles) return clear(aValue);
  list->trim();
}

std::vector<std::uintptr_t> Referrers::words(Element const& aValue) {
  Referrers const* const list = listIn(State::referrers(aValue));
  return list == nullptr ? std::vector<Word>() : list->fWords;
}

void Referrers::restore(Element& aValue, std::vector<std::uintptr_t> const& aWords) noexcept {
  Referrers* const list = listIn(State::referrers(aValue));
  if (list == nullptr) return;
  std::copy(aWords.begin(), aWords.end(), list->fWords.begin());
  list->fPlaces.reset();
}

void Referrers::arrange(Element& aValue, std::vector<Reference> const& aOrder) {
  Referrers* const list = listIn(State::referrers(aValue));
  if (list == nullptr) return;
  std::unordered_set<Word> arranged;
  for (Reference const& reference : aOrder) arranged.insert(pack(reference));
  auto next = aOrder.begin();
  for (Word& word : list->fWords)
    if (arranged.contains(word)) word = pack(*next++);
  list->fPlaces.reset();
}

void Referrers::clear(Element& aValue) noexcept {
  delete listIn(State::referrers(aValue));
  State::referrers(aValue) = 0;
}

std::vector<Reference> Referrers::of(Element const& aValue) {
  std::vector<Reference> references;
  if (Referrers const* const list = listIn(State::referrers(aValue))) {
    references.reserve(list->fWords.size() - list->fHoles);
    for (Word const word : list->fWords)
      if (word != 0) references.push_back(unpack(word));
  } else if (State::referrers(aValue) != 0) {
    references.push_back(unpack(State::referrers(aValue)));
  }
  return references;
}

void Referrers::append(Word aReference) noexcept {
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
  trim();
}

void Referrers::trim() noexcept {
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
