#include "model_files/writing/Comparison.h"

#include "kelm/kernel/containers/Ref.h"
#include "model_files/reading/values.h"
#include "uml_metamodel/umlmm/Boolean.h"
#include "uml_metamodel/umlmm/String.h"

namespace umlmm::files {

namespace {

std::vector<Kelm::Generic::Loan> loansOf(Kelm::Generic::SequenceIntf const& aList, Kelm::Deviant const& aDeviant) {
  std::vector<Kelm::Generic::Loan> loans(static_cast<std::size_t>(aList.generic_size(aDeviant)));
  aList.readBlock(aDeviant, 0, static_cast<int>(loans.size()), loans.data());
  return loans;
}

Kelm::Generic::SequenceIntf const& listOf(Element const& aElement, Feature const& aFeature,
                                          Kelm::Deviant const& aDeviant) {
  return *aFeature.fMethods->getSequenceEntry(&aElement, aDeviant, aFeature.fId);
}

Element* asElement(Kelm::Object const& aObject) {
  return Kelm::queryHandle<Kelm::ClassObject, Kelm::VisitationDomain>(aObject).get();
}

}  // namespace

Kelm::Object read(Element const& aElement, Feature const& aFeature, Kelm::Deviant const& aDeviant) {
  return aFeature.fMethods->getEntry(&aElement, aDeviant, aFeature.fId);
}

std::vector<Element*> elementsOf(Element const& aElement, Feature const& aFeature, Kelm::Deviant const& aDeviant) {
  std::vector<Element*> elements;
  if (!aFeature.fMany) {
    if (Element* const element = asElement(read(aElement, aFeature, aDeviant))) elements.push_back(element);
    return elements;
  }
  for (auto const& loan : loansOf(listOf(aElement, aFeature, aDeviant), aDeviant))
    elements.push_back(Kelm::Generic::RefAccess<Kelm::ClassObject>::get(loan).get());
  return elements;
}

std::vector<std::string> textsOf(Element const& aElement, Feature const& aFeature, Kelm::Deviant const& aDeviant) {
  std::vector<std::string> texts;
  if (!aFeature.fMany) {
    Kelm::Object const value = read(aElement, aFeature, aDeviant);
    if (!value.isNull()) texts.push_back(textOf(aFeature, value));
    return texts;
  }
  for (auto const& loan : loansOf(listOf(aElement, aFeature, aDeviant), aDeviant))
    texts.push_back(aFeature.fKind == Kind::Boolean
                        ? (Kelm::Generic::RefAccess<Boolean>::get(loan).value() ? "true" : "false")
                        : Kelm::toUtf8(Kelm::Generic::RefAccess<String>::get(loan).text()));
  return texts;
}

Element* containerOf(Element const& aElement, Kelm::Deviant const& aDeviant) {
  return asElement(aElement.getKernelEntry(aDeviant, Element::ContainerKelm));
}

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

}  // namespace umlmm::files
