#include "engine/kernel_features.h"

#include <algorithm>
#include <unordered_map>

#include "engine/Aside.h"
#include "engine/Change.h"
#include "engine/FeatureSequence.h"
#include "engine/ModelIndex.h"
#include "engine/Referrers.h"
#include "engine/classTables.h"
#include "engine/computed.h"
#include "engine/engine.h"
#include "engine/failures.h"
#include "engine/links.h"
#include "engine/metaobjects.h"
#include "kelm/ElementQueries.h"
#include "kelm/kernel/containers/sequence/SequenceCreator.h"
#include "kelm/values.h"

namespace umlmm::engine {

namespace {

constexpr char kSource[] = "uml_metamodel/engine/kernel_features";

using Kelm::NSInterface::ClassObjectIntf;
using Sequence = Kelm::Generic::SequenceIntf;

Reading root(Reading aElement) noexcept {
  while (Reading const owner = aElement.owner()) aElement = owner;
  return aElement;
}

/// "untitled1#//0/3/1": the model's uri and the way down from its top level, by position among the contents.
std::u16string uriOf(Reading aElement) {
  std::vector<Reading> way;
  for (Reading step = aElement; step; step = step.owner()) way.push_back(step);
  std::string path;
  PartList* const roots = aElement.model().roots();
  path = std::to_string(roots->positionOf(way.back().element()));
  std::vector<Element*> contents;
  for (std::size_t at = way.size() - 1; at > 0; --at) {
    contents.clear();
    way[at].collectParts(contents);
    auto const found = std::find(contents.begin(), contents.end(), way[at - 1].element());
    path += '/';
    path += std::to_string(found - contents.begin());
  }
  return std::u16string(aElement.model().getModelUri(aElement.deviant()).text()) +
         Kelm::toUtf16("#//" + path);
}

Kelm::Object textObject(std::u16string_view aText) {
  Kelm::String const text{std::u16string(aText)};
  return Kelm::Object(text.record(), Deviant());
}

/// A new counted sequence of elements.
Sequence* snapshot(std::vector<Element*> const& aElements, Deviant const& aDeviant) {
  auto const result = Kelm::SequenceCreator::create<Kelm::Object>({aDeviant, Kelm::STD_VECTOR, false, true});
  for (Element* const element : aElements) result.push_back(Kelm::Object(element, aDeviant));
  result.get()->incRef();
  return result.get();
}

std::vector<Element*> referrers(Element const& aElement) {
  std::vector<Element*> found;
  for (Reference const& reference : Referrers::of(aElement)) found.push_back(reference.fOwner);
  auto const addFarEnds = [&](Feature const& aRoot) {
    if (aRoot.fOpposite == kNoFeature || ownsParts(aRoot)) return;
    if (feature(aRoot.fOpposite).fStorage != Storage::Container) collect(aElement, aRoot, found);
  };
  for (FeatureIndex const index : storedReferences(aElement)) addFarEnds(feature(index));
  forEachAdded(aElement, [&](Feature const& aAdded, std::uint64_t) {
    if (aAdded.isReference()) addFarEnds(aAdded);
  });
  std::unordered_map<Element*, bool> seen;
  std::erase_if(found, [&](Element* const element) { return !seen.emplace(element, true).second; });
  return found;
}

/// Texts of other tools about elements.
Asides::Texts& toolTexts(Element const& aElement, unsigned aId) {
  return Asides::of(*aElement.model()).toolTexts(aId == ClassObjectIntf::ExternalId ? 0 : 1);
}

/// The id of an element in a file, null for none.
Kelm::Object fileId(Element const& aElement) {
  Kelm::ExternalIds const* const ids = aElement.model()->externalIds();
  Kelm::String const id = ids == nullptr ? Kelm::String() : ids->externalId(aElement);
  return id.empty() ? Kelm::Object() : Kelm::Object(id.record(), Deviant());
}

Kelm::Object toolText(Element const& aElement, unsigned aId) {
  if ((aElement.marks() & Element::HasToolTexts) != 0) {
    auto const& texts = toolTexts(aElement, aId);
    auto const found = texts.find(&aElement);
    if (found != texts.end()) return Kelm::Object(found->second.record(), Deviant());
  }
  return aId == ClassObjectIntf::ExternalId ? fileId(aElement) : Kelm::Object();
}

}  // namespace

Kelm::Object kernelEntry(Element const* aElement, Deviant const& aDeviant, unsigned aId) {
  Reading const element = readable(*aElement, aDeviant, kSource);
  switch (aId) {
    case ClassObjectIntf::ModelKelm:
      return Kelm::Object(aElement->model(), aDeviant);
    case ClassObjectIntf::ContainerKelm:
      return element.owner().object();
    case ClassObjectIntf::RootModel:
      return root(element).object();
    case ClassObjectIntf::Uri:
      return textObject(uriOf(element));
    case ClassObjectIntf::ExternalId:
    case ClassObjectIntf::ExternalToolInfo:
      return toolText(*aElement, aId);
    default:
      return Kelm::Object();
  }
}

void setKernelEntry(Element* aElement, Deviant const& aDeviant, unsigned aId, Kelm::Object const& aValue) {
  checkWritable(*aElement, aDeviant, kSource);
  if (aId != ClassObjectIntf::ExternalId && aId != ClassObjectIntf::ExternalToolInfo)
    failures::raise(kSource, "Only externalId and externalToolInfo of the kernel's features can be set");
  auto& texts = toolTexts(*aElement, aId);
  if (aValue.isNull()) {
    texts.erase(aElement);
    return;
  }
  Kelm::StringObject const* const text = Kelm::asString(aValue);
  if (text == nullptr) kelm::Error_IncorrectType("String");
  texts[aElement] = Kelm::String(text);
  Asides::note(*aElement, Element::HasToolTexts);
}

Sequence* kernelSequence(Element const* aElement, Deviant const& aDeviant, unsigned aId) {
  checkReadable(*aElement, aDeviant, kSource);
  if (aId == ClassObjectIntf::ContaineeKelm)
    return &FeatureSequence::of(const_cast<Element&>(*aElement), feature(kOwnedElements));
  if (aId == ClassObjectIntf::AppliedStereotypeInstance)
    return &FeatureSequence::of(const_cast<Element&>(*aElement), kAppliedStereotypeInstance);
  return nullptr;
}

void installQueries() {
  Kelm::ElementQueries queries;
  queries.instancesOf = [](Kelm::ModelObject& aModel, Deviant const& aDeviant,
                           Kelm::NSInterface::ClassIntf const& aClass) {
    std::vector<Element*> found;
    if (&aClass == Kelm::ImmutableClassObject::MetaClass().get())
      forEachElement(aModel, [&](Element& aElement) { found.push_back(&aElement); });
    else if (int const metaclass = metaclassIndex(aClass); metaclass >= 0)
      found = ModelIndex::of(aModel).instancesOf(metaclass);
    return snapshot(found, aDeviant);
  };
  queries.referencedBy = [](Element const& aElement, Deviant const& aDeviant) {
    checkReadable(aElement, aDeviant, kSource);
    return snapshot(referrers(aElement), aDeviant);
  };
  Kelm::setElementQueries(queries);
  Kelm::dropElements = Change::dropAll;
}

}  // namespace umlmm::engine
