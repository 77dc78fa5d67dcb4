#include "kelm/ModelObject.h"

#include <deque>
#include <mutex>
#include <utility>

#include "kelm/ModelCache.h"
#include "kelm/ModelElementIntf.h"

namespace Kelm {

void (*dropElements)(ModelObject& aModel) = nullptr;

namespace {

// Never destroyed, and records never move: deviants point at them for good.
Variant* newVariant(ModelObject* aModel, bool aReadOnly) {
  constinit static std::mutex sGuard;
  std::lock_guard const guard(sGuard);
  static auto& sVariants = *new std::deque<Variant>;
  auto const number = static_cast<std::uint32_t>(sVariants.size() + 1);
  return &sVariants.emplace_back(Variant{aModel, number, aReadOnly});
}

}  // namespace

ModelCompanion::~ModelCompanion() = default;

ModelObject::ModelObject() : fBase(newVariant(this, false)) {}

ModelObject::~ModelObject() = default;

int ModelObject::decRef() const {
  if (--fCount > 0) return fCount;
  // Counts taken and given back while the model closes must not end it a second time.
  fCount = 1;
  const_cast<ModelObject*>(this)->close();
  if (--fCount > 0) return fCount;
  delete this;
  return 0;
}

char const* ModelObject::getVeskName(bool aImmutable) const {
  return aImmutable ? "Kelm.ImmutableModel" : "Kelm.Model";
}

bool ModelObject::deviant_isValid(Deviant aDeviant) const {
  return isOpen() && aDeviant.variant() != nullptr && aDeviant.variant()->fModel == this;
}

void ModelObject::destroy(Deviant const& aDeviant) {
  assertExists(aDeviant);
  aDeviant.assertWritable(this);
  close();
}

void ModelObject::setModelUri(Deviant const& aDeviant, String const& aUri) {
  assertExists(aDeviant);
  aDeviant.assertWritable(this);
  ModelCache& cache = ModelCache::instance();
  if (cache.isBound(*this)) cache.bindModel(std::u16string(aUri.text()), Model(this, baseDeviant()));
  fUri = aUri;
  noteChange();
}

String ModelObject::getModelUri(Deviant const& aDeviant) const {
  assertExists(aDeviant);
  return fUri;
}

Deviant ModelObject::readOnlyDeviant() {
  if (fReadOnly == nullptr) fReadOnly = newVariant(isOpen() ? this : nullptr, true);
  return Deviant(fReadOnly);
}

void ModelObject::close() {
  if (!isOpen()) return;
  incRef();  // the cache's count may be the last but ours
  ModelCache::instance().unbindModel(*this);
  fBase->fModel = nullptr;
  if (fReadOnly != nullptr) fReadOnly->fModel = nullptr;
  if (dropElements != nullptr) dropElements(*this);
  ElementList::destroy(std::exchange(fRoots, nullptr));
  setCompanion(nullptr);
  fNotes.reset();
  fExternalIds = nullptr;
  fAttachments.clear();
  noteChange();
  fHostPlace.clear();                           // may run code of scripts
  if (std::exchange(fShown, 0) != 0) --fCount;  // not the last
  decRef();
}

void ModelObject::addRoot(NSInterface::ModelElementIntf* aElement) {
  PartList::append(fRoots, *fBlocks, aElement);
  ElementState::container(*aElement) = nullptr;
  ElementState::model(*aElement) = this;
  noteChange();
}

void ModelObject::removeRoot(NSInterface::ModelElementIntf* aElement) noexcept {
  if (fRoots != nullptr) fRoots->erase(aElement);
  noteChange();
}

void ModelObject::restoreRoot(NSInterface::ModelElementIntf* aPrevious,
                              NSInterface::ModelElementIntf* aElement) noexcept {
  fRoots->restore(aPrevious, aElement);
  noteChange();
}

void ModelObject::setCompanion(ModelCompanion* aCompanion) noexcept {
  delete std::exchange(fCompanion, aCompanion);
}

ModelCompanion* ModelObject::attachment(void const* aKey) const noexcept {
  for (auto const& [key, kept] : fAttachments)
    if (key == aKey) return kept.get();
  return nullptr;
}

void ModelObject::attach(void const* aKey, std::unique_ptr<ModelCompanion> aAttachment) {
  for (auto& [key, kept] : fAttachments)
    if (key == aKey) return kept.swap(aAttachment);
  fAttachments.emplace_back(aKey, std::move(aAttachment));
}

void ModelObject::assertExists(Deviant const& aDeviant) const {
  if (!deviant_isValid(aDeviant)) raiseFailure(words::kNotInVariant, "kelm/Kelm/Model");
}

}  // namespace Kelm
