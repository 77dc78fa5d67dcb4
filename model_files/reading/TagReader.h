#pragma once

#include <cstdint>
#include <pugixml.hpp>
#include <string_view>
#include <vector>

#include "model_files/dialect/Metamodel.h"
#include "model_files/dialect/namespaces.h"
#include "model_files/reading/Memo.h"
#include "model_files/reading/Pieces.h"

namespace umlmm::files {

/// Reads tags: their attributes, and what these say of the tag itself. Each is gone through once.
class TagReader {
 public:
  /// What the name of an attribute tells.
  enum class Role : std::uint8_t {
    Plain,  ///< No prefix.
    Declaration,
    Type,
    Id,
    Uuid,
    Idref,
    Nil,
    OtherXmi,
    Foreign
  };
  /// What the name of a tag or attribute tells wherever it stands. Names with the same number are equal.
  struct Name {
    Role fRole = Role::Plain;
    bool fIsHref = false;
    std::uint32_t fNumber = 0;
  };
  struct Attribute {
    std::string_view fName;
    std::string_view fValue;
    Name fMeaning;
  };
  struct Type {
    Space fSpace = Space::None;
    /// Of UML's space; null for a name that nobody knows.
    Metaclass const* fMetaclass = nullptr;
  };
  /// What the attributes of a tag say of the tag itself.
  struct Head {
    std::string_view fType = {};
    Type fTypeSaid = {};
    std::string_view fId = {};
    std::string_view fUuid = {};
    std::string_view fIdref = {};
    std::string_view fHref = {};
    bool fIsNil = false;
  };

  explicit TagReader(Pieces& aPieces) : fPieces(aPieces) {}

  /// Reads a tag, whose declarations hold until they are closed.
  Head read(pugi::xml_node aNode);
  /// The head of a tag inside of the one that was read.
  Head headOf(pugi::xml_node aNode);
  /// Of the tag that was read last.
  std::vector<Attribute> const& attributes() const noexcept { return fAttributes; }

  /// Its meaning is found once, and again after others have declared prefixes.
  Name const& meaningOf(std::string_view aName) {
    return fNames.get(fScope, aName, NameWords(aName), [&] {
      return Name{roleOf(aName), aName == "href", ++fNumbers};
    });
  }
  Role roleOf(std::string_view aName) const;
  Space space(std::string_view aPrefix) const noexcept { return fPrefixes.find(aPrefix); }
  std::size_t open() const noexcept { return fPrefixes.open(); }
  void close(std::size_t aOpen) noexcept {
    if (aOpen == fPrefixes.open()) return;
    fPrefixes.close(aOpen);
    ++fScope;
  }
  std::string_view umlAddress() const noexcept { return fUmlAddress; }
  std::string_view xmiAddress() const noexcept { return fXmiAddress; }

 private:
  Head collect(pugi::xml_node aNode, std::vector<Attribute>& aOut);
  void declare(pugi::xml_node aNode);
  Type typeOf(std::string_view aValue) const;

  Pieces& fPieces;
  Prefixes fPrefixes;
  /// Changes with the prefixes.
  std::uintptr_t fScope = 1;
  Memo<Name> fNames;
  std::uint32_t fNumbers = 0;
  Memo<Type> fTypes;
  /// Whether the tag that was read last declares prefixes.
  bool fDeclares = false;
  std::vector<Attribute> fAttributes;
  std::vector<Attribute> fInner;
  std::string_view fUmlAddress;
  std::string_view fXmiAddress;
};

}  // namespace umlmm::files
