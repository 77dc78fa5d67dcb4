#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "files/models.h"
#include "kelm/ModelElementIntf.h"
#include "kelm/kernel/containers/Ref.h"
#include "model_files/store/ModelFiles.h"
#include "uml_metamodel/umlmm/MetamodelExtension.h"

// Reads a file, changes the model at random through reflection, saves and reads again: the file holds what
// the model does. The text ends with its last ">"; the bytes behind it choose the changes.

/// What is written here need not outlive a loss of power.
extern "C" int fsync(int) { return 0; }

namespace umlmm::fuzzing {
namespace {

using files::Element;
using files::Feature;
using files::Kind;
using files::Metaclass;
using files::Metamodel;

constexpr std::size_t kMostEdits = 24;

/// Numbers from the bytes, and when there are no more from a generator that they have seeded.
class Choices {
 public:
  explicit Choices(std::string_view aBytes) : fBytes(aBytes) {
    for (char const byte : aBytes) fState = (fState ^ static_cast<unsigned char>(byte)) * 0x100000001b3ULL;
  }
  std::size_t below(std::size_t aCount) {
    std::size_t const number = next() | next() << 8;
    return aCount == 0 ? 0 : number % aCount;
  }

 private:
  std::size_t next() {
    if (fAt < fBytes.size()) return static_cast<unsigned char>(fBytes[fAt++]);
    fState = fState * 6364136223846793005ULL + 1442695040888963407ULL;
    return fState >> 56;
  }

  std::string_view fBytes;
  std::size_t fAt = 0;
  std::uint64_t fState = 0xcbf29ce484222325ULL;
};

constexpr std::string_view kTexts[] = {
    "",  "a", "a<b&\"c'>", "two\nlines", "\r\n\t ", " x ", "ü€😀", "]]>",  "&amp;", "true", "false",
    "0", "7", "-1",        "*",          "public",  "in",  "out", "none", "A",     "B",    "<![CDATA["};

class Editor {
 public:
  Editor(Kelm::Model const& aModel, Choices& aChoices)
      : fModel(aModel), fDeviant(aModel.getDeviant()), fChoices(aChoices) {}

  void edit() {
    auto const elements = elementsOf(fModel);
    if (elements.empty()) return;
    Element& element = *elements[fChoices.below(elements.size())];
    Element& other = *elements[fChoices.below(elements.size())];
    auto const& features = Metamodel::instance().metaclassOf(element).fOrder;
    Feature const& feature = *features[fChoices.below(features.size())];
    std::size_t const kind = fChoices.below(16);
    try {
      if (kind == 0) return element.destroy(fDeviant);
      if (kind < 3) return feature.fMethods->unsetEntry(&element, fDeviant, feature.fId);
      if (feature.fKind == Kind::Reference) return setReference(element, feature, other, kind % 2 == 0);
      setValue(element, feature);
    } catch (Kelm::Exception const&) {
      // A change that this element has no place for.
    }
  }

 private:
  void setValue(Element& aElement, Feature const& aFeature) {
    Kelm::Object const value = files::valueOf(aFeature, kTexts[fChoices.below(std::size(kTexts))]);
    if (value.isNull()) return;
    if (!aFeature.fMany) return aFeature.fMethods->setEntry(&aElement, fDeviant, aFeature.fId, value);
    files::appendValue(*aFeature.fMethods->getSequenceEntry(&aElement, fDeviant, aFeature.fId), aFeature,
                       value, fDeviant);
  }

  void setReference(Element& aElement, Feature const& aFeature, Element& aOther, bool aIsNew) {
    if (aFeature.fDerived && !aFeature.fComposite) return;
    Kelm::ClassObject value(&aOther, fDeviant);
    if (aIsNew && aFeature.fComposite && aFeature.fType != nullptr) value = made(*aFeature.fType);
    if (!aFeature.fMany)
      return aFeature.fMethods->setEntry(&aElement, fDeviant, aFeature.fId,
                                         Kelm::Object(value.get(), fDeviant));
    auto& values = *aFeature.fMethods->getSequenceEntry(&aElement, fDeviant, aFeature.fId);
    std::size_t const size = static_cast<std::size_t>(values.generic_size(fDeviant));
    if (!aIsNew && size > 0 && fChoices.below(3) == 0)
      return values.generic_erase(fDeviant, static_cast<int>(fChoices.below(size)));
    values.generic_insert(fDeviant, static_cast<int>(fChoices.below(size + 1)),
                          Kelm::Generic::RefAccess<Kelm::ClassObject>::make(value));
  }

  Kelm::ClassObject made(Metaclass const& aType) {
    std::vector<Metaclass const*> types;
    Metamodel::instance().forEach([&](Metaclass const& aMetaclass) {
      if (!aMetaclass.fAbstract && aMetaclass.isA(aType)) types.push_back(&aMetaclass);
    });
    Metaclass const& metaclass = *types.at(fChoices.below(types.size()));
    return createElement(fModel, Kelm::ImmutableClass(metaclass.fClass, Kelm::metaDeviant()));
  }

  Kelm::Model fModel;
  Kelm::Deviant fDeviant;
  Choices& fChoices;
};

std::string const& path() {
  static std::string const sPath =
      (std::filesystem::temp_directory_path() / ("fuzzed-" + std::to_string(::getpid()) + ".uml")).string();
  return sPath;
}

std::string bytesOf(std::string const& aPath) {
  std::ifstream file(aPath, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void expectSame(std::vector<std::string> const& aModel, std::vector<std::string> const& aRead) {
  if (aModel == aRead) return;
  std::string text = "the file is not what the model is";
  auto const list = [&](char const* aTitle, auto const& aLines, auto const& aOthers) {
    std::vector<std::string> alone;
    std::ranges::set_difference(aLines, aOthers, std::back_inserter(alone));
    text += aTitle;
    for (std::string const& line : alone) text += line + '\n';
  };
  list("; in the model alone:\n", aModel, aRead);
  list("in the file alone:\n", aRead, aModel);
  fail(text);
}

/// Whether it was saved; else the file is as it was.
bool isSaved(Kelm::Model const& aModel, std::string const& aBefore) {
  try {
    files::save(aModel);
    return true;
  } catch (files::Error const&) {
    if (bytesOf(path()) != aBefore) fail("a file that was changed by a saving that failed");
    return false;
  }
}

}  // namespace
}  // namespace umlmm::fuzzing

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* aData, std::size_t aSize) {
  using namespace umlmm;
  using namespace umlmm::fuzzing;
  std::string_view const data(reinterpret_cast<char const*>(aData), aSize);
  std::size_t const end = std::min(data.rfind('>'), data.size() - 1) + 1;
  std::string const text(data.substr(0, end));
  Choices choices(data.substr(end));
  std::ofstream(path(), std::ios::binary) << text;
  Kelm::Model const model = loaded({{path(), std::nullopt}});
  if (!model) return 0;
  Editor editor(model, choices);
  std::string before = text;
  for (int round = 0; round < 2; ++round) {
    for (std::size_t at = choices.below(kMostEdits); at-- > 0;) editor.edit();
    if (!isSaved(model, before)) return 0;
    before = bytesOf(path());
    if (files::textOf(model) != before) fail("a text that is not what was saved");
    Kelm::Model const again = loaded({{path(), std::nullopt}});
    if (!again) fail("a file that was saved and can't be read");
    expectSame(told(model), told(again));
  }
  for (char const* const dialect : {"omg-2.5.1", "eclipse"})
    if (!elementsOf(model).empty() && !loaded({{"other.uml", files::textOf(model, {dialect})}}))
      fail("a text in another dialect that can't be read");
  return 0;
}
