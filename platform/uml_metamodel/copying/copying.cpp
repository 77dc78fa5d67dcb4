#include "uml_metamodel/umlmm/copying.h"

#include "copying/Copier.h"
#include "engine/Aside.h"
#include "engine/Change.h"
#include "engine/kernel_features.h"
#include "kelm/Asserter.h"
#include "kelm/ElementQueries.h"

namespace umlmm {

namespace copying {

namespace {

constexpr char kSource[] = "uml_metamodel/copying";

Element* clone(Element& aElement, Kelm::Deviant const& aDeviant) {
  engine::checkWritable(aElement, aDeviant, kSource);
  engine::Change change(*aElement.model());
  Copier copier(*aElement.model());
  Element& copy = copier.add(aElement);
  copier.finish();
  change.commit();
  return &copy;
}

/// What other tools have told of an element.
void copyToolTexts(Element const& aElement, Element& aCopy) {
  for (unsigned const id : {Element::ExternalId, Element::ExternalToolInfo}) {
    Kelm::Object const text = engine::kernelEntry(&aElement, aElement.model()->baseDeviant(), id);
    if (!text.isNull()) engine::setKernelEntry(&aCopy, aCopy.model()->baseDeviant(), id, text);
  }
}

void copyInto(Kelm::ModelObject const& aFrom, Kelm::ModelObject& aTo) {
  if (aFrom.roots() == nullptr) return;
  // They may be elements of the model that is copied into.
  std::vector<Element*> all;
  for (Element* const root : aFrom.roots()->dense()) all.push_back(root);
  engine::Change change(aTo);
  Copier copier(aTo);
  for (Element const* const root : all) copier.add(*root);
  copier.finish();
  copier.forEach(copyToolTexts);
  change.commit();
}

/// The host asks the kernel, which knows no elements.
[[maybe_unused]] bool const sInstalled = (Kelm::setElementCopying({&clone, &copyInto}), true);

}  // namespace

}  // namespace copying

Kelm::NSInterface::ModelElementIntf& detail::cloneElement(Kelm::NSInterface::ClassObjectIntf* aElement,
                                                          Kelm::Deviant const& aDeviant) {
  auto* const element = dynamic_cast<engine::Element*>(aElement);
  if (element == nullptr) Kelm::raiseNullReference(copying::kSource);
  return *copying::clone(*element, aDeviant);
}

void copyInto(Kelm::Model const& aTo, Kelm::ImmutableModel const& aFrom) {
  Kelm::ModelObject& to = aTo.object();
  Kelm::ModelObject const& from = Kelm::Model(aFrom).object();
  if (!aTo.isvalid() || !aFrom.isvalid()) Kelm::raiseFailure(Kelm::words::kNotInVariant, copying::kSource);
  aTo.getDeviant().assertWritable(&to);
  copying::copyInto(from, to);
}

}  // namespace umlmm
