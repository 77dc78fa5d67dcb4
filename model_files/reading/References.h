#pragma once

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "model_files/reading/Findings.h"
#include "model_files/store/ModelFiles.h"

namespace umlmm::files {

/// References wait here until all elements are made; then each finds what it names.
class References {
 public:
  References(ModelFiles& aFiles, Kelm::Model const& aModel, Findings& aFindings);

  /// `aAddress` is an id, or an address with a file or a path: "a.uml#x", "#//shop/Order". The text lives
  /// until all is resolved.
  void add(Element& aElement, Feature const& aFeature, std::string_view aAddress, Spot aSpot) {
    fPending.push_back({aElement, aFeature, aAddress, aSpot, false});
  }
  /// Makes room for so many more.
  void reserve(std::size_t aCount) {
    std::size_t const all = fPending.size() + aCount;
    if (all > fPending.capacity()) fPending.reserve(std::max(all, 2 * fPending.capacity()));
  }
  /// All addresses of a text.
  void addAll(Element& aElement, Feature const& aFeature, std::string_view aText, Spot aSpot);
  /// Names from the root on that a tool has written with an address.
  void addPath(std::string_view aAddress, std::string_view aPath) {
    if (!aPath.empty()) fPaths.try_emplace(aAddress, aPath);
  }
  /// An element by its universal id, where no id of a file is meant.
  void addUuid(std::string_view aUuid, Element& aElement) { fUuids.emplace_back(aUuid, &aElement); }
  /// A stereotype's reference to what it extends.
  void addApplication(std::string_view aName, std::string_view aAddress, Spot aSpot, std::uint64_t aBase) {
    fApplications.push_back({aName, aAddress, aSpot, aBase});
  }
  /// The same of what a tool keeps in its extension; the name is empty for no stereotype.
  void addEntry(std::string_view aName, std::string_view aAddress, Spot aSpot) {
    fEntries.push_back({aName, aAddress, aSpot, 0});
  }

  /// Files that are not read, are there, and hold parts of elements that were read, or things at addresses
  /// whose place was told. Each is named once.
  std::vector<std::string> wanted();
  /// A file holds nothing.
  void drop(std::uint32_t aFile);

  /// Resolves some more; true when none is left.
  bool step(std::size_t aCount);
  /// What comes when all are resolved.
  void finish();
  std::size_t count() const noexcept { return fPending.size(); }
  std::size_t done() const noexcept { return fNext; }

 private:
  /// Small, as there are millions.
  struct Pending {
    Element* fElement;
    Feature const* fFeature;
    char const* fText;
    std::uint32_t fLength;
    std::uint32_t fFile;
    std::uint64_t fOffset : 63;
    /// Several addresses with blanks between.
    std::uint64_t fIsList : 1;

    Pending(Element& aElement, Feature const& aFeature, std::string_view aAddress, Spot aSpot, bool aIsList)
        : fElement(&aElement),
          fFeature(&aFeature),
          fText(aAddress.data()),
          fLength(static_cast<std::uint32_t>(aAddress.size())),
          fFile(aSpot.fFile),
          fOffset(aSpot.fOffset),
          fIsList(aIsList) {}
    std::string_view address() const noexcept { return {fText, fLength}; }
    Spot spot() const noexcept { return {fFile, fOffset}; }
  };
  struct PendingApplication {
    std::string_view fName;
    std::string_view fAddress;
    Spot fSpot;
    /// The attribute or child that has the address.
    std::uint64_t fBase;
  };

  Element* find(std::string_view aAddress, std::uint32_t aFile);
  Element* findUuid(std::string_view aUuid);
  Element* findInFile(ModelFile& aFile, std::string_view aFragment);
  Element* walk(ModelFile& aFile, std::string_view aPath);
  /// The first part of this name; null for none.
  Element* partCalled(Element& aOwner, std::string_view aName);
  ModelFile* fileAt(std::string_view aFile, std::uint32_t aFrom);
  ModelFile* searchFile(std::string_view aFile, std::uint32_t aFrom);
  /// The path that an address means, seen from a file; empty for one that lies nowhere.
  std::filesystem::path whereIs(std::string_view aFile, std::uint32_t aFrom, bool& aIsTold) const;
  std::filesystem::path const& location(std::size_t aFile);
  Element* primitive(std::string_view aName, std::string_view aAddress);
  /// `aFound`: what has the address for its id in the reference's own file, or null.
  void resolve(Pending const& aReference, Element* aFound);
  void resolveAll(Pending const& aReferences);
  /// Null for a value that is nowhere.
  void settle(Pending const& aReference, Element* aValue);
  void resolveApplications();
  void resolveEntries();
  void link(Pending const& aReference, Element& aValue);
  /// The part that a composite feature means by an id. Of several with this id it is one of its own: it would
  /// take another one away from where it stands.
  Element& partMeant(Pending const& aReference, Element& aValue);
  /// Puts lists into the order in which the files name their values: links came as their other ends were
  /// read.
  void order();
  void order(Element& aElement, Feature const& aFeature, std::span<Element* const> aValues);

  ModelFiles& fFiles;
  Kelm::Model fModel;
  Kelm::Deviant fDeviant;
  Findings& fFindings;
  /// Answers of `fileAt`.
  std::map<std::pair<std::uint32_t, std::string_view>, ModelFile*> fFilesAt;
  std::vector<std::filesystem::path> fLocations;
  /// Answers of `partCalled`, which hold until another link moves parts.
  struct PartNames {
    std::unordered_map<std::string, Element*> fParts;
    std::size_t fLinks = 0;
  };
  std::unordered_map<Element const*, PartNames> fPartNames;
  std::size_t fPartLinks = 0;
  /// Addresses that were looked at for files that are wanted, and how far.
  std::set<std::pair<std::uint32_t, std::string_view>> fLookedAt;
  std::size_t fSeen = 0;
  std::vector<Pending> fPending;
  /// Sorted from the first question on.
  std::vector<std::pair<std::string_view, Element*>> fUuids;
  bool fIsSorted = false;
  std::unordered_map<std::string_view, std::string_view> fPaths;
  std::vector<PendingApplication> fApplications;
  std::vector<PendingApplication> fEntries;
  /// Of lists.
  struct Linked {
    Element* fElement;
    Feature const* fFeature;
    Element* fValue;
    std::uint64_t fOffset;
  };
  /// Parts that stand in their owner itself, between those that it names.
  void addParts(std::span<Linked const> aLinked, std::vector<Element*>& aValues);
  std::vector<Linked> fLinked;
  std::size_t fNext = 0;
  /// Made when the first composite feature is resolved.
  std::optional<std::unordered_set<std::string_view>> fDuplicateIds;
};

}  // namespace umlmm::files
