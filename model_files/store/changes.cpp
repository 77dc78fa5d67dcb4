#include <algorithm>

#include "model_files/dialect/namespaces.h"
#include "model_files/dialect/values.h"
#include "model_files/files.h"
#include "model_files/store/ParsedTag.h"
#include "model_files/store/applications.h"

/// Changes of applied stereotypes: they are noted, and come into the text when it is saved.
namespace umlmm::files {

namespace {

std::string shown(Kelm::ClassObject const& aElement) {
  return pathOf(*aElement.get(), aElement.getDeviant());
}

std::string quoted(std::string_view aText) { return '"' + std::string(aText) + '"'; }

/// The files of an element that may be changed.
ModelFiles& filesOf(Kelm::ClassObject const& aElement) {
  Kelm::Model const model = modelOf(aElement);
  aElement.getDeviant().internal_assertWritable(nullptr);
  if (ModelFiles* const files = ModelFiles::find(model)) return *files;
  throw Error("The model came from no file, so there are no stereotypes that could be applied.");
}

Application const& find(ModelFiles const& aFiles, Kelm::ClassObject const& aElement, std::uint32_t aNumber) {
  auto const rows = aFiles.applicationsOf(*aElement.get());
  auto const found = std::ranges::find(rows, aNumber, &Application::fNumber);
  if (found != rows.end()) return **found;
  throw Error("The stereotype is no longer applied to " + shown(aElement) + ".");
}

/// The same; raises for what a tool keeps in its own part of the file.
Application const& findChangeable(ModelFiles const& aFiles, Kelm::ClassObject const& aElement,
                                  std::uint32_t aNumber) {
  Application const& application = find(aFiles, aElement, aNumber);
  if (!application.fIsInExtension) return application;
  std::string const what =
      application.fName.empty() ? "What is told of " : "Stereotype " + quoted(application.fName) + " of ";
  throw Error(what + shown(aElement) +
              " stands in an extension of the tool that wrote the file, and can be read and not changed; "
              "change it in that tool.");
}

bool isName(std::string_view aText) noexcept {
  auto const isFirst = [](char aCharacter) {
    return aCharacter == '_' || (aCharacter >= 'a' && aCharacter <= 'z') ||
           (aCharacter >= 'A' && aCharacter <= 'Z') || static_cast<unsigned char>(aCharacter) >= 0x80;
  };
  return !aText.empty() && isFirst(aText.front()) && std::ranges::all_of(aText, [&](char aCharacter) {
    return isFirst(aCharacter) || aCharacter == '-' || aCharacter == '.' ||
           (aCharacter >= '0' && aCharacter <= '9');
  });
}

void checkTag(std::string_view aTag) {
  if (!isName(aTag))
    throw Error(quoted(aTag) +
                " can't be the name of a tagged value; it has letters, digits, \"_\", \"-\" and "
                "\".\", and starts with a letter.");
  if (!isValue(aTag))
    throw Error(quoted(aTag) + " is no tagged value: it tells to what the stereotype is applied.");
}

void checkValue(std::string_view aTag, std::string_view aValue) {
  bool const isText = std::ranges::none_of(aValue, [](char aCharacter) {
    return static_cast<unsigned char>(aCharacter) < 0x20 && aCharacter != '\t' && aCharacter != '\n' &&
           aCharacter != '\r';
  });
  if (!isText)
    throw Error("A control character can't be written in XML; take it out of the value of " + quoted(aTag) +
                ".");
}

/// A value with parts of its own can't become a text; it may go.
void checkIsPlain(ModelFiles const& aFiles, Application const& aApplication, std::string_view aTag) {
  if (aApplication.fSpot.fOffset == 0) return;
  ParsedTag const tag(aFiles.fFiles[aApplication.fSpot.fFile].fText, aApplication.fSpot.fOffset);
  std::string const name(aTag);  // The children that are called by it keep no copy.
  for (pugi::xml_node const child : tag.node().children(name.c_str()))
    for (pugi::xml_node const part : child.children())
      if (part.type() == pugi::node_element && !child.attribute("href") && !child.attribute("xmi:idref"))
        throw Error("The value of " + quoted(aTag) + " has parts of its own (" + part.name() +
                    "), and can be taken away but not become a text.");
}

/// The profile that is meant by a name of a stereotype and, if it is given, a prefix or an address.
KnownProfile const& profileOf(ModelFiles& aFiles, std::string_view aName, std::string_view aProfile) {
  KnownProfile const* found = nullptr;
  std::string all;
  bool isUnclear = false;
  for (KnownProfile const& profile : aFiles.profiles()) {
    ((((all += all.empty() ? "" : ", ") += profile.fPrefix) += " (") += profile.fUri) += ')';
    bool const isNamed = aProfile == profile.fPrefix || aProfile == profile.fUri;
    if (aProfile.empty() ? !profile.fStereotypes.contains(aName) : !isNamed) continue;
    isUnclear |= found != nullptr && found->fUri != profile.fUri;
    found = &profile;
  }
  if (found != nullptr && !isUnclear) return *found;
  if (all.empty()) throw Error("No stereotype is applied in the model, so the file knows no profile.");
  throw Error("Stereotype " + quoted(aName) +
              (isUnclear ? " is in several profiles; name one by its address: "
               : aProfile.empty()
                   ? " is applied nowhere in the model; name its profile: "
                   : " can't be applied: the file doesn't know profile " + quoted(aProfile) + "; it knows ") +
              all + ".");
}

/// How an application names an element: as others of its stereotype do, or by the element's metaclass.
std::string baseOf(Element const& aElement, KnownProfile const& aProfile, std::string_view aName) {
  Metaclass const& metaclass = Metamodel::instance().metaclassOf(aElement);
  if (auto const known = aProfile.fStereotypes.find(aName); known != aProfile.fStereotypes.end())
    for (std::string const& base : known->second)
      if (Metaclass const* const extended = Metamodel::instance().metaclass(std::string_view(base).substr(5));
          extended != nullptr && metaclass.isA(*extended))
        return base;
  return "base_" + std::string(metaclass.fName);
}

}  // namespace

StereotypeApplication stereotype(Kelm::ClassObject const& aElement, std::uint32_t aNumber) {
  ModelFiles& files = ModelFiles::of(modelOf(aElement));
  return told(files, find(files, aElement, aNumber));
}

void setTaggedValues(Kelm::ClassObject const& aElement, std::uint32_t aNumber, std::string_view aTag,
                     std::vector<std::string> const& aValues) {
  ModelFiles& files = filesOf(aElement);
  Application const& application = findChangeable(files, aElement, aNumber);
  checkTag(aTag);
  for (std::string const& value : aValues) checkValue(aTag, value);
  if (!aValues.empty()) checkIsPlain(files, application, aTag);
  auto& changed = files.fChanges[aNumber].fValues;
  auto const known =
      std::ranges::find(changed, aTag, &std::pair<std::string, std::vector<std::string>>::first);
  if (known == changed.end())
    changed.emplace_back(aTag, aValues);
  else
    known->second = aValues;
}

void removeStereotype(Kelm::ClassObject const& aElement, std::uint32_t aNumber) {
  ModelFiles& files = filesOf(aElement);
  findChangeable(files, aElement, aNumber);
  files.fChanges[aNumber].fIsRemoved = true;
}

std::uint32_t applyStereotype(Kelm::ClassObject const& aElement, std::string_view aName,
                              std::string_view aProfile) {
  ModelFiles& files = filesOf(aElement);
  if (!isName(aName)) throw Error(quoted(aName) + " can't be the name of a stereotype.");
  KnownProfile const& profile = profileOf(files, aName, aProfile);
  int const file = files.fileOf(*aElement.get(), aElement.getDeviant());
  if (file < 0)
    throw Error(shown(aElement) + " stands in no file of the model, so nothing can be applied to it.");
  for (StereotypeApplication const& known : stereotypes(aElement))
    if (known.fName == aName && known.fProfileUri == profile.fUri)
      throw Error("Stereotype " + quoted(aName) + " is applied to " + shown(aElement) + " already.");
  auto const number = static_cast<std::uint32_t>(file);
  std::string const& name = files.fFiles[number].fDecoded.emplace_back(aName);
  files.add({ElementPtr(aElement.get()), name, {number, 0}},
            {false, {}, profile.fPrefix, profile.fUri, baseOf(*aElement.get(), profile, aName)});
  return files.fApplicationCount - 1;
}

}  // namespace umlmm::files
