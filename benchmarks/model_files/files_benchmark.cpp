// Loading a model file against its two unavoidable parts, a bare parse by the same parser and making the same
// elements by the typed interface; saving it unchanged against the bare parse. All are told in nanoseconds a
// byte of the file. What begins with "first" is about a fresh process: it does everything once, and tells
// memory in bytes a byte of the file.

#include <benchmark/benchmark.h>

#include <chrono>
#include <fstream>
#include <map>
#include <pugixml.hpp>
#include <string>
#include <utility>
#include <vector>

#include "model_files/files.h"
#include "uml_metamodel/umlmm.h"

namespace {

namespace files = umlmm::files;

constexpr int kAttributes = 4;

std::string id(char const* aKind, int aNumber) { return "_" + std::string(aKind) + std::to_string(aNumber); }

/// Classes with attributes, each of the type of another class, in the words of one tool.
std::string textOf(int aClasses) {
  std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<uml:Model xmi:version=\"20131001\" "
      "xmlns:xmi=\"http://www.omg.org/spec/XMI/20131001\" "
      "xmlns:uml=\"http://www.eclipse.org/uml2/5.0.0/UML\" xmi:id=\"_m\" name=\"model\">\n";
  for (int at = 0; at < aClasses; ++at) {
    text += "  <packagedElement xmi:type=\"uml:Class\" xmi:id=\"" + id("abcdefghijklmno", at) +
            "\" name=\"Class" + std::to_string(at) + "\">\n";
    for (int number = 0; number < kAttributes; ++number)
      text += "    <ownedAttribute xmi:id=\"" + id("pqrstuvwxyzabcd", at * kAttributes + number) +
              "\" name=\"attribute" + std::to_string(number) + "\" visibility=\"private\" type=\"" +
              id("abcdefghijklmno", (at * 7 + number) % aClasses) + "\"/>\n";
    text += "  </packagedElement>\n";
  }
  return text + "</uml:Model>\n";
}

std::string const& textOf(benchmark::State const& aState) {
  static std::map<std::int64_t, std::string> sTexts;
  std::string& text = sTexts[aState.range(0)];
  if (text.empty()) text = textOf(static_cast<int>(aState.range(0)));
  return text;
}

void count(benchmark::State& aState, std::string const& aText) {
  aState.SetItemsProcessed(aState.iterations() * static_cast<std::int64_t>(aText.size()));
}

void parse(benchmark::State& aState) {
  std::string const& text = textOf(aState);
  for ([[maybe_unused]] auto _ : aState) {
    std::string copy = text;
    pugi::xml_document document;
    benchmark::DoNotOptimize(document.load_buffer_inplace(copy.data(), copy.size()));
  }
  count(aState, text);
}

Kelm::Model created(int aClasses) {
  Kelm::Model const model = umlmm::createNewModel();
  auto const root = umlmm::Model::create(model);
  std::vector<umlmm::Class> all;
  for (int at = 0; at < aClasses; ++at) {
    umlmm::Class const& added = all.emplace_back(umlmm::Class::create(model));
    added.setName("Class" + std::to_string(at));
    root.getPackagedElement().push_back(added);
    for (int number = 0; number < kAttributes; ++number) {
      auto const attribute = umlmm::Property::create(model);
      attribute.setName("attribute" + std::to_string(number));
      attribute.setVisibility(umlmm::VisibilityKind::Private);
      added.getOwnedAttribute().push_back(attribute);
    }
  }
  for (int at = 0; at < aClasses; ++at)
    for (int number = 0; number < kAttributes; ++number)
      all[static_cast<std::size_t>(at)].getOwnedAttribute().at(number).setType(
          all[static_cast<std::size_t>((at * 7 + number) % aClasses)]);
  return model;
}

void create(benchmark::State& aState) {
  std::string const& text = textOf(aState);
  for ([[maybe_unused]] auto _ : aState) {
    Kelm::Model const model = created(static_cast<int>(aState.range(0)));
    aState.PauseTiming();
    model.object().close();
    aState.ResumeTiming();
  }
  count(aState, text);
}

Kelm::Model read(std::string const& aText) {
  std::vector<files::Input> inputs;
  inputs.push_back({"model.uml", aText});
  files::Loading loading(std::move(inputs));
  while (!loading.step(std::chrono::hours(1))) {
  }
  return loading.model();
}

void load(benchmark::State& aState) {
  std::string const& text = textOf(aState);
  for ([[maybe_unused]] auto _ : aState) {
    Kelm::Model const model = read(text);
    aState.PauseTiming();
    model.object().close();
    aState.ResumeTiming();
  }
  count(aState, text);
}

void saveUnchanged(benchmark::State& aState) {
  std::string const& text = textOf(aState);
  Kelm::Model const model = read(text);
  for ([[maybe_unused]] auto _ : aState) benchmark::DoNotOptimize(files::textOf(model));
  count(aState, text);
}

/// Of this process, in bytes: "VmRSS" is what it holds, "VmHWM" the most that it has held.
double memory(std::string const& aRow) {
  std::ifstream status("/proc/self/status");
  for (std::string name, value, rest; status >> name >> value && std::getline(status, rest);)
    if (name == aRow + ":") return 1024 * std::stod(value);
  return 0;
}

/// Counters: by how much the process grows, and by how much at most in between.
template <class Make>
void first(benchmark::State& aState, Make aMake) {
  std::string const& text = textOf(aState);
  auto const size = static_cast<double>(text.size());
  // Forgets what was held before.
  std::ofstream("/proc/self/clear_refs") << "5";
  double const before = memory("VmRSS");
  Kelm::Model model;
  for ([[maybe_unused]] auto _ : aState) model = aMake(text);
  aState.counters["memory"] = (memory("VmRSS") - before) / size;
  aState.counters["peak"] = (memory("VmHWM") - before) / size;
  count(aState, text);
}

void firstCreate(benchmark::State& aState) {
  first(aState, [&](std::string const&) { return created(static_cast<int>(aState.range(0))); });
}

void firstLoad(benchmark::State& aState) { first(aState, read); }

BENCHMARK(firstCreate)->Arg(320'000)->Iterations(1);
BENCHMARK(firstLoad)->Arg(8'000)->Arg(320'000)->Iterations(1);
BENCHMARK(parse)->Arg(8'000)->Arg(320'000);
BENCHMARK(create)->Arg(8'000)->Arg(320'000);
BENCHMARK(load)->Arg(8'000)->Arg(320'000);
BENCHMARK(saveUnchanged)->Arg(8'000)->Arg(320'000);

}  // namespace
