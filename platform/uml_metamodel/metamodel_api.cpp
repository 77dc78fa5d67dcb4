#include "engine/access.h"
#include "engine/classes.h"
#include "engine/engine.h"
#include "engine/failures.h"
#include "engine/links.h"
#include "reflection/meta.h"
#include "uml_metamodel/umlmm/detail/metamodel.h"

namespace umlmm {

namespace detail {

Kelm::NSInterface::ModelElementIntf* createElement(int aMetaclass, Kelm::Model const& aModel,
                                                   std::span<Kelm::Object const> aRequired) {
  Kelm::ModelObject& model = aModel.object();
  if (!model.deviant_isValid(aModel.getDeviant()))
    Kelm::raiseFailure(Kelm::words::kNotInVariant, "uml_metamodel/metamodel_api");
  aModel.getDeviant().assertWritable(&model);
  engine::Element& element = engine::create(aMetaclass, model);
  if (aRequired.empty()) return &element;
  auto const required = engine::layoutOf(element).fRequired;
  auto const forEachGiven = [&](auto aAction) {
    for (std::size_t at = 0; at < aRequired.size() && at < required.size(); ++at)
      if (!aRequired[at].isNull()) aAction(engine::feature(required[at]), aRequired[at]);
  };
  try {
    // All checks come first: a part that has moved into a refused element would end with it.
    forEachGiven(
        [&](auto const& aFeature, auto const& aValue) { engine::checkReference(element, aFeature, aValue); });
    forEachGiven([&](auto const& aFeature, auto const& aValue) {
      engine::write(element, aModel.getDeviant(), aFeature, aValue);
    });
  } catch (...) {
    // Nothing of a refused element stays behind.
    engine::destroy(element, aModel.getDeviant());
    throw;
  }
  return &element;
}

Kelm::ImmutableClass metaClass(int aMetaclass) {
  return Kelm::ImmutableClass(reflection::metaClass(aMetaclass), Kelm::metaDeviant());
}

}  // namespace detail

Kelm::ImmutablePackage MetaPackage() {
  return Kelm::ImmutablePackage(reflection::metaPackage(), Kelm::metaDeviant());
}

}  // namespace umlmm
