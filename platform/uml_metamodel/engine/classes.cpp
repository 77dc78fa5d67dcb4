#include "engine/classes.h"

#include <array>
#include <cstdlib>
#include <new>
#include <vector>

#include "engine/engine.h"
#include "engine/links.h"
#include "kelm/scriptNames.h"
#include "reflection/meta.h"

namespace umlmm::engine {

namespace {

using Kelm::ClassTable;

/// Everything that is made once for a concrete metaclass.
struct Entry {
  ClassTable fTable{};
  std::vector<std::int16_t> fOffsets;
  std::vector<FeatureIndex> fStored;
  std::vector<FeatureIndex> fFeatureOfWord;
  std::string fVeskName;
  std::string fImmutableVeskName;
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
  aEntry.fTable.fRootOffset =
      static_cast<std::uint16_t>(reinterpret_cast<char*>(sample) - static_cast<char*>(memory));
  aEntry.fTable.fSlotOffset = static_cast<std::uint16_t>(aClass.fSize - aEntry.fTable.fRootOffset);
  destruct(sample);
  std::free(memory);
  aEntry.fTable.fInterfaceOffsets = aEntry.fOffsets.data();
  aEntry.fTable.fInterfaceLimit = aEntry.fOffsets.size();
}

void fillFeatures(Entry& aEntry, Metaclass const& aMetaclass, std::size_t aWords) {
  aEntry.fFeatureOfWord.assign(aWords, kNoFeature);
  for (FeatureIndex const visible : aMetaclass.fVisible) {
    FeatureIndex const root = feature(visible).fRoot;
    Storage const storage = feature(root).fStorage;
    if (storage != Storage::Reference && storage != Storage::List) continue;
    aEntry.fStored.push_back(root);
    std::uint8_t const word = aEntry.fTable.fSlotOfFeature[root];
    aEntry.fFeatureOfWord[word] = root;
    if (ownsParts(feature(root))) aEntry.fTable.fContentWords |= std::uint64_t{1} << word;
  }
  aEntry.fTable.fFeatureOfWord = aEntry.fFeatureOfWord.data();
}

void fillTable(Entry& aEntry, Layout const& aLayout, ElementClass const& aClass) {
  Metaclass const& metaclass = kMetaclasses[aLayout.fMetaclass];
  aEntry.fVeskName = std::string("umlmm.") + metaclass.fName;
  aEntry.fImmutableVeskName = std::string("umlmm.").append(Kelm::scriptNames::kImmutable) + metaclass.fName;
  ClassTable& table = aEntry.fTable;
  table.fVeskName = aEntry.fVeskName.c_str();
  table.fImmutableVeskName = aEntry.fImmutableVeskName.c_str();
  table.fEngine = &kElementEngine;
  table.fMetaClass = reflection::metaClass(aLayout.fMetaclass);
  table.fSlotOfFeature = aLayout.fSlotOfFeature;
  table.fStringWords = aLayout.fStringWords;
  table.fReferenceWords = aLayout.fReferenceWords;
  table.fListWords = aLayout.fListWords;
  table.fSequenceWords = aLayout.fSequenceWords;
  table.fDefaultFlags = aLayout.fDefaultFlags;
  table.fMetaclass = aLayout.fMetaclass;
  table.fIndex = static_cast<std::uint16_t>(&aLayout - kLayouts.data());
  fillInterfaces(aEntry, aClass);
  table.fSize = static_cast<std::uint16_t>(aClass.fSize + std::size_t{8} * aLayout.fWords);
  fillFeatures(aEntry, metaclass, aLayout.fWords);
}

struct Classes {
  std::array<Entry, kConcreteCount> fEntries;
  std::array<std::int16_t, kMetaclassCount> fByMetaclass;

  Classes() {
    fByMetaclass.fill(-1);
    for (std::size_t at = 0; at < fEntries.size(); ++at) {
      fillTable(fEntries[at], kLayouts[at], kElementClasses[at]);
      fByMetaclass[kLayouts[at].fMetaclass] = static_cast<std::int16_t>(at);
    }
  }
};

/// Never destroyed: elements may outlive every static.
Classes const& classes() {
  static Classes const& all = *new Classes();
  return all;
}

std::size_t placeOf(Element const& aElement) noexcept { return aElement.classTable()->fIndex; }

}  // namespace

ClassTable const* classTable(int aMetaclass) {
  int const place = classes().fByMetaclass[static_cast<std::size_t>(aMetaclass)];
  return place < 0 ? nullptr : &classes().fEntries[static_cast<std::size_t>(place)].fTable;
}

Layout const& layoutOf(Element const& aElement) noexcept { return kLayouts[placeOf(aElement)]; }

std::span<FeatureIndex const> storedReferences(Element const& aElement) noexcept {
  return classes().fEntries[placeOf(aElement)].fStored;
}

}  // namespace umlmm::engine
