#include "RefMethod.h"

#include <memory>
#include <span>

#include "vesk/factory/Invoker.h"
#include "vesk/factory/VeskMethod.h"

namespace Kelm::mi {

namespace {

using namespace vesk::factory;

class RefMethod final : public VeskMethod {
 public:
  RefMethod(RefRow const& aRow, RefClass const& aInfo)
      : VeskMethod(aRow.fName, word(aRow), ""), fRow(aRow), fInfo(aInfo) {
    std::array<char const*, 3> types{};
    std::size_t count = 0;
    for (RefType const type : aRow.fParameters) {
      if (type != RefType::None) types[count++] = text(type);
    }
    bool const isMember = aRow.fForm == RefForm::Member;
    std::span<char const* const> const all(types.data(), count);
    impl::Invoker::createSignature("", text(aRow.fResult), isMember ? types[0] : nullptr,
                                   isMember ? all.subspan(1) : all, signature());
  }

  void invoke(vesk::VeskClient const*, int& aResultCount, vesk::VeskValue* aResults, int,
              vesk::VeskValue const* aArguments) const override {
    fRow.fRun({fInfo, aArguments, aResults, aResultCount});
  }

 private:
  static std::uint32_t word(RefRow const& aRow) {
    std::uint32_t const overrides = aRow.fOverrides ? std::uint32_t{MethodOverridesAllSignatures} : 0;
    switch (aRow.fForm) {
      case RefForm::SelfFirst:
        return overrides | MethodFirstArgumentIsSelf;
      case RefForm::Static:
        return overrides | MethodStatic;
      case RefForm::Member:
        break;
    }
    return overrides;
  }

  char const* text(RefType aType) const {
    switch (aType) {
      case RefType::Logical:
        return "logical scalar";
      case RefType::Int32:
        return "int32 scalar";
      case RefType::Self:
        return fInfo.fName.c_str();
      case RefType::Element:
        return fInfo.fElement.c_str();
      case RefType::Iterator:
        return fInfo.fIterator.c_str();
      case RefType::Model:
        return "Kelm.Model";
      case RefType::ImmutableModel:
        return "Kelm.ImmutableModel";
      case RefType::None:
      case RefType::Void:
        break;
    }
    return "void";
  }

  RefRow const& fRow;
  RefClass const& fInfo;
};

}  // namespace

void addRefMethod(vesk::VeskClass* aClass, RefRow const& aRow, RefClass const& aInfo) {
  aClass->addMethod(std::make_unique<RefMethod>(aRow, aInfo).release());
}

}  // namespace Kelm::mi
