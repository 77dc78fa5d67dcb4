#pragma once

#include <vector>

#include "engine/slots.h"

/// Features without a slot: unions of their subsets, and those with a rule of their own.
namespace umlmm::engine {

/// How one computed feature reads and writes. Members that do not apply are null: a rule has either a value
/// or values, and a read-only one can't be written. Elements come checked against the variant and values
/// against the feature's type and model.
struct Rule {
  /// A single value; a null object for none.
  Kelm::Object (*fValue)(Element const& aElement, Deviant const& aDeviant) = nullptr;
  /// Values in order, each once.
  void (*fValues)(Element const& aElement, std::vector<Element*>& aOut) = nullptr;
  /// Sets or, with a null object, unsets a single value.
  void (*fSet)(Element& aElement, Deviant const& aDeviant, Kelm::Object const& aValue) = nullptr;
  /// Puts a value before another one of the feature, or at the end.
  void (*fInsert)(Element& aElement, Element& aValue, Element* aBefore) = nullptr;
  void (*fErase)(Element& aElement, Element& aValue) = nullptr;
  /// Puts all values of the feature into the order given.
  void (*fArrange)(Element& aElement, std::vector<Element*> const& aOrder) = nullptr;
};

/// By feature; null for stored features and for unions without a rule of their own. Made from the catalogue:
/// a computed feature without a rule fails to link.
extern Rule const* const kRules[kFeatureCount];

/// The kernel's feature for applied stereotypes, of which there are none yet. It stands in no table.
extern Feature const kAppliedStereotypeInstance;

void computeValues(Element const& aElement, Feature const& aFeature, std::vector<Element*>& aOut);
Kelm::Object computeValue(Element const& aElement, Deviant const& aDeviant, Feature const& aFeature);
void setComputed(Element& aElement, Deviant const& aDeviant, Feature const& aFeature,
                 Kelm::Object const& aValue);

void checkComputed(Element const& aElement, Feature const& aFeature, Element const& aValue);
void insertComputed(Element& aElement, Feature const& aFeature, Element& aValue, Element* aBefore);
void eraseComputed(Element& aElement, Feature const& aFeature, Element& aValue);
void assignComputed(Element& aElement, Feature const& aFeature, std::vector<Element*> const& aValues);
/// Puts all values into the order given; raises for a feature whose order follows from elsewhere.
void arrangeComputed(Element& aElement, Feature const& aFeature, std::vector<Element*> const& aOrder);

/// Appends the values of any reference feature: stored, container, union or computed.
void valuesOf(Element const& aElement, Feature const& aFeature, std::vector<Element*>& aOut);
inline std::vector<Element*> valuesOf(Element const& aElement, Feature const& aFeature) {
  std::vector<Element*> values;
  valuesOf(aElement, aFeature, values);
  return values;
}

}  // namespace umlmm::engine
