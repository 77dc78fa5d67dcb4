#include "engine/classTables.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <deque>
#include <new>
#include <vector>

#include "engine/engine.h"
#include "engine/links.h"
#include "engine/metaobjects.h"
#include "kelm/scriptNames.h"

namespace umlmm::engine {

namespace {

using Kelm::ClassTable;

/// Everything that is made once for a concrete metaclass; what elements know of it comes first.
struct Entry : ClassTable {
  Entry() : ClassTable{} {}

  Layout const* fLayout = nullptr;
  std::vector<std::int16_t> fOffsets;
  std::vector<FeatureIndex> fStored;
  std::vector<FeatureIndex> fRootOfWord;
  std::string fName;
  std::string fImmutableName;
};

void fillInterfaces(Entry& aEntry, ElementClass const& aClass) {
  // The interfaces lie where the compiler put them: a sample element tells.
  void* const memory = std::aligned_alloc(alignof(std::max_align_t), (aClass.fSize + 15) / 16 * 16);
  if (memory == nullptr) throw std::bad_alloc();
  Element* const sample = aClass.fConstruct(memory);
  // Tags are handed out as they are asked for, here and meanwhile in other threads.
  std::vector<std::int16_t> all(Kelm::CooperativeVisitor::internal::tagLimit(), ClassTable::kNoInterface);
  using namespace Kelm;
  for (auto const tag : {tagPair<ReferenceCountingIntf, Kelm::VisitationDomain>().fType,
                         tagPair<Kelm::NSInterface::ObjectIntf, Kelm::VisitationDomain>().fType,
                         tagPair<Kelm::NSInterface::ClassObjectIntf, Kelm::VisitationDomain>().fType})
    placeInterface(all, tag, 0);
  aClass.fOffsets(*sample, all);
  aEntry.fOffsets = std::move(all);
  aEntry.fRootOffset =
      static_cast<std::uint16_t>(reinterpret_cast<char*>(sample) - static_cast<char*>(memory));
  aEntry.fSlotOffset = static_cast<std::uint16_t>(aClass.fSize - aEntry.fRootOffset);
  destruct(sample);
  std::free(memory);
  aEntry.fInterfaceOffsets = aEntry.fOffsets.data();
  aEntry.fInterfaceLimit = aEntry.fOffsets.size();
}

void fillFeatures(Entry& aEntry, Metaclass const& aMetaclass, std::size_t aWords) {
  aEntry.fRootOfWord.assign(aWords, kNoFeature);
  for (FeatureIndex const visible : aMetaclass.fVisible) {
    FeatureIndex const root = feature(visible).fRoot;
    Storage const storage = feature(root).fStorage;
    if ((storage != Storage::Reference && storage != Storage::List) || isAdded(root)) continue;
    aEntry.fStored.push_back(root);
    std::uint8_t const word = aEntry.fSlotOfFeature[root];
    aEntry.fRootOfWord[word] = root;
    if (ownsParts(feature(root))) aEntry.fContentWords |= std::uint64_t{1} << word;
  }
  aEntry.fFeatureOfWord = aEntry.fRootOfWord.data();
}

/// `aFace`: what scripts see of the elements, a metaclass of the catalogue.
void fillTable(Entry& aEntry, Layout const& aLayout, ElementClass const& aClass, Metaclass const& aFace) {
  aEntry.fName = std::string("umlmm.") + aFace.fName;
  aEntry.fImmutableName = std::string("umlmm.").append(Kelm::scriptNames::kImmutable) + aFace.fName;
  aEntry.fLayout = &aLayout;
  ClassTable& table = aEntry;
  table.fVeskName = aEntry.fName.c_str();
  table.fImmutableVeskName = aEntry.fImmutableName.c_str();
  table.fEngine = &kElementEngine;
  table.fMetaClass = metaClass(aLayout.fMetaclass);
  table.fSlotOfFeature = aLayout.fSlotOfFeature;
  table.fStringWords = aLayout.fStringWords;
  table.fReferenceWords = aLayout.fReferenceWords;
  table.fListWords = aLayout.fListWords;
  table.fSequenceWords = aLayout.fSequenceWords;
  table.fDefaultFlags = aLayout.fDefaultFlags;
  for (unsigned const general : metaclass(aLayout.fMetaclass).fAncestors)
    if (general < ClassTable::kGeneralsLimit)
      table.fGenerals[general / 64] |= std::uint64_t{1} << general % 64;
  table.fMetaclass = aLayout.fMetaclass;
  table.fIndex = static_cast<std::uint16_t>(&aClass - kElementClasses);
  fillInterfaces(aEntry, aClass);
  table.fSize = static_cast<std::uint16_t>(aClass.fSize + std::size_t{8} * aLayout.fWords);
  fillFeatures(aEntry, metaclass(aLayout.fMetaclass), aLayout.fWords);
}

struct Classes {
  std::array<Entry, kConcreteCount> fEntries;
  /// By metaclass; null for abstract ones.
  std::vector<Entry const*> fByMetaclass = std::vector<Entry const*>(kMetaclassCount);
  std::deque<Entry> fAdded;

  Classes() {
    for (std::size_t at = 0; at < fEntries.size(); ++at) {
      Layout const& layout = kLayouts[at];
      fillTable(fEntries[at], layout, kElementClasses[at], metaclass(layout.fMetaclass));
      fByMetaclass[layout.fMetaclass] = &fEntries[at];
    }
  }
};

/// Never destroyed: elements may outlive every static.
Classes& classes() {
  static Classes& all = *new Classes();
  return all;
}

Entry const& entryOf(Element const& aElement) noexcept {
  return static_cast<Entry const&>(*aElement.classTable());
}

bool isCatalogued(std::uint16_t aMetaclass) noexcept { return aMetaclass < kMetaclassCount; }

/// The class of the catalogue that has all interfaces of a metaclass and the fewest beside them; null if
/// there is none.
ElementClass const* shapeOf(Metaclass const& aMetaclass) {
  ElementClass const* best = nullptr;
  for (std::size_t at = 0; at < kConcreteCount; ++at) {
    int const candidate = kLayouts[at].fMetaclass;
    bool const fits = std::ranges::all_of(aMetaclass.fAncestors, [&](std::uint16_t aGeneral) {
      return !isCatalogued(aGeneral) || conforms(candidate, aGeneral);
    });
    if (fits && (best == nullptr || kElementClasses[at].fSize < best->fSize)) best = &kElementClasses[at];
  }
  return best;
}

/// Elements answer to the interfaces of their own ancestors alone.
void hideOtherInterfaces(Entry& aEntry, Metaclass const& aMetaclass) {
  for (int index = 0; index < kMetaclassCount; ++index) {
    auto const tag =
        Kelm::CooperativeVisitor::internal::GetTag(*kInterfaceTypes[index], typeid(Kelm::VisitationDomain));
    if (tag < aEntry.fOffsets.size() && std::ranges::count(aMetaclass.fAncestors, index) == 0)
      aEntry.fOffsets[tag] = ClassTable::kNoInterface;
  }
}

}  // namespace

bool hasShape(Metaclass const& aMetaclass) { return shapeOf(aMetaclass) != nullptr; }

void addClass(Metaclass const& aMetaclass, Layout const& aLayout) {
  Classes& all = classes();
  Metaclass const& face = metaclass(*std::ranges::find_if(aMetaclass.fAncestors, isCatalogued));
  Entry& entry = all.fAdded.emplace_back();
  try {
    fillTable(entry, aLayout, *shapeOf(aMetaclass), face);
    hideOtherInterfaces(entry, aMetaclass);
    if (all.fByMetaclass.size() <= aMetaclass.fIndex) all.fByMetaclass.resize(aMetaclass.fIndex + 1U);
  } catch (...) {
    all.fAdded.pop_back();
    throw;
  }
  all.fByMetaclass[aMetaclass.fIndex] = &entry;
}

ClassTable const* classTable(int aMetaclass) {
  auto const& all = classes().fByMetaclass;
  auto const place = static_cast<std::size_t>(aMetaclass);
  return place < all.size() ? all[place] : nullptr;
}

Layout const& layoutOf(Element const& aElement) noexcept { return *entryOf(aElement).fLayout; }

std::span<FeatureIndex const> storedReferences(Element const& aElement) noexcept {
  return entryOf(aElement).fStored;
}

}  // namespace umlmm::engine
