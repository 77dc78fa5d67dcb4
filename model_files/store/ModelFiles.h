#pragma once

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kelm/ClassObject.h"
#include "kelm/ModelObject.h"
#include "kelm/PointerTable.h"
#include "model_files/dialect/Metamodel.h"
#include "model_files/dialect/Style.h"
#include "model_files/dialect/values.h"
#include "model_files/files.h"
#include "model_files/store/ByElement.h"
#include "model_files/store/IdTable.h"
#include "model_files/text/SourceText.h"
#include "model_files/text/writeFile.h"

namespace Kelm::NSInterface {
inline void intrusive_ptr_add_ref(ClassObjectIntf const* aElement) { aElement->incRef(); }
inline void intrusive_ptr_release(ClassObjectIntf const* aElement) { aElement->decRef(); }
}  // namespace Kelm::NSInterface

namespace umlmm::files {

using ElementPtr = boost::intrusive_ptr<Element>;

/// Where something stands: a file of the model by number, and the offset of its name in the file's text.
struct Spot {
  std::uint32_t fFile = 0;
  std::uint64_t fOffset = 0;

  bool operator==(Spot const&) const = default;
};

/// An element and the tag that it was made from. Those of a file stand in the order of its text.
struct Made {
  ElementPtr fElement;
  std::uint64_t fOffset;
};

/// Something beside the metaclasses, and the element with which it stood; null at the top of a file.
struct Kept {
  ElementPtr fElement;
  Spot fSpot;
  bool fIsAttribute;
};

/// A reference that leads nowhere.
struct Dangling {
  ElementPtr fElement;
  Feature const* fFeature;
  std::string fAddress;
  Spot fSpot;
};

/// A stereotype applied to an element; the name is that of the tag. Or what a tool keeps of an element in its
/// extension; the name is empty then if a tag says the same. A tag that names several elements, or one of
/// them twice, has a row for each, one behind the other.
struct Application {
  ElementPtr fElement;
  std::string_view fName;
  /// The offset is 0 for one that no text has yet.
  Spot fSpot;
  /// The attribute or child of the tag that names the element.
  std::uint64_t fBase = 0;
  /// The same in all rows of a tag, and when the text becomes another one.
  std::uint32_t fNumber = 0;
  bool fIsInExtension = false;
};

/// What has become of an application since its file was read or written.
struct ApplicationChange {
  bool fIsRemoved = false;
  /// Tags that were set, each with all its values; without any it is gone.
  std::vector<std::pair<std::string, std::vector<std::string>>> fValues;
  // Of one that no text has yet: the prefix of its namespace, the address, and how it names its element.
  std::string fProfile;
  std::string fProfileUri;
  std::string fBase;
};

/// A namespace from which stereotypes are applied: each with the names by which they name elements.
struct KnownProfile {
  std::string fPrefix;
  std::string fUri;
  std::map<std::string, std::set<std::string>, std::less<>> fStereotypes;
};

/// Where a path leads, whatever its spelling.
std::filesystem::path locationOf(std::filesystem::path const& aPath);

/// One file of a model.
struct ModelFile {
  explicit ModelFile(SourceText aText) : fText(std::move(aText)) {}

  SourceText fText;
  std::vector<Made> fMade;
  /// Ids as written; the first of equal ones.
  IdTable fIds;
  /// Ids that do not stand in the text as they are.
  std::deque<std::string> fDecoded;
  /// Noted when the file is read to be written.
  Style fStyle;
  /// Where the file lies, from the root of the system on; empty for bytes that were given.
  std::string fPath;
  FileStamp fStamp;
  /// How its addresses call other files of the model, by their numbers.
  std::map<std::uint32_t, std::string> fSpellings;
  /// The namespace of a prefix in the tag whose name stands at an offset; empty for none.
  std::string declaration(std::size_t aOffset, std::string_view aPrefix) const;

  /// Where its namespaces are declared; made when first asked.
  mutable std::optional<std::vector<std::size_t>> fDeclarations;
};

/// An element of the model that stands for a primitive type of the standard, and the address under which a
/// file named it first.
struct StandIn {
  ElementPtr fElement;
  std::string fAddress;
};

/// What belongs to the files that a model came from; it is kept with the model.
class ModelFiles final : public Kelm::ModelCompanion, public Kelm::ExternalIds {
 public:
  ModelFiles();
  ~ModelFiles() override;

  /// Of a model that came from files; null for another one.
  static ModelFiles* find(Kelm::Model const& aModel);
  /// The same; raises Error for another one.
  static ModelFiles& of(Kelm::Model const& aModel);
  static void attach(Kelm::Model const& aModel, std::unique_ptr<ModelFiles> aFiles);

  /// The number of the file that an element belongs to: its owner's, unless it stands at the top of another
  /// one; -1 for what has no tag in any file.
  int fileOf(Element const& aElement, Kelm::Deviant const& aDeviant) const;
  /// A file by its path, in any spelling; null for none.
  ModelFile* fileCalled(std::string_view aPath);
  /// Whether some file has a tag for the element.
  bool hasTag(Element const& aElement) const { return tagOf(aElement).has_value(); }
  /// Where the tag of an element stands. All tags are gone through when the first question is asked.
  std::optional<Spot> tagOf(Element const& aElement) const;
  /// What was asked holds no longer: other texts have come.
  void forget() noexcept;
  /// The id in the tag of an element; empty for none.
  std::string idOf(Element const& aElement) const;
  /// Whether a tag stands at the top of its file: it is called by its metaclass there.
  bool isTop(Spot aTag) const;
  StandIn const* standIn(Element const& aElement) const;
  std::vector<Kept const*> keptBy(Element const& aElement) const;
  std::vector<Dangling const*> danglingOf(Element const& aElement) const;
  /// Those that were not removed, each once.
  std::vector<Application const*> applicationsOf(Element const& aElement) const;
  /// Calls `aVisit` with the rows of all applications that were not removed.
  template <class Visit>
  void forEachApplication(Visit aVisit) const {
    for (Application const& application : fApplications)
      if (!isRemoved(application)) aVisit(application);
    for (Application const& application : fAdded)
      if (!isRemoved(application)) aVisit(application);
  }
  /// Null if nothing has become of it.
  ApplicationChange const* changeOf(Application const& aApplication) const {
    auto const found = fChanges.find(aApplication.fNumber);
    return found == fChanges.end() ? nullptr : &found->second;
  }
  bool isRemoved(Application const& aApplication) const {
    ApplicationChange const* const change = changeOf(aApplication);
    return change != nullptr && change->fIsRemoved;
  }
  void add(Application aApplication, ApplicationChange aChange);
  /// Namespaces of all applications that stand in texts; gone through when first asked.
  std::vector<KnownProfile> const& profiles();
  /// The namespace of a prefix at a place.
  std::string namespaceAt(Spot aSpot, std::string_view aPrefix);

  Place place(Spot aSpot) const { return fFiles[aSpot.fFile].fText.placeOf(aSpot.fOffset); }

  std::deque<ModelFile> fFiles;
  Report fReport;
  std::vector<Kept> fKept;
  std::vector<Dangling> fDangling;
  std::vector<Application> fApplications;
  /// Those that no text has yet.
  std::deque<Application> fAdded;
  /// What was changed and not saved, by number.
  std::map<std::uint32_t, ApplicationChange> fChanges;
  /// Numbers that were given to applications.
  std::uint32_t fApplicationCount = 0;
  /// The model's own PrimitiveType elements that stand for those of the standard, by name.
  std::unordered_map<std::string_view, StandIn> fStandIns;
  /// Where addresses lead, by what they start with.
  std::map<std::string, std::string> fPlaces;
  /// The model's revision when all was read.
  std::uint64_t fRevision = 0;

 private:
  Kelm::String externalId(Kelm::NSInterface::ModelElementIntf const& aElement) const override;

  /// By element, its number among all that have tags; made when first needed.
  mutable Kelm::PointerTable fTags;
  mutable std::size_t fTagCount = 0;
  mutable ByElement<Kept> fKeptOf;
  mutable ByElement<Dangling> fDanglingOf;
  mutable ByElement<Application> fApplicationsOf;
  std::unordered_map<Element const*, std::vector<Application const*>> fAddedOf;
  std::optional<std::vector<KnownProfile>> fProfiles;
};

}  // namespace umlmm::files
