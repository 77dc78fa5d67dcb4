#include "model_files/writing/WholeFile.h"

#include <algorithm>
#include <map>

#include "kelm/ModelElementIntf.h"
#include "model_files/dialect/namespaces.h"
#include "model_files/text/markup.h"
#include "model_files/writing/Applications.h"
#include "model_files/writing/TagEdits.h"
#include "model_files/writing/Tags.h"
#include "uml_metamodel/umlmm/models.h"

namespace umlmm::files {

namespace {

constexpr Dialect kDialects[] = {
    {"omg-2.5.1", "http://www.omg.org/spec/UML/20131001", "http://www.omg.org/spec/XMI/20131001", "",
     "http://www.omg.org/spec/UML/20131001/PrimitiveTypes.xmi#", false},
    {"eclipse", "http://www.eclipse.org/uml2/5.0.0/UML", "http://www.omg.org/spec/XMI/20131001", "20131001",
     "pathmap://UML_LIBRARIES/UMLPrimitiveTypes.library.uml#", true},
};

Style styleOf(Dialect const& aDialect) {
  Style style;
  ++(aDialect.fIsTerse ? style.fAllReferences.fAttributes : style.fAllReferences.fChildren);
  ++(aDialect.fIsTerse ? style.fUntyped : style.fTyped);
  style.fReentrant = isReentrantByDefault(aDialect.fUmlAddress);
  style.complete();
  return style;
}

/// Extensions and annotations are a tool's own.
bool hasPlace(ModelFile const& aFile, Kept const& aKept) {
  std::string_view const name = markup::nameAt(aFile.fText.utf8(), aKept.fSpot.fOffset);
  return name.find(':') == std::string_view::npos && name != "eAnnotations";
}

}  // namespace

Dialect const& dialectCalled(std::string_view aName) {
  if (aName.empty()) return kDialects[0];
  auto const* const found = std::ranges::find(kDialects, aName, &Dialect::fName);
  if (found != std::end(kDialects)) return *found;
  std::string names;
  for (Dialect const& dialect : kDialects) ((names += names.empty() ? "" : ", ") += dialect.fName);
  throw Error("There is no dialect \"" + std::string(aName) + "\"; there are " + names);
}

WholeFile::WholeFile(Kelm::Model const& aModel, Dialect const& aDialect)
    : fModel(aModel), fDialect(aDialect), fFiles(ModelFiles::find(aModel)) {}

std::string WholeFile::write(std::vector<Element*>& aOrder) {
  std::vector<Element*> roots;
  if (fModel.object().roots() != nullptr)
    for (Element* const root : *fModel.object().roots())
      if (root != nullptr && (fFiles == nullptr || fFiles->standIn(*root) == nullptr)) roots.push_back(root);
  Style const style = styleOf(fDialect);
  Tags tags(fModel, createNewModel(), style, {"\n", "  "});
  tags.order(aOrder);
  if (fFiles != nullptr)
    for (ModelFile const& file : fFiles->fFiles)
      file.fIds.forEach([&](std::string_view aId, Element const& aElement) { tags.useId(aId, aElement); });
  tags.fForeignAddress = [this](Element& aElement) {
    StandIn const* const standIn = fFiles == nullptr ? nullptr : fFiles->standIn(aElement);
    if (standIn == nullptr) return std::string();
    Feature const& name = *Metamodel::instance().metaclassOf(aElement).feature("name");
    return std::string(fDialect.fPrimitives) + textsOf(aElement, name, fModel.getDeviant()).front();
  };
  auto const inside = inUncovered();
  std::erase_if(roots, [&](Element const* aRoot) { return inside.contains(aRoot); });
  tags.fKept = [this, &tags](Element& aElement) { return keptBy(aElement, tags); };

  // Stereotypes stand beside the roots, as they were written.
  std::vector<std::string> applications;
  std::map<std::string, std::string> prefixes;
  for (std::uint32_t file = 0; fFiles != nullptr && file < fFiles->fFiles.size(); ++file) {
    TagEdits edits(fFiles->fFiles[file].fText.utf8(), '"');
    Applications all(*fFiles, file, fModel.getDeviant(), edits, tags);
    // By the ids that elements have in one text with those of all files.
    all.name([](Element const&) { return true; });
    all.patch({});
    edits.flushChildren();
    edits.sort();
    all.forEachText([&](Application const& aApplication, std::string aText) {
      declare(aApplication, aText, prefixes);
      applications.push_back(std::move(aText));
    });
  }

  bool const hasOneRoot = roots.size() == 1 && applications.empty() && fDialect.fIsTerse;
  std::string declarations;
  if (!fDialect.fXmiVersion.empty()) tags.attribute(declarations, "xmi:version", fDialect.fXmiVersion);
  tags.attribute(declarations, "xmlns:xmi", fDialect.fXmiAddress);
  tags.attribute(declarations, "xmlns:uml", fDialect.fUmlAddress);
  for (auto const& [prefix, address] : prefixes) tags.attribute(declarations, "xmlns:" + prefix, address);
  std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  if (!hasOneRoot) ((text += "<xmi:XMI") += declarations) += ">\n";
  for (Element* const root : roots) {
    std::string const indent = hasOneRoot ? "" : "  ";
    text += indent;
    std::size_t const start = text.size();
    tags.write(*root, tags.typeOf(*root), nullptr, indent, text);
    if (hasOneRoot) text.insert(text.find_first_of(" />", start), declarations);
    text += '\n';
  }
  for (std::string const& application : applications) ((text += "  ") += application) += '\n';
  if (!hasOneRoot) text += "</xmi:XMI>\n";
  return text;
}

bool WholeFile::isRoot(Element const& aElement) const {
  Kelm::Deviant const& deviant = fModel.getDeviant();
  return aElement.deviant_isValid(deviant) && containerOf(aElement, deviant) == nullptr;
}

std::unordered_set<Element const*> WholeFile::inUncovered() const {
  std::unordered_set<Element const*> elements;
  if (fFiles == nullptr) return elements;
  for (Kept const& kept : fFiles->fKept) {
    bool const isWritten = kept.fElement != nullptr && kept.fElement->deviant_isValid(fModel.getDeviant());
    ModelFile const& file = fFiles->fFiles[kept.fSpot.fFile];
    if (!isWritten || !hasPlace(file, kept) || kept.fIsAttribute) continue;
    for (Made const& made : madeIn(file, kept.fSpot.fOffset))
      if (isRoot(*made.fElement)) elements.insert(made.fElement.get());
  }
  return elements;
}

void WholeFile::declare(Application const& aApplication, std::string& aText,
                        std::map<std::string, std::string>& aPrefixes) {
  std::string const prefix(QualifiedName(markup::nameAt(aText, 1)).fPrefix);
  if (prefix.empty() || prefix == "uml" || prefix == "xmi" || prefix == "xsi") return;
  bool const isOwn = std::ranges::any_of(markup::attributes(aText, 1), [&](auto const& aAttribute) {
    return aAttribute.fName == "xmlns:" + prefix;
  });
  if (isOwn) return;
  ApplicationChange const* const change = fFiles->changeOf(aApplication);
  std::string const address =
      aApplication.fSpot.fOffset == 0 ? change->fProfileUri : fFiles->namespaceAt(aApplication.fSpot, prefix);
  // Of versions of a profile under one prefix each tag but those of the first tells its own.
  if (aPrefixes.try_emplace(prefix, address).first->second != address) declarePrefix(aText, prefix, address);
}

std::vector<std::string> WholeFile::keptBy(Element const& aElement, Tags& aTags) const {
  std::vector<std::string> kept;
  if (fFiles == nullptr) return kept;
  for (Kept const* const one : fFiles->keptBy(aElement)) {
    ModelFile const& file = fFiles->fFiles[one->fSpot.fFile];
    if (!hasPlace(file, *one)) continue;
    kept.push_back(textOf(file, *one, [&](Made const& aMade, std::string& aOut) {
      std::string_view const name = markup::nameAt(file.fText.utf8(), aMade.fOffset);
      if (isRoot(*aMade.fElement)) aTags.write(*aMade.fElement, name, nullptr, "", aOut);
    }));
  }
  for (Dangling const* const one : fFiles->danglingOf(aElement)) kept.push_back(textOf(*one));
  return kept;
}

}  // namespace umlmm::files
