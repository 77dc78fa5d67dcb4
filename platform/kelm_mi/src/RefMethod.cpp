#include "RefMethod.h"

#include <memory>

#include "RefHook.h"
#include "kelm/Asserter.h"
#include "kelm/kernel/containers/sources.h"
#include "vesk/VeskClassInfo.h"
#include "vesk/factory/VeskMethod.h"
#include "vesk/host/ClassRecord.h"
#include "vesk/host/Instance.h"

namespace Kelm::mi {

namespace {

class RefMethod final : public vesk::factory::VeskMethod {
 public:
  RefMethod(MethodRow const& aRow, RefClass const& aInfo)
      : VeskMethod(aRow.fName, aRow.fWord, ""), fInvoker(aInfo) {
    setUpMethod(*this, fInvoker, aRow);
  }

  void invoke(vesk::VeskClient const* aClient, int& aResultCount, vesk::VeskValue* aResults,
              int aArgumentCount, vesk::VeskValue const* aArguments) const override {
    fInvoker.invoke(aClient, aResultCount, aResults, aArgumentCount, aArguments);
  }

 private:
  RefInvoker fInvoker;
};

}  // namespace

vesk::VeskValue RefMarshal::boxPosition(IteratorRef const& aPosition) const {
  if (aPosition.isNull()) raiseNullReference(sources::kIterator);
  return announceObject(aPosition.get(), aPosition.getDeviant(), fClass.fAccess == Access::ReadOnly,
                        fClass.fIterator);
}

RefClass const& RefMarshal::elementClass() const {
  auto const* const receiver = vesk::host::Instance::fromArray(fArguments[0].array());
  if (receiver == nullptr || receiver->classRecord().fName == fClass.fName) return fClass;
  auto const* const hook = dynamic_cast<RefHook const*>(receiver->classRecord().info().getSequenceHook());
  return hook == nullptr ? fClass : hook->elements().refClass();
}

void addRefMethods(vesk::VeskClass* aClass, std::span<MethodRow const> aRows, RefClass const& aInfo) {
  for (MethodRow const& row : aRows) aClass->addMethod(std::make_unique<RefMethod>(row, aInfo).release());
}

}  // namespace Kelm::mi
