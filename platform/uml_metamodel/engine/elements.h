#pragma once

#include <new>

#include "engine/classTables.h"
#include "uml_metamodel/umlmm/detail/metamodel.h"

/// The concrete classes of elements. All behaviour is in the kernel part and the engine, so that a class of
/// its own is nothing but its table of virtual operations.
namespace umlmm::engine {

namespace {

template <class Intf>
class Elem final : public Intf {
 public:
  Elem() noexcept = default;
  [[gnu::flatten]] ~Elem() override {}
};

/// Flat: what the constructors of the interfaces leave in passing is overwritten at once, and neither they
/// nor their tables of virtual operations stay in the library.
template <class Intf>
[[gnu::flatten]] Element* construct(void* aMemory) {
  return new (aMemory) Elem<Intf>();
}

template <class Intf, class... Ancestors>
void fillOffsets(Element& aElement, std::vector<std::int16_t>& aOffsets) {
  auto& element = dynamic_cast<Elem<Intf>&>(aElement);
  auto const place = [&](auto const* aInterface, Kelm::CooperativeVisitor::internal::Tag aTag) {
    placeInterface(aOffsets, aTag,
                   reinterpret_cast<char const*>(aInterface) - reinterpret_cast<char const*>(&aElement));
  };
  (place(static_cast<Ancestors const*>(&element), Kelm::tagPair<Ancestors, VisitationDomain>().fType), ...);
}

}  // namespace

template <class Intf, class... Ancestors>
constexpr ElementClass elementClassOf() {
  return {&construct<Intf>, sizeof(Elem<Intf>), &fillOffsets<Intf, Intf, Ancestors...>};
}

}  // namespace umlmm::engine
