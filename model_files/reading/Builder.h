#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "model_files/reading/Findings.h"
#include "model_files/reading/Pieces.h"
#include "model_files/reading/References.h"
#include "model_files/reading/TagReader.h"
#include "model_files/store/ModelFiles.h"

namespace umlmm::files {

/// Makes elements from the tags of one file, each with its values; references wait in `References`.
class Builder {
 public:
  enum class Progress { Going, NeedsPiece, Done };

  /// `aIsAgain`: for writing, with a look at how the file writes things.
  Builder(ModelFiles& aFiles, std::uint32_t aFile, Kelm::Model const& aModel, Findings& aFindings,
          References& aReferences, bool aIsAgain);

  /// Parses the next piece of the text. First, and whenever `step` asks for one.
  pugi::xml_parse_result parse();
  /// Handles some more tags.
  Progress step(std::size_t aCount);
  /// What comes when none is left.
  void finish();
  /// Offset of the tag that comes next.
  std::size_t offset() const noexcept { return fOffset; }
  /// Elements of UML 2 that were found, known metaclass or not.
  std::size_t found() const noexcept { return fFound; }
  std::string_view umlAddress() const noexcept { return fTags.umlAddress(); }
  std::string_view xmiAddress() const noexcept { return fTags.xmiAddress(); }

 private:
  /// What the children of a tag are.
  enum class Content : std::uint8_t {
    Covered,             ///< Elements and their values.
    Uncovered,           ///< The same in an element that no metaclass covers.
    Extension,           ///< A tool's own.
    UncoveredExtension,  ///< The same in an element that no metaclass covers.
    Entries,             ///< A tool's own, with entries about elements.
    Nothing              ///< Nothing to be read.
  };
  /// A tag whose children are being handled.
  struct Frame {
    pugi::xml_node fNext;
    /// Null at the top of a file, and in what no metaclass covers.
    Element* fElement;
    Metaclass const* fMetaclass;
    std::size_t fOpen;
    Content fContent;
    /// Of the tag's name.
    std::uint64_t fOffset;
  };
  using Head = TagReader::Head;
  // What becomes of things that were not understood.
  static constexpr std::string_view kKept = "kept as written";
  static constexpr std::string_view kAtTop = "stands at the top level of the model";

  Spot spotOf(char const* aName) const noexcept { return {fFile, fPieces.offsetOf(aName)}; }
  Spot spotOf(pugi::xml_node aNode) const noexcept { return spotOf(aNode.name()); }

  /// Whether the piece ends inside of what the tag is about, and that has to be there as a whole: it is
  /// handled again when it is. To be asked before anything is done, where more than the tag is read.
  bool waitsForRest(pugi::xml_node aNode);
  /// Whether the piece ends inside of it.
  bool goesOn(pugi::xml_node aNode) const noexcept;
  void handle(pugi::xml_node aNode);
  void handleTop(pugi::xml_node aNode, QualifiedName aName, Head const& aHead);
  void handleInside(Frame const& aFrame, pugi::xml_node aNode, QualifiedName aName, Head const& aHead);
  void handleUncovered(Frame const& aFrame, pugi::xml_node aNode, QualifiedName aName, Head const& aHead);
  /// What the file calls the owner that no metaclass covers.
  std::string typeSaidOf(Frame const& aFrame) const;
  void handleValue(Frame const& aFrame, Feature const& aFeature, pugi::xml_node aNode, Head const& aHead);
  void handleReference(Frame const& aFrame, Feature const& aFeature, pugi::xml_node aNode,
                       std::string_view aName, Head const& aHead);
  void handlePrefixed(Frame const& aFrame, pugi::xml_node aNode, QualifiedName aName, Head const& aHead);
  void handleBeside(Frame const& aFrame, pugi::xml_node aNode);
  void noteTool(pugi::xml_node aNode);
  bool handleApplication(pugi::xml_node aNode, QualifiedName aName);

  void noteStyle(pugi::xml_node aNode, Feature const* aFeature, Metaclass const& aMetaclass);
  /// Null if the metaclass has none.
  Feature const* featureOf(Metaclass const& aMetaclass, std::string_view aName,
                           TagReader::Name const& aMeaning);
  Element& make(Metaclass const& aMetaclass, pugi::xml_node aNode, Head const& aHead);
  void own(Element& aOwner, Feature const& aFeature, Element& aPart, pugi::xml_node aNode);
  void readAttribute(Element& aElement, Metaclass const& aMetaclass, TagReader::Attribute const& aAttribute);
  bool setValue(Element& aElement, Feature const& aFeature, std::string_view aText, Spot aSpot);
  bool assign(Element& aElement, Feature const& aFeature, std::string_view aText, Spot aSpot);
  /// What files say of features that follow from others, when those are known.
  void setDerived();
  void enter(pugi::xml_node aNode, Element* aElement, Metaclass const* aMetaclass,
             Content aContent = Content::Covered);

  void keep(Element* aElement, Spot aSpot, bool aIsAttribute = false) {
    fFiles.fKept.push_back({ElementPtr(aElement), aSpot, aIsAttribute});
  }
  void note(std::string_view aKind, std::string_view aWhat, std::string_view aOutcome, Spot aSpot);
  void fault(std::string_view aKind, std::string_view aWhat, std::string_view aOutcome, Spot aSpot);
  std::string path() const;
  /// A name with its owner: "Class.guard".
  std::string_view in(Metaclass const& aMetaclass, std::string_view aName);

  ModelFiles& fFiles;
  ModelFile& fOwn;
  std::uint32_t fFile;
  Kelm::Model fModel;
  Kelm::Deviant fDeviant;
  Findings& fFindings;
  References& fReferences;
  Pieces fPieces;
  TagReader fTags{fPieces};
  PairMemo<Feature const*> fFeatures;
  /// Where the next piece begins, and how long it has to be at least.
  std::size_t fFrom = 0;
  std::size_t fLength = 0;
  bool fIsWaiting = false;
  std::vector<Frame> fFrames;
  struct Derived {
    Element* fElement;
    Feature const* fFeature;
    std::string fText;
    Spot fSpot;
  };
  std::vector<Derived> fDerived;
  std::size_t fOffset = 0;
  std::size_t fFound = 0;
  /// Elements by metaclass.
  std::vector<std::size_t> fCounts;
  std::string fScratch;
  bool fIsAgain;
};

}  // namespace umlmm::files
