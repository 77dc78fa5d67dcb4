#include "files/models.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <unordered_set>

#include "kelm/ModelElementIntf.h"
#include "model_files/store/ModelFiles.h"
#include "model_files/writing/Comparison.h"

namespace umlmm::fuzzing {

using files::Element;
using files::Metaclass;
using files::Metamodel;

void fail(std::string_view aWhat) {
  std::fprintf(stderr, "%.*s\n", static_cast<int>(aWhat.size()), aWhat.data());
  std::abort();
}

Kelm::Model loaded(std::vector<files::Input> aInputs, bool aIsStrict) {
  files::LoadOptions options;
  options.fStrict = aIsStrict;
  try {
    files::Loading loading(std::move(aInputs), options);
    while (!loading.step(std::chrono::milliseconds(1))) {
      double const progress = loading.progress();
      if (!(progress >= 0 && progress <= 1)) fail("progress beyond its bounds");
    }
    return loading.model();
  } catch (files::Error const& refusal) {
    if (std::string_view(refusal.what()).empty()) fail("a refusal without a word");
    return {};
  }
}

std::vector<Element*> elementsOf(Kelm::Model const& aModel) {
  Kelm::Deviant const deviant = aModel.getDeviant();
  files::ModelFiles const* const own = files::ModelFiles::find(aModel);
  std::vector<Element*> elements;
  std::unordered_set<Element const*> known;
  auto const add = [&](Element* aElement) {
    if (aElement != nullptr && known.insert(aElement).second) elements.push_back(aElement);
  };
  if (auto const* const roots = aModel.object().roots())
    for (Element* const root : *roots)
      if (root != nullptr && (own == nullptr || own->standIn(*root) == nullptr)) add(root);
  for (std::size_t at = 0; at < elements.size(); ++at)
    for (files::Feature const* const feature : Metamodel::instance().metaclassOf(*elements[at]).fOrder)
      if (feature->fComposite && files::isWritten(*feature))
        for (Element* const part : files::elementsOf(*elements[at], *feature, deviant)) add(part);
  return elements;
}

namespace {

std::string nameOf(Element const& aElement, Kelm::Deviant const& aDeviant) {
  Metaclass const& metaclass = Metamodel::instance().metaclassOf(aElement);
  std::string text(metaclass.fName);
  std::string const id = files::externalIdOf(aElement, aDeviant);
  if (!id.empty()) return text + '#' + id;
  if (files::Feature const* const name = metaclass.feature("name"))
    for (std::string const& part : files::textsOf(aElement, *name, aDeviant)) (text += ' ') += part;
  return text;
}

std::vector<std::string> valuesOf(Element const& aElement, files::Feature const& aFeature,
                                  Kelm::Deviant const& aDeviant) {
  if (aFeature.fKind != files::Kind::Reference) return files::textsOf(aElement, aFeature, aDeviant);
  std::vector<std::string> names;
  for (Element const* const value : files::elementsOf(aElement, aFeature, aDeviant))
    names.push_back(nameOf(*value, aDeviant));
  // The end of a link that files leave to the other end comes in the order of the others.
  if (aFeature.fOpposite != nullptr && aFeature.fMany && !aFeature.fOrdered) std::ranges::sort(names);
  return names;
}

}  // namespace

std::vector<std::string> told(Kelm::Model const& aModel) {
  Kelm::Deviant const deviant = aModel.getDeviant();
  std::vector<std::string> lines;
  for (Element* const element : elementsOf(aModel)) {
    std::string& line = lines.emplace_back(nameOf(*element, deviant));
    for (files::Feature const* const feature : Metamodel::instance().metaclassOf(*element).fOrder) {
      if (!files::isWritten(*feature)) continue;
      ((line += "\n  ") += feature->fName) += ':';
      for (std::string const& text : valuesOf(*element, *feature, deviant)) (line += " | ") += text;
    }
  }
  std::ranges::sort(lines);
  return lines;
}

}  // namespace umlmm::fuzzing
