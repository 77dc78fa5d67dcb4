#include "model_files/writing/WholeFile.h"

#include <algorithm>
#include <map>

#include "kelm/ModelElementIntf.h"
#include "model_files/dialect/namespaces.h"
#include "model_files/text/markup.h"
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

/// Prefixes that the tags of a file use, beside those of every file.
void collectPrefixes(ModelFile const& aFile, std::uint64_t aTag, std::map<std::string, std::string>& aOut) {
  std::string const prefix(QualifiedName(markup::nameAt(aFile.fText.utf8(), aTag)).fPrefix);
  if (prefix.empty() || prefix == "uml" || prefix == "xmi" || prefix == "xsi") return;
  aOut.try_emplace(prefix, aFile.declaration(aTag, prefix));
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
      file.fIds.forEach([&](std::string_view aId, Element const&) { tags.useId(aId); });
  tags.fForeignAddress = [this](Element& aElement) {
    StandIn const* const standIn = fFiles == nullptr ? nullptr : fFiles->standIn(aElement);
    if (standIn == nullptr) return std::string();
    Feature const& name = *Metamodel::instance().metaclassOf(aElement).feature("name");
    return std::string(fDialect.fPrimitives) + textsOf(aElement, name, fModel.getDeviant()).front();
  };
  tags.fKept = [this](Element& aElement) { return keptBy(aElement); };

  // Stereotypes stand beside the roots, as they were written.
  std::vector<std::string> applications;
  std::map<std::string, std::string> prefixes;
  std::map<std::pair<std::uint32_t, std::uint64_t>, bool> seen;
  if (fFiles != nullptr)
    for (Application const& application : fFiles->fApplications) {
      bool const isThere = application.fElement->deviant_isValid(fModel.getDeviant());
      if (!isThere || application.fIsInExtension ||
          !seen.try_emplace({application.fSpot.fFile, application.fSpot.fOffset}).second)
        continue;
      ModelFile const& file = fFiles->fFiles[application.fSpot.fFile];
      applications.emplace_back(markup::element(file.fText.utf8(), application.fSpot.fOffset));
      collectPrefixes(file, application.fSpot.fOffset, prefixes);
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

std::vector<std::string> WholeFile::keptBy(Element const& aElement) const {
  std::vector<std::string> kept;
  if (fFiles == nullptr) return kept;
  for (Kept const* const one : fFiles->keptBy(aElement)) {
    std::string_view const text = fFiles->fFiles[one->fSpot.fFile].fText.utf8();
    std::string_view const name = markup::nameAt(text, one->fSpot.fOffset);
    // Extensions and annotations are a tool's own.
    bool const isOwn = name.find(':') != std::string_view::npos || name == "eAnnotations";
    if (!one->fIsAttribute && !isOwn) kept.emplace_back(markup::element(text, one->fSpot.fOffset));
  }
  for (Dangling const* const one : fFiles->danglingOf(aElement)) {
    std::string tag = "<" + std::string(one->fFeature->fName);
    std::string const quoted = markup::escaped(one->fAddress, '"');
    bool const isId = one->fAddress.find('#') == std::string::npos;
    tag += isId ? " xmi:idref=\"" + quoted : " href=\"" + quoted;
    kept.push_back(tag + "\"/>");
  }
  return kept;
}

}  // namespace umlmm::files
