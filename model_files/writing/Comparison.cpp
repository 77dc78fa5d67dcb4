#include "model_files/writing/Comparison.h"

#include <algorithm>

namespace umlmm::files {

bool isWritten(Feature const& aFeature) noexcept {
  return !aFeature.fDerived && !(aFeature.fOpposite != nullptr && aFeature.fOpposite->fComposite);
}

Comparison::Comparison(Kelm::Model const& aModel, Kelm::Model const& aRead)
    : fModel(aModel), fRead(aRead), fDeviant(aModel.getDeviant()), fReadDeviant(aRead.getDeviant()) {}

bool Comparison::isSame(Element& aModel, Element& aRead, Feature const& aFeature) {
  if (aFeature.fKind != Kind::Reference)
    return textsOf(aModel, aFeature, fDeviant) == textsOf(aRead, aFeature, fReadDeviant);
  auto const values = elementsOf(aModel, aFeature, fDeviant);
  auto const readValues = elementsOf(aRead, aFeature, fReadDeviant);
  if (values.size() != readValues.size()) return false;
  for (std::size_t at = 0; at < values.size(); ++at) {
    Element* const known = toModel(readValues[at]);
    if (known == values[at]) continue;
    bool const isNew = known == nullptr && toRead(values[at]) == nullptr && aFeature.fComposite;
    if (!isNew) return false;
    pair(*values[at], *readValues[at]);
    Metaclass const& metaclass = Metamodel::instance().metaclassOf(*values[at]);
    if (&metaclass != &Metamodel::instance().metaclassOf(*readValues[at])) return false;
    for (Feature const* const feature : metaclass.fOrder)
      if (isWritten(*feature) && !isSame(*values[at], *readValues[at], *feature)) return false;
  }
  return true;
}

bool Comparison::isSameSet(Element& aModel, Element& aRead, Feature const& aFeature) {
  auto values = elementsOf(aModel, aFeature, fDeviant);
  auto readValues = elementsOf(aRead, aFeature, fReadDeviant);
  for (Element*& value : readValues) value = toModel(value);
  std::ranges::sort(values);
  std::ranges::sort(readValues);
  return values == readValues;
}

}  // namespace umlmm::files
