#include "model_files/reading/References.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <set>

#include "kelm/kernel/containers/Ref.h"
#include "model_files/dialect/older.h"
#include "model_files/dialect/values.h"
#include "model_files/reading/Memo.h"
#include "uml_metamodel/umlmm/MetamodelExtension.h"

namespace umlmm::files {

namespace {

/// "%20" as the character that it stands for.
std::string decoded(std::string_view aText) {
  std::string text;
  for (std::size_t at = 0; at < aText.size(); ++at) {
    unsigned code = 0;
    bool const isEscape = aText[at] == '%' && at + 2 < aText.size() &&
                          std::sscanf(std::string(aText.substr(at + 1, 2)).c_str(), "%2x", &code) == 1;
    text += isEscape ? static_cast<char>(code) : aText[at];
    if (isEscape) at += 2;
  }
  return text;
}

/// Each byte of every reference comes by here: eight are looked at together. One by one they took a fortieth
/// of a reading.
bool hasBlanks(std::string_view aText) noexcept {
  constexpr std::size_t kWord = sizeof(std::uint64_t);
  constexpr std::uint64_t kOnes = UINT64_MAX / 0xFF;
  bool found = false;
  std::size_t at = 0;
  for (; at + kWord <= aText.size(); at += kWord) {
    auto const word = NameWords::load<std::uint64_t>(aText.data() + at);
    found |= ((word - kOnes * (' ' + 1)) & ~word & kOnes * 0x80) != 0;
  }
  for (; at < aText.size(); ++at) found |= static_cast<unsigned char>(aText[at]) <= ' ';
  return found;
}

/// Has the memory of an element come, as far as a link needs it of most. Without a question for null, behind
/// which nothing comes: the place is a number here, as a pointer must not leave what it points to.
void prefetch(Element const* aElement) noexcept {
  auto const place = reinterpret_cast<std::uintptr_t>(aElement);
  for (std::uintptr_t at = 0; at < 192; at += 64)
    __builtin_prefetch(reinterpret_cast<void const*>(place + at), 1);
}

}  // namespace

References::References(ModelFiles& aFiles, Kelm::Model const& aModel, Findings& aFindings)
    : fFiles(aFiles), fModel(aModel), fDeviant(aModel.getDeviant()), fFindings(aFindings) {}

bool References::step(std::size_t aCount) {
  std::array<std::string_view, IdTable::kTogether> ids;
  std::array<Element*, IdTable::kTogether> found{};
  for (std::size_t done = 0; fNext < fPending.size() && done < aCount; done += ids.size()) {
    std::span const some =
        std::span<Pending const>(fPending).subspan(fNext, std::min(ids.size(), fPending.size() - fNext));
    // Nearly all lead to ids of their own files.
    std::uint32_t const file = some.front().fFile;
    for (std::size_t at = 0; at < some.size(); ++at)
      ids[at] = some[at].fIsList || some[at].fFile != file ? std::string_view() : some[at].address();
    fFiles.fFiles[file].fIds.find(std::span(ids).first(some.size()), found);
    for (std::size_t at = 0; at < some.size(); ++at) {
      prefetch(some[at].fElement);
      prefetch(found[at]);
    }
    // A failure ends the reading: what is left does not matter then.
    fNext += some.size();
    for (std::size_t at = 0; at < some.size(); ++at) resolve(some[at], found[at]);
  }
  return fNext == fPending.size();
}

void References::finish() {
  order();
  resolveApplications();
  resolveEntries();
  fFiles.fReport.fUnresolvedCount = fFiles.fDangling.size();
}

void References::addAll(Element& aElement, Feature const& aFeature, std::string_view aText, Spot aSpot) {
  if (aText.empty()) return;
  bool const hasBlanks = files::hasBlanks(aText);
  if (!hasBlanks) return add(aElement, aFeature, aText, aSpot);
  constexpr std::string_view kBlanks = " \t\r\n";
  std::size_t const from = aText.find_first_not_of(kBlanks);
  if (from == std::string_view::npos) return;
  aText = aText.substr(from, aText.find_last_not_of(kBlanks) - from + 1);
  fPending.push_back({aElement, aFeature, aText, aSpot, aText.find_first_of(kBlanks) != aText.npos});
}

void References::resolveAll(Pending const& aReferences) {
  // Ids may have blanks in them: what is no id may be one together with what follows.
  constexpr std::size_t kMostWords = 8;
  std::string_view const text = aReferences.address();
  std::vector<std::string_view> words;
  forEachWord(text, [&](auto aWord) { words.push_back(aWord); });
  auto const joined = [&](std::size_t aFirst, std::size_t aLast) {
    return text.substr(
        static_cast<std::size_t>(words[aFirst].data() - text.data()),
        static_cast<std::size_t>(words[aLast].data() - words[aFirst].data()) + words[aLast].size());
  };
  for (std::size_t first = 0; first < words.size(); ++first) {
    std::size_t last = first;
    Element* value = nullptr;
    std::size_t const end = std::min(words.size(), first + kMostWords);
    for (; last < end && value == nullptr; ++last) value = find(joined(first, last), aReferences.fFile);
    // Back to the last word of what was found.
    last = value == nullptr ? first : last - 1;
    settle({*aReferences.fElement, *aReferences.fFeature, joined(first, last), aReferences.spot(), false},
           value);
    first = last;
  }
}

void References::resolve(Pending const& aReference, Element* aFound) {
  Feature const& feature = *aReference.fFeature;
  if (feature.fDerived && !feature.fComposite)
    return fFindings.add(Findings::Weight::Note, "derived feature", feature.fName, "follows from others",
                         aReference.spot(), [] { return std::string(); });
  if (aReference.fIsList) return resolveAll(aReference);
  settle(aReference, aFound != nullptr ? aFound : find(aReference.address(), aReference.fFile));
}

void References::settle(Pending const& aReference, Element* aValue) {
  if (aValue != nullptr) return link(aReference, partMeant(aReference, *aValue));
  Feature const& feature = *aReference.fFeature;
  fFindings.add(Findings::Weight::Fault, "unresolved reference", feature.fName, "kept as written",
                aReference.spot(), [&] { return pathOf(*aReference.fElement, fDeviant); });
  fFiles.fDangling.push_back(
      {ElementPtr(aReference.fElement), &feature, std::string(aReference.address()), aReference.spot()});
}

Element& References::partMeant(Pending const& aReference, Element& aValue) {
  if (!aReference.fFeature->fComposite) return aValue;
  if (!fDuplicateIds) {
    fDuplicateIds.emplace();
    for (auto const& [id, place] : fFiles.fReport.fDuplicateIds) fDuplicateIds->insert(id);
  }
  if (!fDuplicateIds->contains(aReference.address()) || containerOf(aValue, fDeviant) == aReference.fElement)
    return aValue;
  Feature const& parts = *Metamodel::instance().metaclassOf(*aReference.fElement).feature("ownedElement");
  for (Element* const part : elementsOf(*aReference.fElement, parts, fDeviant))
    if (fFiles.idOf(*part) == aReference.address()) return *part;
  return aValue;
}

void References::link(Pending const& aReference, Element& aValue) {
  Feature const& feature = *aReference.fFeature;
  bool const isEnd = feature.fOpposite != nullptr && feature.fOpposite->fComposite;
  if (feature.fComposite || isEnd) ++fPartLinks;
  try {
    addElement(*aReference.fElement, feature, aValue, fDeviant);
    if (feature.fMany) fLinked.push_back({aReference.fElement, &feature, &aValue, aReference.fOffset});
  } catch (Kelm::Exception const& refusal) {
    fFindings.add(Findings::Weight::Fault, "value refused",
                  std::string(feature.fName) + ": " + refusal.what(), "kept as written", aReference.spot(),
                  [&] { return pathOf(*aReference.fElement, fDeviant); });
    fFiles.fDangling.push_back(
        {ElementPtr(aReference.fElement), &feature, std::string(aReference.address()), aReference.spot()});
  }
}

Element* References::find(std::string_view aAddress, std::uint32_t aFile) {
  ModelFile& own = fFiles.fFiles[aFile];
  if (Element* const found = own.fIds.find(aAddress)) return found;
  std::size_t const hash = aAddress.find('#');
  if (hash == std::string_view::npos && aAddress.starts_with('/')) return walk(own, aAddress);
  if (Element* const found = findUuid(aAddress)) return found;
  if (hash == std::string_view::npos && aAddress.find('/') == std::string_view::npos) return nullptr;
  std::string_view const fragment = aAddress.substr(std::min(hash, aAddress.size() - 1) + 1);
  if (hash == 0) return findInFile(own, fragment);
  ModelFile* const file = hash == std::string_view::npos ? nullptr : fileAt(aAddress.substr(0, hash), aFile);
  if (file != nullptr) return findInFile(*file, fragment);
  std::string_view name = primitiveAt(aAddress);
  if (auto const path = fPaths.find(aAddress); name.empty() && path != fPaths.end())
    name = primitiveCalled(path->second);
  return name.empty() ? nullptr : primitive(name, aAddress);
}

Element* References::findInFile(ModelFile& aFile, std::string_view aFragment) {
  for (std::string_view const id : {aFragment, aFragment.substr(0, aFragment.find('?'))})
    if (Element* const found = aFile.fIds.find(id)) return found;
  std::string const plain = decoded(aFragment);
  if (Element* const found = aFile.fIds.find(plain)) return found;
  if (Element* const found = findUuid(aFragment)) return found;
  return plain.empty() || plain.starts_with('/') ? walk(aFile, plain) : nullptr;
}

Element* References::findUuid(std::string_view aUuid) {
  if (fUuids.empty()) return nullptr;
  // Of equal ones the first.
  if (!fIsSorted) std::ranges::stable_sort(fUuids, {}, &decltype(fUuids)::value_type::first);
  fIsSorted = true;
  auto const found = std::ranges::lower_bound(fUuids, aUuid, {}, &decltype(fUuids)::value_type::first);
  return found == fUuids.end() || found->first != aUuid ? nullptr : found->second;
}

Element* References::walk(ModelFile& aFile, std::string_view aPath) {
  if (aFile.fMade.empty()) return nullptr;
  Element* at = aFile.fMade.front().fElement.get();
  Metamodel const& metamodel = Metamodel::instance();
  // "//shop/@packagedElement.2": the root by its number, which is left out, then names and positions.
  std::size_t from = aPath.find('/', aPath.starts_with('/') ? 1 : 0);
  while (at != nullptr && from != std::string_view::npos && from + 1 < aPath.size()) {
    std::size_t const end = std::min(aPath.find('/', from + 1), aPath.size());
    std::string_view const piece = aPath.substr(from + 1, end - from - 1);
    from = end == aPath.size() ? std::string_view::npos : end;
    Metaclass const& metaclass = metamodel.metaclassOf(*at);
    Element* next = nullptr;
    if (piece.starts_with('@')) {
      std::size_t const dot = std::min(piece.rfind('.'), piece.size());
      Feature const* const feature = featureCalled(metaclass, piece.substr(1, dot - 1));
      if (feature == nullptr || feature->fKind != Kind::Reference) return nullptr;
      auto const position =
          dot == piece.size() ? 0 : std::strtoul(std::string(piece.substr(dot + 1)).c_str(), nullptr, 10);
      if (!feature->fMany) {
        Kelm::ClassObject const value =
            Kelm::queryHandle<Kelm::ClassObject, Kelm::VisitationDomain>(read(*at, *feature, fDeviant));
        next = value.get();
      } else {
        next = elementAt(*at, *feature, position, fDeviant);
      }
    } else {
      next = partCalled(*at, piece);
    }
    at = next;
  }
  return at;
}

Element* References::partCalled(Element& aOwner, std::string_view aName) {
  PartNames& known = fPartNames[&aOwner];
  if (known.fLinks != fPartLinks + 1) {
    Metamodel const& metamodel = Metamodel::instance();
    known.fParts.clear();
    for (Element* const part :
         elementsOf(aOwner, *metamodel.metaclassOf(aOwner).feature("ownedElement"), fDeviant)) {
      Feature const* const name = metamodel.metaclassOf(*part).feature("name");
      if (name == nullptr) continue;
      Kelm::Object const value = read(*part, *name, fDeviant);
      if (!value.isNull()) known.fParts.try_emplace(textOf(*name, value), part);
    }
    known.fLinks = fPartLinks + 1;
  }
  auto const found = known.fParts.find(std::string(aName));
  return found == known.fParts.end() ? nullptr : found->second;
}

ModelFile* References::fileAt(std::string_view aFile, std::uint32_t aFrom) {
  auto const [known, isNew] = fFilesAt.try_emplace({aFrom, aFile}, nullptr);
  if (isNew) known->second = searchFile(aFile, aFrom);
  return known->second;
}

std::filesystem::path const& References::location(std::size_t aFile) {
  while (fLocations.size() <= aFile)
    fLocations.push_back(locationOf(fFiles.fFiles[fLocations.size()].fText.name()));
  return fLocations[aFile];
}

std::filesystem::path References::whereIs(std::string_view aFile, std::uint32_t aFrom, bool& aIsTold) const {
  std::string plain = decoded(aFile);
  // Of places that are told the longest start is nearest.
  aIsTold = false;
  for (auto place = fFiles.fPlaces.rbegin(); place != fFiles.fPlaces.rend() && !aIsTold; ++place) {
    auto const& [start, folder] = *place;
    aIsTold = plain.starts_with(start);
    bool const isFolder = start.ends_with('/') && !folder.ends_with('/');
    if (aIsTold) plain.replace(0, start.size(), isFolder ? folder + '/' : folder);
  }
  constexpr std::string_view kLocal = "file:";
  if (plain.starts_with("file:/"))
    plain.erase(0, plain.find_first_not_of('/', kLocal.size()) - 1);
  else if (plain.starts_with(kLocal))
    plain.erase(0, kLocal.size());
  std::size_t const colon = plain.find(':');
  // One letter is a drive.
  if (colon != std::string::npos && colon > 1 && plain.find('/') > colon) return {};
  std::ranges::replace(plain, '\\', '/');
  return std::filesystem::path(fFiles.fFiles[aFrom].fText.name()).parent_path() / plain;
}

ModelFile* References::searchFile(std::string_view aFile, std::uint32_t aFrom) {
  bool isTold = false;
  std::filesystem::path const path = whereIs(aFile, aFrom, isTold);
  std::filesystem::path const wanted = path.empty() ? path : locationOf(path);
  // "platform:/resource/project/folder/a.uml": a folder of a workspace, which may lie anywhere.
  constexpr std::string_view kWorkspace = "platform:/";
  std::string const plain = aFile.starts_with(kWorkspace) ? decoded(aFile) : std::string();
  std::size_t const inside = plain.find('/', kWorkspace.size());
  for (std::uint32_t file = 0; file < fFiles.fFiles.size(); ++file) {
    bool const isInside = inside < plain.size() &&
                          location(file).generic_string().ends_with(std::string_view(plain).substr(inside));
    if (!isInside && (wanted.empty() || location(file) != wanted)) continue;
    fFiles.fFiles[aFrom].fSpellings.try_emplace(file, aFile);
    return &fFiles.fFiles[file];
  }
  return nullptr;
}

std::vector<std::string> References::wanted() {
  std::vector<std::string> wanted;
  for (; fSeen < fPending.size(); ++fSeen) {
    Pending const& reference = fPending[fSeen];
    std::uint32_t const from = reference.fFile;
    bool const isPart = reference.fFeature->fComposite;
    if ((!isPart && fFiles.fPlaces.empty()) || fFiles.fFiles[from].fPath.empty()) continue;
    forEachWord(reference.address(), [&](std::string_view aAddress) {
      std::size_t const hash = aAddress.find('#');
      if (hash == 0 || hash == aAddress.npos) return;
      std::string_view const file = aAddress.substr(0, hash);
      if (fLookedAt.contains({from, file})) return;
      bool isTold = false;
      std::filesystem::path const path = whereIs(file, from, isTold);
      if (!isPart && !isTold) return;
      fLookedAt.emplace(from, file);
      std::error_code error;
      if (!path.empty() && std::filesystem::is_regular_file(path, error))
        wanted.push_back(path.lexically_normal().string());
    });
  }
  return wanted;
}

void References::drop(std::uint32_t aFile) {
  auto const isOfFile = [&](PendingApplication const& aOne) { return aOne.fSpot.fFile == aFile; };
  std::erase_if(fApplications, isOfFile);
  std::erase_if(fEntries, isOfFile);
}

Element* References::primitive(std::string_view aName, std::string_view aAddress) {
  auto const known = fFiles.fStandIns.find(aName);
  if (known != fFiles.fStandIns.end()) return known->second.fElement.get();
  Metaclass const& metaclass = *Metamodel::instance().metaclass("PrimitiveType");
  Kelm::ClassObject const made =
      createElement(fModel, Kelm::ImmutableClass(metaclass.fClass, Kelm::metaDeviant()));
  Feature const& name = *metaclass.feature("name");
  name.fMethods->setEntry(made.get(), fDeviant, name.fId, valueOf(name, aName));
  fFiles.fStandIns.emplace(aName, StandIn{ElementPtr(made.get()), std::string(aAddress)});
  return made.get();
}

void References::resolveApplications() {
  std::vector<Application>& rows = fFiles.fApplications;
  for (PendingApplication const& application : fApplications) {
    Element* const base = find(application.fAddress, application.fSpot.fFile);
    if (base != nullptr) {
      bool const isSame = !rows.empty() && rows.back().fSpot == application.fSpot;
      std::uint32_t const number = isSame ? rows.back().fNumber : fFiles.fApplicationCount++;
      rows.push_back({ElementPtr(base), application.fName, application.fSpot, application.fBase, number});
      continue;
    }
    fFindings.add(Findings::Weight::Fault, "stereotype on an unknown element", application.fName,
                  "kept as written", application.fSpot, [] { return std::string(); });
  }
}

void References::resolveEntries() {
  std::set<std::pair<Element const*, std::string_view>> known;
  if (!fEntries.empty())
    for (Application const& application : fFiles.fApplications)
      known.emplace(application.fElement.get(), application.fName);
  for (PendingApplication const& entry : fEntries) {
    // Tools have more in their extensions than UML has elements.
    Element* const element = find(entry.fAddress, entry.fSpot.fFile);
    if (element == nullptr) continue;
    bool const isNew = !entry.fName.empty() && known.emplace(element, entry.fName).second;
    fFiles.fApplications.push_back({ElementPtr(element), isNew ? entry.fName : std::string_view(),
                                    entry.fSpot, entry.fBase, fFiles.fApplicationCount++, true});
    if (isNew) ++fFiles.fReport.fStereotypeCount;
  }
}

void References::order() {
  auto const key = [](Linked const& aLink) { return std::pair(aLink.fElement, aLink.fFeature); };
  if (!std::ranges::is_sorted(fLinked, std::less<>(), key))
    std::ranges::stable_sort(fLinked, std::less<>(), key);
  std::vector<Element*> values;
  for (std::size_t from = 0; from < fLinked.size();) {
    std::size_t to = from;
    values.clear();
    for (; to < fLinked.size() && key(fLinked[to]) == key(fLinked[from]); ++to)
      values.push_back(fLinked[to].fValue);
    if (fLinked[from].fFeature->fComposite) addParts(std::span(fLinked).subspan(from, to - from), values);
    if (values.size() > 1) order(*fLinked[from].fElement, *fLinked[from].fFeature, values);
    from = to;
  }
  fLinked = {};
}

void References::addParts(std::span<Linked const> aLinked, std::vector<Element*>& aValues) {
  auto const parts = elementsOf(*aLinked.front().fElement, *aLinked.front().fFeature, fDeviant);
  if (parts.size() <= aValues.size()) return;
  std::unordered_map<Element const*, std::uint64_t> offsets;
  for (Linked const& linked : aLinked) offsets.emplace(linked.fValue, linked.fOffset);
  for (Element* const part : parts) {
    auto const tag = offsets.contains(part) ? std::nullopt : fFiles.tagOf(*part);
    if (tag && offsets.emplace(part, tag->fOffset).second) aValues.push_back(part);
  }
  std::ranges::stable_sort(aValues, {}, [&](Element const* aPart) { return offsets.at(aPart); });
}

void References::order(Element& aElement, Feature const& aFeature, std::span<Element* const> aValues) {
  auto const current = elementsOf(aElement, aFeature, fDeviant);
  if (std::ranges::equal(current, aValues)) return;
  std::unordered_map<Element const*, int> places;
  for (std::size_t at = 0; at < current.size(); ++at) places.emplace(current[at], static_cast<int>(at));
  std::vector<int> from;
  for (Element const* const value : aValues) {
    auto const found = places.find(value);
    if (found == places.end()) continue;
    from.push_back(found->second);
    places.erase(found);
  }
  std::vector<int> to = from;
  std::ranges::sort(to);
  if (to == from) return;
  aFeature.fMethods->getSequenceEntry(&aElement, fDeviant, aFeature.fId)
      ->generic_rearrange(fDeviant, from, to);
}

}  // namespace umlmm::files
