#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "model_files/dialect/Style.h"
#include "model_files/store/ModelFiles.h"
#include "model_files/writing/Comparison.h"

namespace umlmm::files {

/// Whether all values of a feature are values of another one.
bool isSubsetOf(Feature const& aSpecial, Feature const& aGeneral);

/// The feature under which each part of an owner is written: of those that hold it the most general. The
/// others name it by its id.
using PartPlaces = std::unordered_map<Element const*, Feature const*>;
PartPlaces placesOf(Element const& aOwner, Kelm::Deviant const& aDeviant);

/// Elements that were made from a tag or what stands in it.
std::span<Made const> madeIn(ModelFile const& aFile, std::uint64_t aTag);
/// What is kept beside an element, as a tag; `aWrite` writes the elements that stand in it.
std::string textOf(ModelFile const& aFile, Kept const& aKept,
                   std::function<void(Made const&, std::string& aOut)> const& aWrite);
/// The same of a reference that leads nowhere.
std::string textOf(Dangling const& aDangling);

/// Writes elements as new tags, in a style.
class Tags {
 public:
  /// How lines end and what a level of depth adds; both empty for a text without lines.
  struct Layout {
    std::string fLineEnd;
    std::string fUnit;
  };

  /// `aRead` is a model in which fresh elements show what need not be written.
  Tags(Kelm::Model const& aModel, Kelm::Model const& aRead, Style const& aStyle, Layout aLayout);

  /// Whether an element has a tag in this text, or gets one; others are named by file and id.
  std::function<std::string(Element&)> fForeignAddress;
  /// The id that an element has in a text already; empty for none.
  std::function<std::string(Element&)> fKnownId;
  /// Writes an element that has a tag already; false for one that has none.
  std::function<bool(Element&, std::string_view aTagName, Feature const*, std::string&)> fWriteKnown;

  /// Further tags that stand in an element, as they are.
  std::function<std::vector<std::string>(Element&)> fKept;

  /// The text names an element by this id, and so no other one.
  void useId(std::string_view aId, Element const& aElement) {
    fUsedIds.try_emplace(std::string(aId), &aElement);
  }
  /// No element may get this id.
  void reserveId(std::string_view aId) { fUsedIds.try_emplace(std::string(aId), nullptr); }
  void order(std::vector<Element*>& aOrder) noexcept { fOrder = &aOrder; }

  /// An element as a part of a feature, or as a root: `aTagName` is "ownedAttribute" or "uml:Class"; or under
  /// a name that no feature has. Without blanks before and behind.
  void write(Element& aElement, std::string_view aTagName, Feature const* aFeature,
             std::string const& aIndent, std::string& aOut);
  /// A reference as a tag of its own.
  void writeReference(std::string_view aName, Element& aValue, std::string& aOut);
  void attribute(std::string& aOut, std::string_view aName, std::string_view aValue) const;
  std::string typeOf(Element const& aElement) const;
  /// Whether the type has to be written beside a tag of the feature.
  bool needsType(Element const& aElement, Feature const* aFeature) const;
  /// Whether the element lacks a value that it would have if nothing were written.
  bool needsNil(Element const& aElement, Feature const& aFeature);
  /// A tag that says so.
  static void writeNil(std::string_view aName, std::string& aOut);
  /// Whether this end of a link is written, and not only the other one.
  bool writesEnd(Feature const& aFeature) const;

  /// The id by which this text names an element; empty for one that other texts hold.
  std::string localId(Element& aElement);
  std::string const& idOf(Element& aElement);
  /// One that nobody has, the same for the same text.
  std::string newId(std::string_view aSeed, Element const* aElement = nullptr);
  std::string const& idName() const noexcept { return fStyle.fIdName; }
  Layout const& layout() const noexcept { return fLayout; }
  Style const& style() const noexcept { return fStyle; }
  using NewIds = std::unordered_map<Element*, std::string>;
  /// Of elements that had none, or one that means another element.
  NewIds const& newIds() const noexcept { return fNewIds; }
  /// The new id of an element that was asked for before.
  void renew(Element& aElement, std::string const& aId) {
    useId(aId, aElement);
    fIds[&aElement] = fNewIds[&aElement] = aId;
  }

 private:
  /// A tag that is open: its parts, and the one that comes next.
  struct Open {
    std::string fTagName;
    std::string fIndent;
    std::vector<std::pair<Element*, Feature const*>> fParts;
    std::size_t fNext = 0;
  };
  /// A start tag and what comes before the parts; what has parts is left open.
  void start(Element& aElement, std::string_view aTagName, Feature const* aFeature,
             std::string const& aIndent, std::string& aOut, std::vector<Open>& aOpen);
  std::string innerIndent(std::string const& aIndent) const;
  void newLine(std::string_view aIndent, std::string& aOut) const;
  void writeValues(Element& aElement, Feature const& aFeature, std::string& aAttributes,
                   std::vector<std::string>& aChildren);
  void writeReferences(Feature const& aFeature, std::vector<Element*> const& aValues,
                       std::string& aAttributes, std::vector<std::string>& aChildren);
  Element& pristine(Metaclass const& aMetaclass);
  /// The id that an element has already; empty for none.
  std::string givenId(Element& aElement) const;
  std::string seedOf(Element& aElement);

  Kelm::Deviant fDeviant;
  Kelm::Model fReadModel;
  Style const& fStyle;
  Layout fLayout;
  std::unordered_map<std::string, Element const*> fUsedIds;
  std::unordered_map<Element const*, std::string> fIds;
  NewIds fNewIds;
  std::unordered_map<Metaclass const*, ElementPtr> fPristine;
  std::vector<Element*>* fOrder = nullptr;
};

}  // namespace umlmm::files
