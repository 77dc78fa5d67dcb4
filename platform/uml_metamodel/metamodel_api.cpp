#include "engine/Change.h"
#include "engine/FeatureSequence.h"
#include "engine/Reading.h"
#include "engine/classTables.h"
#include "engine/engine.h"
#include "engine/enumerations.h"
#include "engine/failures.h"
#include "engine/featureAccess.h"
#include "engine/links.h"
#include "reflection/reflection.h"
#include "uml_metamodel/umlmm/detail/direct.h"
#include "uml_metamodel/umlmm/detail/metamodel.h"

namespace umlmm {

namespace detail {

namespace {
constexpr char kSource[] = "uml_metamodel/engine/access";
}  // namespace

Kelm::NSInterface::ModelElementIntf* createElement(int aMetaclass, Kelm::Model const& aModel,
                                                   std::span<Kelm::Object const> aRequired) {
  Kelm::ModelObject& model = aModel.object();
  if (!model.deviant_isValid(aModel.getDeviant()))
    Kelm::raiseFailure(Kelm::words::kNotInVariant, "uml_metamodel/metamodel_api");
  aModel.getDeviant().assertWritable(&model);
  if (aRequired.empty()) return &engine::Change::create(aMetaclass, model);
  // Nothing of a refused element stays behind.
  engine::Change change(model);
  engine::Element& element = engine::Change::create(aMetaclass, model);
  auto const required = engine::layoutOf(element).fRequired;
  for (std::size_t at = 0; at < aRequired.size() && at < required.size(); ++at)
    if (!aRequired[at].isNull())
      engine::write(element, aModel.getDeviant(), engine::feature(required[at]), aRequired[at]);
  change.commit();
  return &element;
}

Kelm::ImmutableClass metaClass(int aMetaclass) {
  return Kelm::ImmutableClass(reflection::metaClass(aMetaclass), Kelm::metaDeviant());
}

Kelm::EnumerationType const* enumerationType(Kelm::NSInterface::DataTypeIntf const& aType) {
  engine::ValueType kind = engine::ValueType::String;
  int const index = reflection::dataTypeIndex(aType, kind);
  return index >= 0 && kind == engine::ValueType::Enumeration ? &engine::enumeration(index) : nullptr;
}

void raiseNotReadable(ModelElement const& aElement) { engine::raiseNotInVariant(aElement, kSource); }

ModelElement const* containerIn(ModelElement const& aElement, std::uint16_t aNumber) noexcept {
  return engine::containerThrough(aElement, engine::feature(aNumber));
}

ModelElement const* computedIn(ModelElement const& aElement, Kelm::Deviant const& aDeviant,
                               std::uint16_t aNumber) {
  return engine::elementOf(engine::read(aElement, aDeviant, engine::feature(aNumber)));
}

std::vector<ModelElement*> computedListIn(ModelElement const& aElement, Kelm::Deviant const& aDeviant,
                                          std::uint16_t aNumber) {
  return engine::readable(aElement, aDeviant, kSource).values(aNumber);
}

void setText(ModelElement& aElement, Kelm::Deviant const& aDeviant, std::uint16_t aNumber,
             Kelm::StringObject const* aText) {
  engine::checkWritable(aElement, aDeviant, kSource);
  engine::Change::setText(aElement, engine::feature(aNumber), aText);
}

StoredFeature storedFeature(Kelm::NSInterface::PropertyIntf const& aProperty) noexcept {
  int const index = reflection::featureIndex(aProperty);
  if (index < 0) return {};
  engine::Feature const& feature = engine::feature(static_cast<engine::FeatureIndex>(index));
  Storage const storage = feature.fStorage;
  bool const isKept =
      storage != Storage::Computed && storage != Storage::Container && storage != Storage::PrimitiveList;
  bool const isPublished = !engine::isAdded(feature.fRoot) && !feature.fReadOnly;
  if (!isKept || !isPublished || (storage == Storage::List) != feature.isMany()) return {};
  return {feature.fRoot, storage, false};
}

void setBits(ModelElement& aElement, Kelm::Deviant const& aDeviant, std::uint16_t aNumber,
             std::uint32_t aBits) {
  engine::checkWritable(aElement, aDeviant, kSource);
  engine::writeBits(aElement, engine::feature(aNumber), aBits);
}

void addTarget(ModelElement& aElement, Kelm::Deviant const& aDeviant, std::uint16_t aNumber,
               ModelElement& aValue) {
  engine::checkWritable(aElement, aDeviant, kSource);
  engine::add(aElement, engine::feature(aNumber), aValue);
}

}  // namespace detail

Kelm::ImmutablePackage MetaPackage() {
  return Kelm::ImmutablePackage(reflection::metaPackage(), Kelm::metaDeviant());
}

}  // namespace umlmm
