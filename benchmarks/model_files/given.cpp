// The same figures as `files_benchmark.cpp` for files that are given, one line of JSON a file: nanoseconds of
// processor time a byte for a bare parse, for making the same elements, values and links, for loading, and
// for the text of the unchanged model. Elements are made by the C++ interface for metaclasses that are not
// known when the program is written.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>
#include <pugixml.hpp>
#include <set>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kelm/ModelElementIntf.h"
#include "kelm/kernel/containers/Ref.h"
#include "model_files/dialect/values.h"
#include "model_files/files.h"
#include "model_files/writing/Comparison.h"
#include "uml_metamodel/umlmm/MetamodelExtension.h"
#include "uml_metamodel/umlmm/models.h"

namespace {

using umlmm::files::Element;
using umlmm::files::Feature;
using umlmm::files::Kind;
using umlmm::files::Metaclass;
using umlmm::files::Metamodel;

Kelm::ClassObject makeElement(Kelm::Model const& aModel, Metaclass const& aMetaclass) {
  return umlmm::createElement(aModel, Kelm::ImmutableClass(aMetaclass.fClass, Kelm::metaDeviant()));
}

/// What a model is made of, in the order in which it can be made again.
class Plan {
 public:
  explicit Plan(Kelm::Model const& aModel) : fDeviant(aModel.getDeviant()) {
    for (Element* const root : *aModel.object().roots())
      if (root != nullptr) add(*root);
    for (std::size_t at = 0; at < fElements.size(); ++at)
      for (Feature const* const feature : metaclassOf(at).fOrder)
        if (umlmm::files::isWritten(*feature) && feature->fKind == Kind::Reference && feature->fComposite)
          for (Element* const part : umlmm::files::elementsOf(*fElements[at], *feature, fDeviant))
            if (add(*part)) fParts.push_back({at, feature, fNumbers.at(part)});
    Kelm::Model const scratch = umlmm::createNewModel();
    for (std::size_t at = 0; at < fElements.size(); ++at) planRest(at, scratch);
  }

  Kelm::Model run() const {
    Kelm::Model const model = umlmm::createNewModel();
    Kelm::Deviant const deviant = model.getDeviant();
    std::vector<Element*> made;
    made.reserve(fKinds.size());
    for (Metaclass const* const kind : fKinds) made.push_back(makeElement(model, *kind).get());
    for (Value const& value : fValues) {
      Feature const& feature = *value.fFeature;
      Kelm::Object const object = umlmm::files::valueOf(feature, value.fText);
      if (!feature.fMany)
        feature.fMethods->setEntry(made[value.fElement], deviant, feature.fId, object);
      else
        umlmm::files::appendValue(
            *feature.fMethods->getSequenceEntry(made[value.fElement], deviant, feature.fId), feature, object,
            deviant);
    }
    for (auto const* const links : {&fParts, &fReferences})
      for (Link const& link : *links) {
        Feature const& feature = *link.fFeature;
        Element* const value = made[link.fValue];
        if (!feature.fMany)
          feature.fMethods->setEntry(made[link.fElement], deviant, feature.fId, Kelm::Object(value, deviant));
        else
          feature.fMethods->getSequenceEntry(made[link.fElement], deviant, feature.fId)
              ->generic_push_back(deviant, Kelm::Generic::RefAccess<Kelm::ClassObject>::make(
                                               Kelm::ClassObject(value, deviant)));
      }
    return model;
  }
  std::size_t size() const noexcept { return fElements.size(); }

 private:
  struct Value {
    std::size_t fElement;
    Feature const* fFeature;
    std::string fText;
  };
  struct Link {
    std::size_t fElement;
    Feature const* fFeature;
    std::size_t fValue;
  };

  Metaclass const& metaclassOf(std::size_t aNumber) const { return *fKinds[aNumber]; }
  bool add(Element& aElement) {
    if (!fNumbers.emplace(&aElement, fElements.size()).second) return false;
    fElements.push_back(&aElement);
    fKinds.push_back(&Metamodel::instance().metaclassOf(aElement));
    return true;
  }
  void planRest(std::size_t aNumber, Kelm::Model const& aScratch) {
    Kelm::ClassObject const fresh = makeElement(aScratch, metaclassOf(aNumber));
    Element& element = *fElements[aNumber];
    for (Feature const* const feature : metaclassOf(aNumber).fOrder) {
      if (!umlmm::files::isWritten(*feature)) continue;
      if (feature->fKind != Kind::Reference) {
        auto const texts = umlmm::files::textsOf(element, *feature, fDeviant);
        if (texts == umlmm::files::textsOf(*fresh.get(), *feature, aScratch.getDeviant())) continue;
        for (std::string const& text : texts) fValues.push_back({aNumber, feature, text});
        continue;
      }
      if (feature->fComposite) continue;
      // One end makes the other one.
      for (Element const* const value : umlmm::files::elementsOf(element, *feature, fDeviant))
        if (!fLinks.contains({value, feature->fOpposite, &element})) {
          fLinks.emplace(&element, feature, value);
          fReferences.push_back({aNumber, feature, fNumbers.at(value)});
        }
    }
  }

  Kelm::Deviant fDeviant;
  std::vector<Element*> fElements;
  std::unordered_map<Element const*, std::size_t> fNumbers;
  std::vector<Metaclass const*> fKinds;
  std::vector<Value> fValues;
  std::vector<Link> fParts;
  std::vector<Link> fReferences;
  std::set<std::tuple<Element const*, Feature const*, Element const*>> fLinks;
};

Kelm::Model read(std::string const& aPath, std::string const& aText) {
  std::vector<umlmm::files::Input> inputs;
  inputs.push_back({aPath, aText});
  umlmm::files::Loading loading(std::move(inputs));
  while (!loading.step(std::chrono::hours(1))) {
  }
  return loading.model();
}

double processorTime() {
  timespec time{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

template <class Work>
void measure(double& aBest, Work aWork) {
  double const start = processorTime();
  [[maybe_unused]] auto const result = aWork();
  aBest = std::min(aBest, processorTime() - start);
}

void measureFile(char const* aPath, double aSeconds) {
  std::ifstream file(aPath, std::ios::binary);
  std::string const text{std::istreambuf_iterator<char>(file), {}};
  Kelm::Model const model = read(aPath, text);
  Plan const plan(model);
  double parse = 1e18;
  double create = 1e18;
  double load = 1e18;
  double save = 1e18;
  double const start = processorTime();
  do {
    measure(parse, [&] {
      std::string copy = text;
      pugi::xml_document document;
      return document.load_buffer_inplace(copy.data(), copy.size()).status;
    });
    Kelm::Model made;
    measure(create, [&] { return made = plan.run(), 0; });
    made.object().close();
    measure(load, [&] { return made = read(aPath, text), 0; });
    made.object().close();
    measure(save, [&] { return umlmm::files::textOf(model).size(); });
  } while (processorTime() - start < aSeconds * 1e9);
  auto const size = static_cast<double>(text.size());
  std::printf(R"({"elements": %zu, "bytes": %zu, "parse": %g, "create": %g, "load": %g, "save": %g})"
              "\n",
              plan.size(), text.size(), parse / size, create / size, load / size, save / size);
}

}  // namespace

/// A file, and for how many seconds it is measured at least.
int main(int aCount, char** aArguments) {
  if (aCount != 3) return 2;
  try {
    measureFile(aArguments[1], std::strtod(aArguments[2], nullptr));
  } catch (umlmm::files::Error const& refusal) {
    std::fprintf(stderr, "%s\n", refusal.what());
    return 1;
  }
}
