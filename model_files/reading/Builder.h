#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "model_files/dialect/namespaces.h"
#include "model_files/reading/Findings.h"
#include "model_files/reading/References.h"
#include "model_files/store/ModelFiles.h"

namespace umlmm::files {

/// Makes elements from the tags of one file, each with its values; references wait in `References`.
class Builder {
 public:
  /// `aText` is where the parser has put the file's text: offsets count from its start. `aIsAgain`: for
  /// writing, with a look at how the file writes things.
  Builder(ModelFiles& aFiles, std::uint32_t aFile, Kelm::Model const& aModel, Findings& aFindings,
          References& aReferences, char const* aText, bool aIsAgain);

  void start(pugi::xml_document const& aDocument);
  /// Handles some more tags; true when none is left.
  bool step(std::size_t aCount);
  /// What comes when none is left.
  void finish();
  /// Offset of the tag that comes next.
  std::size_t offset() const noexcept { return fOffset; }
  /// Elements of UML 2 that were found, known metaclass or not.
  std::size_t found() const noexcept { return fFound; }
  std::string_view umlAddress() const noexcept { return fUmlAddress; }
  std::string_view xmiAddress() const noexcept { return fXmiAddress; }

 private:
  /// A tag whose children are being handled.
  struct Frame {
    pugi::xml_node fNext;
    /// Null at the top of a file, and in what no metaclass covers.
    Element* fElement;
    Metaclass const* fMetaclass;
    std::size_t fOpen;
    /// In an element that no metaclass covers.
    bool fIsUncovered;
  };
  /// What the attributes of a tag say of the tag itself.
  struct Head {
    std::string_view fType;
    Space fTypeSpace = Space::None;
    std::string_view fId;
    std::string_view fUuid;
    std::string_view fIdref;
    std::string_view fHref;
    bool fIsNil = false;
  };

  std::uint64_t offsetOf(char const* aName) const noexcept {
    return static_cast<std::uint64_t>(aName - fText);
  }
  Spot spotOf(char const* aName) const noexcept { return {fFile, offsetOf(aName)}; }
  Spot spotOf(pugi::xml_node aNode) const noexcept { return spotOf(aNode.name()); }

  void declarePrefixes(pugi::xml_node aNode);
  Head headOf(pugi::xml_node aNode) const;
  void handle(pugi::xml_node aNode);
  void handleTop(pugi::xml_node aNode, QualifiedName aName, Head const& aHead);
  void handleInside(Frame const& aFrame, pugi::xml_node aNode, QualifiedName aName, Head const& aHead);
  void handleUncovered(Frame const& aFrame, pugi::xml_node aNode, QualifiedName aName, Head const& aHead);
  void handleValue(Frame const& aFrame, Feature const& aFeature, pugi::xml_node aNode, Head const& aHead);
  void handleReference(Frame const& aFrame, Feature const& aFeature, pugi::xml_node aNode, Head const& aHead);
  void handlePrefixed(Frame const& aFrame, pugi::xml_node aNode, QualifiedName aName, Head const& aHead);
  void noteTool(pugi::xml_node aNode);
  bool handleApplication(pugi::xml_node aNode, QualifiedName aName);

  void noteStyle(pugi::xml_node aNode, Feature const* aFeature, Metaclass const& aMetaclass);
  /// The same text where it lives as long as the file.
  std::string_view lasting(std::string_view aParsed);
  Element& make(Metaclass const& aMetaclass, pugi::xml_node aNode, Head const& aHead);
  void own(Element& aOwner, Feature const& aFeature, Element& aPart, pugi::xml_node aNode);
  void readAttributes(Element& aElement, Metaclass const& aMetaclass, pugi::xml_node aNode);
  void readAttribute(Element& aElement, Metaclass const& aMetaclass, pugi::xml_attribute aAttribute);
  bool setValue(Element& aElement, Feature const& aFeature, std::string_view aText, Spot aSpot);
  bool assign(Element& aElement, Feature const& aFeature, std::string_view aText, Spot aSpot);
  /// What files say of features that follow from others, when those are known.
  void setDerived();
  /// What one tool keeps of an element in the extension beside it.
  void enterExtension(Frame const& aFrame, pugi::xml_node aNode);
  void enter(pugi::xml_node aNode, Element* aElement, Metaclass const* aMetaclass, bool aIsUncovered = false);

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
  char const* fText;
  Prefixes fPrefixes;
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
  std::unordered_map<Metaclass const*, std::size_t> fCounts;
  std::string_view fUmlAddress;
  std::string_view fXmiAddress;
  std::string fScratch;
  bool fIsAgain;
};

}  // namespace umlmm::files
