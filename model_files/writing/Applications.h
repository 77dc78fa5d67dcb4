#pragma once

#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "model_files/store/ModelFiles.h"
#include "model_files/writing/TagEdits.h"

namespace umlmm::files {

/// Applied stereotypes in the text of one file: what was changed of them, and what has become of the elements
/// that they name, as edits of their tags.
class Applications {
 public:
  /// Part of a text that goes from its place; with what was moved it comes in elsewhere.
  struct Cut {
    std::size_t fFrom;
    std::size_t fTo;
    bool fIsMoved;
  };

  Applications(ModelFiles const& aFiles, std::uint32_t aFile, Kelm::Deviant const& aDeviant, TagEdits& aEdits,
               Tags& aTags);

  /// Names elements as the text does now, those for which `aIsOther` answers true: they may have come into
  /// another file, or have another id. To be called first.
  void name(std::function<bool(Element const&)> const& aIsOther);
  /// Edits all tags. `aCuts` stand in the order of where they begin, inner ones behind outer ones.
  void patch(std::span<Cut const> aCuts);
  /// Tags that need a new place, if `patch` has found none.
  std::vector<Edits::Write> takeHomeless() { return std::move(fHomeless); }
  /// The numbers of those whose tags stand in the text, as they are written.
  std::vector<std::uint32_t> const& order() const noexcept { return fOrder; }
  void restart() { fOrder.clear(); }
  /// A stretch of the text is copied.
  void noteCopied(std::size_t aFrom, std::size_t aTo);

  /// Calls `aVisit` with each that is left and its text, when all edits are sorted.
  template <class Visit>
  void forEachText(Visit aVisit) {
    for (Standing const& standing : fStanding)
      if (!standing.fApplication->fIsInExtension) aVisit(*standing.fApplication, textOf(standing));
    for (Application const& added : fFiles.fAdded)
      if (isNew(added)) aVisit(added, textOf(added));
  }

 private:
  /// A tag that stays: where its name stands.
  struct Standing {
    std::size_t fName;
    Application const* fApplication;
  };

  bool isThere(Application const& aApplication) const {
    return aApplication.fElement->deviant_isValid(fDeviant);
  }
  bool isNew(Application const& aAdded) const {
    return aAdded.fSpot.fFile == fNumber && isThere(aAdded) && !fFiles.isRemoved(aAdded);
  }
  void patchTag(std::span<Application const* const> aRows);
  /// False if nothing is left that the tag names.
  bool pruneBases(TagEdits::Tag const& aTag, std::span<Application const* const> aRows);
  /// What a tool says of removed applications in its extension.
  void removeFromEntry(std::size_t aEntry, std::string_view aStereotype);
  void setValues(TagEdits::Tag const& aTag, std::string const& aName,
                 std::vector<std::string> const& aValues);
  /// What names the elements of some rows.
  void nameBase(std::span<Application const> aRows);
  std::string wordsThere(std::string_view aAddress) const;
  bool isLost(Standing const& aStanding, std::span<Cut const> aCuts, std::size_t& aNext,
              std::vector<Cut const*>& aOpen) const;
  std::string textOf(Standing const& aStanding);
  std::string textOf(Application const& aAdded);
  bool isDeclared(std::string_view aPrefix, std::string_view aAddress) const;

  ModelFiles const& fFiles;
  ModelFile const& fFile;
  std::uint32_t fNumber;
  Kelm::Deviant fDeviant;
  std::string_view fText;
  TagEdits& fEdits;
  Tags& fTags;
  /// Of all files; by element, with names.
  std::multimap<Element const*, std::string_view> fRemoved;
  std::vector<Standing> fStanding;
  std::vector<Edits::Write> fHomeless;
  std::vector<std::uint32_t> fOrder;
  /// Ids of those that are new, if others have one.
  std::unordered_map<std::uint32_t, std::string> fIds;
  bool fHaveIds = true;
};

/// Declares a prefix in the first tag of a text.
void declarePrefix(std::string& aTag, std::string_view aPrefix, std::string_view aAddress);

}  // namespace umlmm::files
