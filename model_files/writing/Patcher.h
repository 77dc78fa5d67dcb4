#pragma once

#include <map>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "model_files/dialect/Style.h"
#include "model_files/store/ModelFiles.h"
#include "model_files/text/markup.h"
#include "model_files/writing/Comparison.h"
#include "model_files/writing/Edits.h"
#include "model_files/writing/Tags.h"

namespace umlmm::files {

/// Gives the text of one file with the changes of the model in it. Where nothing has changed, nothing of the
/// text does.
class Patcher {
 public:
  /// `aRead` is what the files hold now, read anew; its elements are paired with those of the model.
  Patcher(Kelm::Model const& aModel, ModelFiles const& aFiles, std::uint32_t aFile, ModelFiles const& aRead,
          Comparison& aComparison);

  /// The new text. `aOrder` receives the elements in the order of their tags.
  std::string write(std::vector<Element*>& aOrder);

 private:
  /// The tag of an element with its children, looked at when something in it changes.
  struct Tag {
    std::vector<markup::Attribute> fAttributes;
    std::vector<markup::Child> fChildren;
    std::size_t fName = 0;
    /// Behind the last attribute.
    std::size_t fLast = 0;
    /// Of the end tag; 0 for none.
    std::size_t fEnd = 0;
  };
  using Write = Edits::Write;

  void compare(std::size_t aNumber);
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
  /// Whether a part of the feature stands under another tag, so that the feature has to name it.
  bool isNamed(Element& aOwner, Tag const& aTag, Feature const& aFeature, Element& aPart,
               PartPlaces const& aPlaces) const;
  /// Elements of the top level may have their tags in others, which go; they need tags at the top then.
  /// Whether there are such.
  bool rescueRoots();
  void patchTop();
  void removeApplications();
  void addIds();
  /// New tags in the place of old ones, one after another; those that are too many go, those that lack a
  /// place come behind.
  void replaceChildren(Tag const& aTag, std::vector<markup::Child> const& aOld, std::vector<Write> aNew);

  Tag tagOf(std::size_t aName) const;
  std::vector<markup::Child> childrenCalled(Tag const& aTag, Element const& aElement,
                                            Feature const& aFeature) const;
  markup::Attribute const* attributeCalled(Tag const& aTag, Element const& aElement,
                                           Feature const& aFeature) const;
  void setAttribute(Tag const& aTag, markup::Attribute const* aOld, std::string_view aName,
                    std::string const& aValue);
  void removeAttribute(markup::Attribute const& aAttribute);
  void removeTag(std::size_t aFrom, std::size_t aTo);
  void addChild(Tag const& aTag, std::size_t aBehind, Write aChild);
  void flushChildren();
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
  std::string_view fText;
  Edits fEdits;
  /// The tags of elements, by their numbers.
  std::unordered_map<Element const*, std::size_t> fNodes;
  std::unordered_set<Element const*> fHomeless;
  /// What changed features of owners hold, for those that were asked for.
  std::map<std::pair<Element const*, Feature const*>, std::unordered_set<Element const*>> fMembers;
  std::unordered_set<Element*> fChangedOwners;
  std::unordered_set<Element const*> fGivenIds;
  /// Children of tags that have none, by the place of the tag's name.
  std::map<std::size_t, std::vector<Write>> fFirstChildren;
  std::vector<Element*>* fOrder = nullptr;
  Tags fTags;
};

}  // namespace umlmm::files
