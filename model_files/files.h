#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "kelm/ClassObject.h"
#include "kelm/Model.h"
#include "lum/visibility.h"

/// Model files: XMI as the tools of the field write it (OMG XMI 2.0 to 2.5.1, UML 2.0 to 2.5.1). Texts are
/// UTF-8 whatever a file's encoding. A model that came from files is used as any other; what belongs to its
/// files lives and ends with it. Threads: as for models.
namespace umlmm::files {

/// Where something stands in a file. Lines and columns (in bytes of the text as UTF-8) count from 1; 0 for
/// unknown.
struct Place {
  std::string fFile;
  std::size_t fLine = 0;
  std::size_t fColumn = 0;
};

/// A file can't be opened, read or written. The message is one sentence that names the file, what is wrong
/// and what can be done.
class UMLMM_API Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  ~Error() override;
};

/// The file is something else than UML 2 in XMI; the message says what.
class UMLMM_API NotUml : public Error {
 public:
  using Error::Error;
  ~NotUml() override;
};

/// A finding of a strict reading, or a text that is no XML: where, and in which element (names from the root
/// on).
class UMLMM_API ReadError : public Error {
 public:
  ReadError(std::string const& aMessage, Place aPlace, std::string aPath);
  ~ReadError() override;
  Place const& place() const noexcept { return fPlace; }
  std::string const& path() const noexcept { return fPath; }

 private:
  Place fPlace;
  std::string fPath;
};

/// One kind of thing that was read and not understood, or not as it was written.
struct Finding {
  /// "metaclass", "feature", "value", "reference", "namespace", "extension", "duplicate id", ...
  std::string fKind;
  /// What it was: "uml:StateMachine", "Pin.upperBound", "xmi:Extension".
  std::string fWhat;
  /// What became of it, in a few words: "kept as written".
  std::string fOutcome;
  std::size_t fCount = 0;
  /// The first.
  Place fFirst;
};

/// A reference that leads nowhere, as written. It is written back as it stands.
struct Unresolved {
  Kelm::ClassObject fElement;
  /// "type", "Class.general".
  std::string fFeature;
  /// "pathmap://UML_LIBRARIES/…#String", "EAJava_int".
  std::string fAddress;
  Place fPlace;
};

/// Something beside the metaclasses that stood with an element: an element of XML with all that is in it, or
/// one attribute (then without attributes and children).
struct Unknown {
  /// As written: "xmi:Extension", "eAnnotations".
  std::string fTag;
  std::vector<std::pair<std::string, std::string>> fAttributes;
  std::string fText;
  /// A hundred levels deep; what lies below is part of the text, as it is written.
  std::vector<Unknown> fChildren;
};

/// One application of a stereotype, as written. What a tool keeps of an element in its extension alone is one
/// as well: tags, and as "documentation" a text about the element; its name is empty if there is none, or if
/// the stereotype is applied in the model itself.
struct StereotypeApplication {
  std::string fName;
  /// The prefix of its namespace, and the address behind it.
  std::string fProfile;
  std::string fProfileUri;
  /// Tagged values in the order in which they stand; of one with several values each by itself.
  std::vector<std::pair<std::string, std::string>> fValues;
  /// By which the functions below know it, as long as the model lives.
  std::uint32_t fNumber = 0;
};

/// What reading has met.
struct Report {
  struct File {
    std::string fPath;
    /// "Eclipse UML 5.0.0, XMI 20131001".
    std::string fDialect;
    /// As the file says; empty for none.
    std::string fTool;
    std::string fToolVersion;
    std::string fEncoding;
    std::size_t fBytes = 0;
  };
  std::vector<File> fFiles;
  /// By metaclass, and together.
  std::map<std::string, std::size_t> fElements;
  std::size_t fElementCount = 0;
  std::vector<Finding> fFindings;
  /// By id, with the place of the second declaration.
  std::vector<std::pair<std::string, Place>> fDuplicateIds;
  std::size_t fUnresolvedCount = 0;
  std::size_t fStereotypeCount = 0;
  /// Seconds.
  double fParseTime = 0;
  double fBuildTime = 0;

  /// A page of text.
  UMLMM_API std::string page() const;
  /// The same as JSON.
  UMLMM_API std::string json() const;
};

/// Beside the files that are asked for, those are read that they have parts in: `<packagedElement href=`.
/// What merely is referred to stays unresolved, but for addresses that `fPaths` tells the place of. Files
/// that are not there, or are something else, stay unresolved, too.
struct LoadOptions {
  /// Raise ReadError at the first finding, instead of noting it.
  bool fStrict = false;
  /// Bind the model to the path of its first file, with a number behind it if that is taken, for as long as
  /// somebody has it.
  bool fBind = false;
  /// Where addresses lead, by what they start with: {"pathmap://MY_PROFILES/", "/models/profiles/"}.
  std::map<std::string, std::string> fPaths;
};

/// A file to be read: from disk by its path, or from bytes that go by this name.
struct Input {
  std::string fPath;
  std::optional<std::string> fBytes;
};

/// A reading under way, step by step, so that others may do something between. One that ends before it is
/// done leaves nothing behind. May be used in one thread after the other.
class UMLMM_API Loading {
 public:
  explicit Loading(std::vector<Input> aInputs, LoadOptions aOptions = {});
  Loading(Loading const&) = delete;
  Loading& operator=(Loading const&) = delete;
  ~Loading();

  /// Works for about so long; true when all is read. Raises Error, after which the reading is over.
  bool step(std::chrono::milliseconds aTime);
  /// From 0 to 1.
  double progress() const noexcept;
  /// The model, once it is done; else null.
  Kelm::Model model() const;

 private:
  class Work;
  std::unique_ptr<Work> fWork;
};

/// Reads a file into a new model.
UMLMM_API Kelm::Model load(std::string const& aPath, LoadOptions const& aOptions = {});

/// Whether the model came from files, and what was met then. Raises for a model that did not.
UMLMM_API bool isLoaded(Kelm::Model const& aModel);
UMLMM_API Report const& report(Kelm::Model const& aModel);
/// References that lead nowhere, of all elements that are still there.
UMLMM_API std::vector<Unresolved> unresolved(Kelm::Model const& aModel);
/// The element with an id of the files, of one of them if its path is given; null if there is none. Takes the
/// same time whatever the size of the model.
UMLMM_API Kelm::ClassObject byId(Kelm::Model const& aModel, std::string_view aId,
                                 std::string_view aFile = {});
/// What stood with the element beside what the metaclasses cover.
UMLMM_API std::vector<Unknown> unknown(Kelm::ClassObject const& aElement);
UMLMM_API std::vector<StereotypeApplication> stereotypes(Kelm::ClassObject const& aElement);
/// Elements to which a stereotype of this name is applied, each once, in the order of the applications.
UMLMM_API std::vector<Kelm::ClassObject> stereotyped(Kelm::Model const& aModel, std::string_view aName);

/// One of the applications of an element. It and the functions below raise Error for one that is gone, those
/// that change something also for what a tool keeps in its extension, and have changed nothing then. What
/// they change is seen at once, and comes into the file when it is saved.
UMLMM_API StereotypeApplication stereotype(Kelm::ClassObject const& aElement, std::uint32_t aNumber);
/// Gives a tag these values in the place of all that it has; without any it goes.
UMLMM_API void setTaggedValues(Kelm::ClassObject const& aElement, std::uint32_t aNumber,
                               std::string_view aTag, std::vector<std::string> const& aValues);
/// Takes an application away, from all elements that it names.
UMLMM_API void removeStereotype(Kelm::ClassObject const& aElement, std::uint32_t aNumber);
/// Applies a stereotype of a profile from which stereotypes are applied already; answers its number. The
/// profile is the prefix or the address of its namespace, and may be left out if the stereotype is applied
/// somewhere, from one profile alone.
UMLMM_API std::uint32_t applyStereotype(Kelm::ClassObject const& aElement, std::string_view aName,
                                        std::string_view aProfile = {});

/// Gives a copy of all elements of a model, made by `copyInto` in an empty one, what belongs to the files of
/// the model: ids, applied stereotypes, what is kept. The copy has to be saved to a path of its own.
UMLMM_API void copyFiles(Kelm::Model const& aFrom, Kelm::Model const& aTo);

struct SaveOptions {
  /// "", as it was read or else the standard's own form; "omg-2.5.1"; "eclipse".
  std::string fDialect;
  /// Also over a file that has changed on disk since it was read.
  bool fForce = false;
};

/// The text of a model's file (of the first, if no path is given): the original one with the changes in it.
/// Bytes in the file's own encoding.
UMLMM_API std::string textOf(Kelm::Model const& aModel, SaveOptions const& aOptions = {},
                             std::string_view aFile = {});
/// Writes every changed file of the model; or to a path, all of the model in one file, which becomes the file
/// of a model that has none. The old file stays whole when writing fails.
UMLMM_API void save(Kelm::Model const& aModel, SaveOptions const& aOptions = {});
UMLMM_API void save(Kelm::Model const& aModel, std::string const& aPath, SaveOptions const& aOptions = {});

}  // namespace umlmm::files
