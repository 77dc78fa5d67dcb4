#pragma once

#include <span>

#include "frame/ElementClassInfo.h"
#include "frame/addTypedMethod.h"

namespace umlmm::mi {

/// The class of factories, by which scripts make models and elements. Unlike other changeable classes it does
/// not inherit its read-only twin.
class FactoryWrapper final : public Kelm::mi::ClassMetaData {
 public:
  using ClassMetaData::ClassMetaData;
  void initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const*) override;
  vesk::ClassFamily const* family() const override;
};

class ImmutableFactoryWrapper final : public Kelm::mi::ClassMetaData {
 public:
  using ClassMetaData::ClassMetaData;
  void initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const*) override;
  vesk::ClassFamily const* family() const override;
};

/// One create method of the factory.
struct CreateRow {
  char const* fName;
  char const* fResult;
  char const* fArgumentNames;
  std::array<char const*, Kelm::mi::SignatureTexts::kMostArguments> fArguments;
  Kelm::mi::Bind fBind;
};
/// All of them, in published order.
std::span<CreateRow const> createMethods();

}  // namespace umlmm::mi
