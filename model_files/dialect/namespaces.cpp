#include "model_files/dialect/namespaces.h"

namespace umlmm::files {

namespace {

bool take(std::string_view& aText, std::string_view aStart) noexcept {
  if (!aText.starts_with(aStart)) return false;
  aText.remove_prefix(aStart.size());
  return true;
}

/// `aStart` has small letters.
bool takeAnyCase(std::string_view& aText, std::string_view aStart) noexcept {
  if (aText.size() < aStart.size()) return false;
  for (std::size_t at = 0; at < aStart.size(); ++at) {
    char const byte = aText[at];
    if ((byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte | 0x20) : byte) != aStart[at]) return false;
  }
  aText.remove_prefix(aStart.size());
  return true;
}

/// Whether what stands behind a version still names the metamodel: "", "/UML", "/uml.xml", "/UML.xmi",
/// "/Superstructure". Other packages of the standard, such as profiles, stand there as well.
bool isMetamodel(std::string_view aTail) noexcept {
  take(aTail, "/");
  if (aTail.empty()) return true;
  for (std::string_view const name : {"uml2", "uml", "superstructure", "l0", "l1", "l2", "l3", "merged"}) {
    std::string_view rest = aTail;
    if (!takeAnyCase(rest, name)) continue;
    if (rest.empty() || rest == ".xml" || rest == ".xmi" || rest == ".cmof" || rest == ".uml") return true;
  }
  return false;
}

/// Digits and dots.
std::string_view takeVersion(std::string_view& aText) noexcept {
  std::size_t const length = std::min(aText.find_first_not_of("0123456789."), aText.size());
  std::string_view const version = aText.substr(0, length);
  aText.remove_prefix(length);
  return version;
}

struct Address {
  Space fSpace = Space::Other;
  std::string_view fVersion = {};
  bool fEclipse = false;
};

/// Behind "omg.org/": "spec/UML/20131001", "spec/XMI/2.1", "XMI", "UML1.3".
Address readStandard(std::string_view aText) noexcept {
  bool const isSpecification = takeAnyCase(aText, "spec/");
  if (takeAnyCase(aText, "xmi")) return {Space::Xmi, take(aText, "/") ? takeVersion(aText) : aText};
  if (!takeAnyCase(aText, "uml")) return {};
  take(aText, "/");
  std::string_view const version = takeVersion(aText);
  if (version.empty() && !isSpecification) return {};
  if (version.starts_with("1.")) return {Space::OldUml, version};
  return {isMetamodel(aText) ? Space::Uml : Space::Other, version};
}

Address read(std::string_view aAddress) noexcept {
  std::string_view text = aAddress;
  while (text.ends_with('/') || text.ends_with('#')) text.remove_suffix(1);
  if (!takeAnyCase(text, "http://")) takeAnyCase(text, "https://");
  takeAnyCase(text, "www.");
  if (takeAnyCase(text, "eclipse.org/uml2/")) {
    std::string_view const version = takeVersion(text);
    take(text, "/");
    return {text == "UML" ? Space::Uml : Space::Other, version, true};
  }
  if (text.ends_with("XMLSchema-instance")) return {Space::Xsi};
  if (takeAnyCase(text, "schema.omg.org/") || takeAnyCase(text, "omg.org/")) return readStandard(text);
  if (take(text, "org.omg/")) return readStandard(text);
  return {};
}

}  // namespace

Space spaceOf(std::string_view aAddress) noexcept { return read(aAddress).fSpace; }
std::string_view versionOf(std::string_view aAddress) noexcept { return read(aAddress).fVersion; }
bool isEclipse(std::string_view aAddress) noexcept { return read(aAddress).fEclipse; }

bool isReentrantByDefault(std::string_view aAddress) noexcept {
  if (isEclipse(aAddress)) return true;
  std::string_view const version = versionOf(aAddress);
  bool const isDate = version.find('.') == std::string_view::npos;
  return version >= (isDate ? "20090901" : "2.3");
}

void Prefixes::declare(std::string_view aPrefix, std::string_view aAddress) {
  std::size_t& last = fLast[aPrefix];
  fDeclared.push_back({aPrefix, aAddress, spaceOf(aAddress), last});
  last = fDeclared.size();
}

void Prefixes::close(std::size_t aOpen) noexcept {
  for (; fDeclared.size() > aOpen; fDeclared.pop_back())
    fLast.find(fDeclared.back().fPrefix)->second = fDeclared.back().fBefore;
}

Prefixes::Declaration const* Prefixes::declaration(std::string_view aPrefix) const noexcept {
  auto const last = fLast.find(aPrefix);
  return last == fLast.end() || last->second == 0 ? nullptr : &fDeclared[last->second - 1];
}

Space Prefixes::find(std::string_view aPrefix) const noexcept {
  if (Declaration const* const found = declaration(aPrefix)) return found->fSpace;
  if (aPrefix.empty()) return Space::None;
  if (aPrefix == "uml") return Space::Uml;
  if (aPrefix == "xmi") return Space::Xmi;
  if (aPrefix == "xsi") return Space::Xsi;
  return Space::Other;
}

}  // namespace umlmm::files
