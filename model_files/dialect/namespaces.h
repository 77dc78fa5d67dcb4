#pragma once

#include <string_view>
#include <unordered_map>
#include <vector>

/// Namespaces of model files, told by their addresses: versions and tools differ, the shape of an address
/// does not.
namespace umlmm::files {

enum class Space {
  None,    ///< No prefix.
  Uml,     ///< Metaclasses of UML 2.
  OldUml,  ///< Those of UML 1.
  Xmi,
  Xsi,
  Other  ///< Profiles, diagrams, other metamodels.
};

Space spaceOf(std::string_view aAddress) noexcept;
/// "2.4.1" or "20131001" of ".../spec/UML/20131001", "5.0.0" of ".../uml2/5.0.0/UML"; empty for none.
std::string_view versionOf(std::string_view aAddress) noexcept;
bool isEclipse(std::string_view aAddress) noexcept;
/// Whether a behavior may be entered again unless a file says otherwise: from UML 2.3 on, and in Eclipse's
/// files.
bool isReentrantByDefault(std::string_view aAddress) noexcept;

/// The prefixes that are declared around a place in a file. All texts live as long as the file's.
class Prefixes {
 public:
  struct Declaration {
    std::string_view fPrefix;
    std::string_view fAddress;
    Space fSpace;
    /// How many there were up to the one before it with the same prefix; 0 for none.
    std::size_t fBefore;
  };

  void declare(std::string_view aPrefix, std::string_view aAddress);
  /// A prefix that nobody declares is what it is called: "uml", "xmi", "xsi".
  Space find(std::string_view aPrefix) const noexcept;
  Declaration const* declaration(std::string_view aPrefix) const noexcept;
  /// Declarations so far; `close` forgets what came later.
  std::size_t open() const noexcept { return fDeclared.size(); }
  void close(std::size_t aOpen) noexcept;
  std::vector<Declaration> const& all() const noexcept { return fDeclared; }

 private:
  std::vector<Declaration> fDeclared;
  /// By prefix, how many there were up to the last one.
  std::unordered_map<std::string_view, std::size_t> fLast;
};

/// Whether it is a name by which an applied stereotype names its element: "base_Class".
inline bool isBase(std::string_view aName) noexcept {
  return aName.starts_with("base_") || aName.starts_with("base-");
}

/// "uml:Class" as prefix and name.
struct QualifiedName {
  std::string_view fPrefix;
  std::string_view fName;

  explicit QualifiedName(std::string_view aText) noexcept {
    std::size_t const colon = aText.find(':');
    if (colon == std::string_view::npos) {
      fName = aText;
    } else {
      fPrefix = aText.substr(0, colon);
      fName = aText.substr(colon + 1);
    }
  }
};

}  // namespace umlmm::files
