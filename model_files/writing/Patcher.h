#pragma once

#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "model_files/dialect/Style.h"
#include "model_files/store/ModelFiles.h"
#include "model_files/text/markup.h"
#include "model_files/writing/Applications.h"
#include "model_files/writing/Comparison.h"
#include "model_files/writing/TagEdits.h"
#include "model_files/writing/Tags.h"

namespace umlmm::files {

/// Gives the text of one file with the changes of the model in it. Where nothing has changed, nothing of the
/// text does.
class Patcher {
 public:
  using Elements = std::unordered_set<Element const*>;
  using Places = std::set<std::pair<Element const*, Feature const*>>;

  /// `aRead` is what the files hold now, read anew; its elements are paired with those of the model.
  /// `aMoved` have come into another file than their tags stand in, and are named in other ways now.
  /// `aForced` are written anew although they hold what they held: the text contradicts itself there.
  Patcher(Kelm::Model const& aModel, ModelFiles const& aFiles, std::uint32_t aFile, ModelFiles const& aRead,
          Comparison& aComparison, Elements const& aMoved, Places const& aForced);

  /// The id by which an element of another file is known there.
  std::function<std::string(std::size_t aFile, Element&)> fIdIn;
  /// The id of an element in this file.
  std::string const& idOf(Element& aElement) { return fTags.idOf(aElement); }
  /// Ids that elements get; more are given as texts are written that name them.
  std::size_t newIds() const noexcept { return fTags.newIds().size(); }
  /// Elements that got another id, as theirs means another element. If there are more than this was told to
  /// renew, all has to be begun again with them: references to them may stand where nothing else has changed.
  Tags::NewIds renewed() const;
  /// The ids that a patcher before this one has renewed; to be called first.
  void renew(Tags::NewIds const& aIds);

  /// The new text. `aOrder` receives the elements in the order of their tags. To be called again as long as
  /// there are more new ids.
  std::string write(std::vector<Element*>& aOrder);
  /// The numbers of the applications, in the order of theirs.
  std::vector<std::uint32_t> const& applications() const noexcept { return fApplications.order(); }

 private:
  using Tag = TagEdits::Tag;
  using Write = Edits::Write;

  void compareAll();
  void compare(std::size_t aNumber);
  bool isForeign(Element& aElement) const;
  /// Whether a feature names something that has moved.
  bool namesMoved(Element& aElement, Feature const& aFeature) const;
  /// The same of an element that stands where another one refers to it: a reference takes its place.
  bool becomesReference(std::size_t aNumber);
  bool isAtHome(Element& aElement, Element& aRead, std::size_t aName);
  void patch(Element& aElement, Tag const& aTag, Feature const& aFeature);
  /// Removes "upper" where "upperValue" has changed, from which it follows.
  void removeDerived(Element& aElement, Tag const& aTag, Feature const& aFeature);
  void patchValue(Element& aElement, Tag const& aTag, Feature const& aFeature);
  void patchReferences(Element& aElement, Tag const& aTag, Feature const& aFeature,
                       std::vector<Element*> const& aValues);
  void patchParts(Element& aOwner);
  void patchParts(Element& aOwner, Tag const& aTag, Feature const& aFeature,
                  std::vector<Element*> const& aParts, PartPlaces const& aPlaces);
  /// Whether a feature has to name a part that stands under another tag.
  enum class Naming {
    None,
    Implied,  ///< The feature of its tag tells as much.
    Needed
  };
  /// `aPlace` receives the tag of one that has it in another feature.
  Naming namingOf(Element& aOwner, Tag const& aTag, Feature const& aFeature, Element& aPart,
                  PartPlaces const& aPlaces, markup::Child& aPlace) const;
  struct Names {
    /// Parts that stand elsewhere, or are to.
    Elements fElsewhere;
    /// Parts that a tag of the feature names.
    Elements fNeeded;
    /// Those that none has to name, and where their tags stand.
    std::unordered_map<Element const*, markup::Child> fImplied;
  };
  /// Names parts in an attribute, or tells for which there shall be a tag; `aStanding` receives those that
  /// have one. Tags that name nothing go.
  Names patchNames(Element& aOwner, Tag const& aTag, Feature const& aFeature,
                   std::vector<Element*> const& aParts, PartPlaces const& aPlaces,
                   std::unordered_map<Element const*, markup::Child>& aStanding);
  void patchTop();
  /// Tags of an owner that name parts in other files, by what they name.
  std::unordered_map<Element const*, markup::Child> foreignParts(Element& aOwner, Tag const& aTag,
                                                                 Feature const& aFeature) const;
  /// What stands beside an element that comes from another file.
  std::vector<std::string> keptBy(Element& aElement);
  /// Declares the prefixes of a tag of another file that this one lacks.
  void declarePrefixes(std::uint32_t aFile, std::string& aTag);
  /// Further tags beside the roots; a root that stands alone gets a frame.
  void addAtTop(std::vector<Write> aAdded);
  void addIds();

  std::vector<markup::Child> childrenCalled(Tag const& aTag, Element const& aElement,
                                            Feature const& aFeature) const;
  markup::Attribute const* attributeCalled(Tag const& aTag, Element const& aElement,
                                           Feature const& aFeature) const;
  /// The same; of several attributes the last one counts, and the others go.
  markup::Attribute const* onlyAttribute(Tag const& aTag, Element const& aElement, Feature const& aFeature);
  std::string render();
  std::string addressOf(Element& aElement) const;
  void noteCopied(std::size_t aFrom, std::size_t aTo);
  /// A tag that is there, in a new place; null for the top.
  void writeNode(Element& aElement, std::string_view aTagName, Feature const* aFeature, std::string& aOut);

  Kelm::Model fModel;
  ModelFiles const& fFiles;
  ModelFile const& fFile;
  std::uint32_t fNumber;
  ModelFiles const& fRead;
  Comparison& fComparison;
  Elements const& fMoved;
  Places const& fForced;
  bool fIsCompared = false;
  /// Of files from which elements have come.
  std::map<std::uint32_t, std::map<std::string, std::string>> fPrefixes;
  std::string_view fText;
  TagEdits fEdits;
  /// The tags of elements, by their numbers.
  std::unordered_map<Element const*, std::size_t> fNodes;
  std::unordered_set<Element const*> fHomeless;
  /// Where the tags of those end, if they are still there, and the last of these places.
  std::vector<std::pair<std::size_t, Element*>> fMovedTags;
  std::size_t fMovedTo = 0;
  /// Tags of elements that stood where they are referred to, and become references.
  std::unordered_set<std::size_t> fReplaced;
  /// The end of the last tag that goes with its element, which is gone or in another file now: what stands in
  /// an uncovered part of it loses its place.
  std::size_t fGoneTo = 0;
  /// What changed features of owners hold, for those that were asked for.
  std::map<std::pair<Element const*, Feature const*>, std::unordered_set<Element const*>> fMembers;
  std::unordered_set<Element*> fChangedOwners;
  std::unordered_set<Element const*> fGivenIds;
  std::vector<Element*>* fOrder = nullptr;
  Tags fTags;
  Applications fApplications;
  std::vector<Applications::Cut> fCuts;
};

}  // namespace umlmm::files
