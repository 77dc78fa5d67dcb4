#include "engine/Change.h"
#include "engine/classTables.h"
#include "engine/engine.h"
#include "engine/enumerations.h"
#include "engine/failures.h"
#include "engine/featureAccess.h"
#include "engine/links.h"
#include "reflection/reflection.h"
#include "uml_metamodel/umlmm/detail/metamodel.h"

namespace umlmm {

namespace detail {

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

}  // namespace detail

Kelm::ImmutablePackage MetaPackage() {
  return Kelm::ImmutablePackage(reflection::metaPackage(), Kelm::metaDeviant());
}

}  // namespace umlmm
