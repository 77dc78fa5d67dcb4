#include "model_files/dialect/namespaces.h"

namespace umlmm::files {

namespace {

bool take(std::string_view& aText, std::string_view aStart) noexcept {
  if (!aText.starts_with(aStart)) return false;
  aText.remove_prefix(aStart.size());
  return true;
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
  take(aText, "spec/");
  if (take(aText, "XMI")) return {Space::Xmi, take(aText, "/") ? takeVersion(aText) : aText};
  if (!take(aText, "UML")) return {};
  take(aText, "/");
  std::string_view const version = takeVersion(aText);
  if (version.empty()) return {};
  if (version.starts_with("1.")) return {Space::OldUml, version};
  // What stands below is another package of the standard, unless it names the file of the metamodel itself.
  take(aText, "/");
  bool const isMetamodel = aText.empty() || aText == "UML" || aText == "uml.xml" || aText == "UML.xmi" ||
                           aText == "Superstructure" || aText == "L3";
  return {isMetamodel ? Space::Uml : Space::Other, version};
}

Address read(std::string_view aAddress) noexcept {
  std::string_view text = aAddress;
  while (text.ends_with('/') || text.ends_with('#')) text.remove_suffix(1);
  if (!take(text, "http://")) take(text, "https://");
  if (take(text, "www.eclipse.org/uml2/") || take(text, "eclipse.org/uml2/")) {
    std::string_view const version = takeVersion(text);
    return {text == "/UML" ? Space::Uml : Space::Other, version, true};
  }
  if (text.ends_with("XMLSchema-instance")) return {Space::Xsi};
  if (take(text, "schema.omg.org/") || take(text, "www.omg.org/") || take(text, "omg.org/"))
    return readStandard(text);
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
  return version >= "2.3" || (version.size() == 8 && version >= "20090901");
}

void Prefixes::declare(std::string_view aPrefix, std::string_view aAddress) {
  fDeclared.push_back({aPrefix, aAddress, spaceOf(aAddress)});
}

Prefixes::Declaration const* Prefixes::declaration(std::string_view aPrefix) const noexcept {
  for (auto at = fDeclared.rbegin(); at != fDeclared.rend(); ++at)
    if (at->fPrefix == aPrefix) return &*at;
  return nullptr;
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
