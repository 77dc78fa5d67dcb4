#include "RefHook.h"

#include <array>

#include "kelm/DeviantRegistry.h"
#include "kelm/kernel/containers/Ref.h"
#include "kelm/values.h"
#include "tarn/tarn.h"
#include "vesk/host/Bindings.h"
#include "vesk/host/Instance.h"

namespace Kelm::mi {

namespace {

using ObjectRef = Generic::RefAccess<Object>;

NSInterface::ObjectIntf* objectOf(Generic::Loan const& aLoan) noexcept {
  return static_cast<NSInterface::ObjectIntf*>(aLoan.fHolder);
}

int searchText(Generic::SequenceIntf const& aSequence, Deviant const& aDeviant, vesk::VeskValue aValue,
               int aFirst) {
  std::u16string const wanted = tarn::get_ustring(aValue.array());
  Generic::Loan found;
  for (int index = aFirst; aSequence.readBlock(aDeviant, index, 1, &found) == 1; ++index) {
    StringObject const* const text = asString(ObjectRef::get(found));
    if (text != nullptr && wanted == text->data()) return index;
  }
  return -1;
}

}  // namespace

bool RefElements::boxAtOnce(Generic::Loan const* aLoans, std::size_t aCount, vesk::VeskValue* aValues) const {
  if (fClass->fElements == Elements::Text) return false;
  bool const immutable = fClass->fElements == Elements::ReadOnly;
  std::array<vesk::host::Instance*, KernelSequenceHook::kBlock> instances;
  // In steps of their own, so that the memory of several objects is on its way at a time.
  std::array<void const*, KernelSequenceHook::kBlock> ids;
  for (std::size_t i = 0; i < aCount; ++i) {
    auto const* const object = objectOf(aLoans[i]);
    if (object == nullptr) return false;
    ids[i] = DeviantRegistry::findId(*object, Deviant::fromWord(aLoans[i].fReserved), immutable);
  }
  for (std::size_t i = 0; i < aCount; ++i) {
    instances[i] = ids[i] == nullptr ? nullptr : vesk::host::bindings::lookUp(ids[i]);
    if (instances[i] == nullptr || !instances[i]->isBound()) return false;
  }
  for (std::size_t i = 0; i < aCount; ++i) aValues[i] = instances[i]->newReference();
  return true;
}

int RefElements::find(Generic::SequenceIntf const& aSequence, Deviant const& aDeviant, vesk::VeskValue aValue,
                      int aFirst) const {
  if (fClass->fElements == Elements::Text) return searchText(aSequence, aDeviant, aValue, aFirst);
  Generic::Ref const wanted = ObjectRef::make(fClass->unboxObject(aValue));
  Generic::Loan found;
  for (int index = aFirst;; ++index) {
    index = aSequence.indexOf(aDeviant, wanted, index);
    if (index < 0) return index;
    // The sequence compares objects, a script objects in their variants.
    aSequence.readBlock(aDeviant, index, 1, &found);
    // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): as for Ref
    if (found.fReserved == wanted.fReserved) return index;
  }
}

}  // namespace Kelm::mi
