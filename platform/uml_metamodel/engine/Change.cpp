#include "engine/Change.h"

namespace umlmm::engine {

namespace {

Kelm::ChangeRecord* idleRecord(Kelm::ModelObject const& aModel) noexcept {
  return aModel.record() != nullptr && aModel.record()->isIdle() ? aModel.record() : nullptr;
}

/// The one who tells the listeners goes with the model's asides.
Asides& asidesOf(Kelm::ModelObject& aModel) { return Asides::of(aModel); }

}  // namespace

Change::Change(Kelm::ModelObject& aModel)
    : fModel(aModel),
      fIdle(idleRecord(aModel)),
      fRecord(aModel.record() != fIdle ? *aModel.record() : fOwn.emplace()),
      fMark(fRecord.size()),
      fOuterMark(fRecord.mark()) {
  fRecord.setMark(fMark);
  if (fOwn) fModel.setRecord(&*fOwn);
}

Change::~Change() {
  if (!fIsCommitted) fRecord.takeBack(fMark);
  fRecord.setMark(fOuterMark);
  if (!fOwn) return;
  // Those who observed when the change began may have gone.
  if (fIdle != nullptr && !fIdle->isIdle()) fIdle = nullptr;
  fModel.setRecord(fIdle);
  if (fIdle != nullptr && fRecord.size() != 0) fIdle->tell(fRecord);
  fRecord.finish();
}

StepListener::StepListener(Kelm::ModelObject& aModel) : fModel(&aModel) {
  auto& observed = asidesOf(aModel).observed();
  if (observed == nullptr) observed = std::make_unique<Kelm::ChangeRecord>();
  observed->add(*this);
  if (aModel.record() == nullptr) aModel.setRecord(observed.get());
}

StepListener::~StepListener() {
  if (fModel == nullptr) return;
  auto& observed = asidesOf(*fModel).observed();
  // The record stays with the model: it may be telling, and changes that are open know it.
  if (!observed->remove(*this) && fModel->record() == observed.get()) fModel->setRecord(nullptr);
}

void Change::noteFlags(Element& aElement, FeatureIndex aRoot, std::uint32_t aFlags) {
  Change change(*aElement.model());
  change.fRecord.note({Step::Kind::Flags, aRoot, aElement.flags(), &aElement, nullptr, nullptr});
  State::flags(aElement) = aFlags;
  aElement.model()->noteChange();
  change.commit();
}

void Change::noteInteger(Element& aElement, FeatureIndex aRoot, std::uint32_t aValue) {
  Change change(*aElement.model());
  std::uint32_t& slot = integer(aElement, aRoot);
  change.fRecord.note({Step::Kind::Integer, aRoot, slot, &aElement, nullptr, nullptr});
  slot = aValue;
  aElement.model()->noteChange();
  change.commit();
}

void Change::noteText(Element& aElement, Feature const& aRoot, Kelm::StringObject* aText) {
  Change change(*aElement.model());
  auto*& slot = pointer<Kelm::StringObject>(aElement, indexOf(aRoot));
  change.fRecord.note({Step::Kind::Text, indexOf(aRoot), 0, &aElement, slot, nullptr});
  if (aText != nullptr) aText->incRef();
  slot = aText;
  aElement.model()->noteChange();
  change.commit();
}

bool Change::isNotedValues(Kelm::ChangeRecord const& aOpen, Element const& aElement, FeatureIndex aRoot,
                           std::size_t aPlace) noexcept {
  if (aPlace < aOpen.mark() || aPlace >= aOpen.size()) return false;
  Step const& step = aOpen.at(aPlace);
  return step.fKind == Step::Kind::Values && step.fElement == &aElement && step.fFeature == aRoot;
}

std::size_t Change::addValues(Kelm::ChangeRecord& aOpen, Element& aElement, FeatureIndex aRoot,
                              std::unique_ptr<KeptValues> aValues) {
  aOpen.reserve();
  std::uint32_t const kept = aOpen.keep(std::move(aValues));
  aOpen.note({Step::Kind::Values, aRoot, kept, &aElement, nullptr, nullptr});
  return aOpen.size() - 1;
}

void Change::put(Element& aOwner, Feature const& aRoot, Element& aValue, std::uint32_t aPosition) {
  if (aRoot.fStorage == Storage::List)
    withSlot(aOwner, aRoot, [&]<class List>(List*& aSlot) {
      if (aPosition >= ElementList::size(aSlot))
        List::append(aSlot, aOwner.model()->blocks(), &aValue);
      else
        List::insert(aSlot, aOwner.model()->blocks(), aPosition, &aValue);
    });
  else
    pointer<Element>(aOwner, indexOf(aRoot)) = &aValue;
  if (ownsParts(aRoot)) contain(aOwner, aRoot, aValue);
}

void Change::contain(Element& aOwner, Feature const& aRoot, Element& aValue) noexcept {
  State::container(aValue) = &aOwner;
  State::containerFeature(aValue) = indexOf(aRoot);
  State::marks(aOwner) |= Element::HasContents;
}

void Change::putBack(Element& aOwner, Feature const& aRoot, Element& aValue, Element* aPrevious) noexcept {
  if (aRoot.fStorage == Storage::List)
    withList(aOwner, aRoot, [&](auto& aList) { aList.restore(aPrevious, &aValue); });
  else
    pointer<Element>(aOwner, indexOf(aRoot)) = &aValue;
  if (ownsParts(aRoot)) contain(aOwner, aRoot, aValue);
}

void Change::take(Element& aOwner, Feature const& aRoot, Element& aValue) noexcept {
  if (aRoot.fStorage == Storage::List)
    withList(aOwner, aRoot, [&](auto& aList) { aList.erase(&aValue); });
  else
    pointer<Element>(aOwner, indexOf(aRoot)) = nullptr;
  if (ownsParts(aRoot)) State::container(aValue) = nullptr;
}

void Change::enterRoots(Element& aElement, Kelm::ChangeRecord* aOpen) {
  if (aOpen != nullptr) [[unlikely]]
    aOpen->note({Step::Kind::RootAdded, kNoFeature, 0, &aElement, nullptr, nullptr});
  aElement.model()->addRoot(&aElement);
}

void Change::leaveRoots(Element& aElement, Kelm::ChangeRecord* aOpen) {
  Kelm::ModelObject& model = *aElement.model();
  if (aOpen != nullptr) [[unlikely]] {
    Element* const previous = model.roots()->before(&aElement);
    aOpen->note({Step::Kind::RootRemoved, kNoFeature, 0, &aElement, nullptr, previous});
  }
  model.removeRoot(&aElement);
}

void Change::insert(Element& aOwner, Feature const& aRoot, Element& aValue, std::uint32_t aPosition) {
  Kelm::ChangeRecord* const open = record(aOwner);
  if (open != nullptr && open->isIdle()) [[unlikely]]
    return together(aOwner, [&] { insert(aOwner, aRoot, aValue, aPosition); });
  bool const isPart = ownsParts(aRoot);
  bool const isNoted = !isPart && aRoot.fOpposite == kNoFeature;
  if (isPart) leaveRoots(aValue, open);
  if (open != nullptr) [[unlikely]]
    open->note({Step::Kind::Stored, indexOf(aRoot), isNoted ? 1U : 0U, &aOwner, &aValue, nullptr});
  put(aOwner, aRoot, aValue, aPosition);
  if (isNoted) Referrers::add(aValue, {&aOwner, indexOf(aRoot)});
  aOwner.model()->noteChange();
}

void Change::erase(Element& aOwner, Feature const& aRoot, Element& aValue) {
  bool const owning = ownsParts(aRoot);
  Kelm::ChangeRecord* const open = record(aOwner);
  if (open != nullptr && open->isIdle()) [[unlikely]]
    return together(aOwner, [&] { erase(aOwner, aRoot, aValue); });
  if (open != nullptr) [[unlikely]] {
    Element* previous = nullptr;
    if (aRoot.fStorage == Storage::List)
      previous = withList(aOwner, aRoot, [&](auto& aList) { return aList.before(&aValue); });
    open->note({Step::Kind::Dropped, indexOf(aRoot), 0, &aOwner, &aValue, previous});
  }
  take(aOwner, aRoot, aValue);
  if (owning) {
    // One that is being destroyed has no place at the top level.
    if ((aValue.marks() & Element::Dying) == 0) enterRoots(aValue, open);
  } else if (aRoot.fOpposite == kNoFeature) {
    forget(aOwner, aRoot, aValue);
  }
  aOwner.model()->noteChange();
}

void Change::forget(Element& aOwner, Feature const& aRoot, Element& aValue) {
  Reference const reference{&aOwner, indexOf(aRoot)};
  Kelm::ChangeRecord* const open = record(aOwner);
  if (open == nullptr) [[likely]]
    return Referrers::remove(aValue, reference);
  open->reserve();
  std::uint32_t const place = Referrers::strike(aValue, reference);
  open->note({Step::Kind::Unreferred, indexOf(aRoot), place, &aOwner, &aValue, nullptr});
}

void Change::arrange(Element& aOwner, Feature const& aRoot, std::span<Element* const> aOrder) {
  if (Kelm::ChangeRecord* const open = record(aOwner)) {
    if (open->isIdle()) return together(aOwner, [&] { arrange(aOwner, aRoot, aOrder); });
    std::vector<std::uintptr_t> old;
    for (Element* const value : pointerSlot<ElementList>(aOwner, indexOf(aRoot))->dense())
      old.push_back(reinterpret_cast<std::uintptr_t>(value));
    open->reserve();
    open->note({Step::Kind::Arranged, indexOf(aRoot), open->keep(std::move(old)), &aOwner, nullptr, nullptr});
  }
  withList(aOwner, aRoot, [&](auto& aList) { aList.reorder(aOrder); });
  aOwner.model()->noteChange();
}

void Change::rearrange(Element& aOwner, Feature const& aRoot, std::span<int const> aFrom,
                       std::span<int const> aTo) {
  if (record(aOwner) != nullptr) {
    auto const values = pointerSlot<ElementList>(aOwner, indexOf(aRoot))->dense();
    std::vector<Element*> order(values.begin(), values.end());
    for (std::size_t i = 0; i < aTo.size(); ++i)
      order[static_cast<std::size_t>(aTo[i])] = values[static_cast<std::size_t>(aFrom[i])];
    return arrange(aOwner, aRoot, order);
  }
  withList(aOwner, aRoot, [&](auto& aList) { aList.rearrange(aFrom, aTo); });
  aOwner.model()->noteChange();
}

void Change::reorder(Element& aOwner, Feature const& aRoot,
                     std::vector<std::uintptr_t> const& aOrder) noexcept {
  auto* const order = reinterpret_cast<Element* const*>(aOrder.data());
  withList(aOwner, aRoot, [&](auto& aList) { aList.reorder({order, aOrder.size()}); });
}

void Change::arrangeReferrers(Element& aValue, std::vector<Reference> const& aOrder) {
  if (Kelm::ChangeRecord* const open = record(aValue)) {
    if (open->isIdle()) return together(aValue, [&] { arrangeReferrers(aValue, aOrder); });
    open->reserve();
    std::uint32_t const kept = open->keep(Referrers::words(aValue));
    open->note({Step::Kind::ReferrersArranged, kNoFeature, kept, &aValue, nullptr, nullptr});
  }
  Referrers::arrange(aValue, aOrder);
  aValue.model()->noteChange();
}

}  // namespace umlmm::engine
