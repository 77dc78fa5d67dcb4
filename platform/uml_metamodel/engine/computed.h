#pragma once

#include <vector>

#include "engine/Reading.h"

/// Features without a slot: unions of their subsets, and those with a derivation of their own.
namespace umlmm::engine {

/// How one computed feature reads and writes. Members that do not apply are null: a derivation has either a
/// value or values, and a read-only one can't be written. Elements come checked against the variant, in which
/// all else is read, too, and values against the feature's type and model.
struct Derivation {
  /// A single value; a null object for none.
  Kelm::Object (*fValue)(Reading aElement) = nullptr;
  /// Values in order, each once.
  void (*fValues)(Reading aElement, std::vector<Element*>& aOut) = nullptr;
  /// Sets or, with a null object, unsets a single value.
  void (*fSet)(Reading aElement, Kelm::Object const& aValue) = nullptr;
  /// Puts a value before another one of the feature, or at the end.
  void (*fInsert)(Reading aElement, Element& aValue, Element* aBefore) = nullptr;
  void (*fErase)(Reading aElement, Element& aValue) = nullptr;
  /// Puts all values of the feature into the order given.
  void (*fArrange)(Reading aElement, std::vector<Element*> const& aOrder) = nullptr;
};

/// By feature; null for stored features and for unions without a derivation of their own. Made from the
/// catalogue: a computed feature without one fails to link.
extern Derivation const* const kDerivations[kFeatureCount];

void computeValues(Reading aElement, Feature const& aFeature, std::vector<Element*>& aOut);
Kelm::Object computeValue(Reading aElement, Feature const& aFeature);
void setComputed(Reading aElement, Feature const& aFeature, Kelm::Object const& aValue);

void checkComputed(Element const& aElement, Feature const& aFeature, Element const& aValue);
void insertComputed(Reading aElement, Feature const& aFeature, Element& aValue, Element* aBefore);
void eraseComputed(Reading aElement, Feature const& aFeature, Element& aValue);
void assignComputed(Reading aElement, Feature const& aFeature, std::vector<Element*> const& aValues);
/// Puts all values into the order given; raises for a feature whose order follows from elsewhere.
void arrangeComputed(Reading aElement, Feature const& aFeature, std::vector<Element*> const& aOrder);

/// Appends the values of any reference feature: stored, container, union or computed.
void valuesOf(Reading aElement, Feature const& aFeature, std::vector<Element*>& aOut);
inline std::vector<Element*> valuesOf(Reading aElement, Feature const& aFeature) {
  std::vector<Element*> values;
  valuesOf(aElement, aFeature, values);
  return values;
}

}  // namespace umlmm::engine
