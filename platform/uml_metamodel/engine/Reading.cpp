#include "engine/Reading.h"

#include "engine/Referrers.h"
#include "engine/computed.h"
#include "engine/links.h"

namespace umlmm::engine {

void Reading::collect(FeatureIndex aRoot, std::vector<Element*>& aOut) const {
  engine::collect(*fElement, feature(aRoot), aOut);
}

bool Reading::holds(FeatureIndex aRoot, Element const& aValue) const {
  return engine::holds(*fElement, feature(aRoot), aValue);
}

void Reading::collectAny(FeatureIndex aFeature, std::vector<Element*>& aOut) const {
  valuesOf(*this, feature(aFeature), aOut);
}

std::vector<Reference> Reading::referrers() const { return Referrers::of(*fElement); }

}  // namespace umlmm::engine
