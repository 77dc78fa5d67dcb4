#include "engine/Change.h"

namespace umlmm::engine {

Change::Change(Kelm::ModelObject& aModel)
    : fModel(aModel),
      fRecord(aModel.record() != nullptr ? *aModel.record() : fOwn.emplace()),
      fMark(fRecord.size()) {
  if (fOwn) fModel.setRecord(&*fOwn);
}

Change::~Change() {
  if (!fIsCommitted) fRecord.takeBack(fMark);
  if (!fOwn) return;
  fModel.setRecord(nullptr);
  fRecord.finish();
}

void Change::noteFlags(Element& aElement, std::uint32_t aFlags) {
  record(aElement)->note({Step::Kind::Flags, kNoFeature, aElement.flags(), &aElement, nullptr, nullptr});
  State::flags(aElement) = aFlags;
  aElement.model()->noteChange();
}

void Change::noteInteger(Element& aElement, FeatureIndex aRoot, std::uint32_t aValue) {
  std::uint32_t& slot = integer(aElement, aRoot);
  record(aElement)->note({Step::Kind::Integer, aRoot, slot, &aElement, nullptr, nullptr});
  slot = aValue;
  aElement.model()->noteChange();
}

void Change::noteText(Element& aElement, Feature const& aRoot, Kelm::StringObject* aText) {
  auto*& slot = pointer<Kelm::StringObject>(aElement, indexOf(aRoot));
  record(aElement)->note({Step::Kind::Text, indexOf(aRoot), 0, &aElement, slot, nullptr});
  if (aText != nullptr) aText->incRef();
  slot = aText;
  aElement.model()->noteChange();
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
    open->reserve();
    std::uint32_t const kept = open->keep(Referrers::words(aValue));
    open->note({Step::Kind::ReferrersArranged, kNoFeature, kept, &aValue, nullptr, nullptr});
  }
  Referrers::arrange(aValue, aOrder);
  aValue.model()->noteChange();
}

}  // namespace umlmm::engine
