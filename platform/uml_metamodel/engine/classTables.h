#pragma once

#include <span>
#include <typeinfo>
#include <vector>

#include "engine/slots.h"

/// The class tables of the concrete metaclasses, and what the engine derives for each from its layout.
namespace umlmm::engine {

/// How to make an element of one concrete metaclass; see elements.h.
struct ElementClass {
  /// Constructs an element in the memory and answers its kernel part.
  Element* (*fConstruct)(void* aMemory);
  std::size_t fSize;
  /// Fills `aOffsets`, by tag, as far as needed: bytes from the kernel part to each interface.
  void (*fOffsets)(Element& aElement, std::vector<std::int16_t>& aOffsets);
};

/// Notes where an interface lies, in a table by tag that grows as needed.
inline void placeInterface(std::vector<std::int16_t>& aOffsets, Kelm::CooperativeVisitor::internal::Tag aTag,
                           std::ptrdiff_t aOffset) {
  if (aTag >= aOffsets.size()) aOffsets.resize(aTag + 1, Kelm::ClassTable::kNoInterface);
  aOffsets[aTag] = static_cast<std::int16_t>(aOffset);
}

/// By position in kLayouts; defined from the catalogue.
extern ElementClass const kElementClasses[kConcreteCount];
/// By metaclass: the type of its interface.
extern std::type_info const* const kInterfaceTypes[kMetaclassCount];

/// The table of a concrete metaclass; null for an abstract one.
Kelm::ClassTable const* classTable(int aMetaclass);
/// Whether elements of a metaclass can be made: some class of the catalogue has all its interfaces.
bool hasShape(Metaclass const& aMetaclass);
/// Makes the table of a concrete metaclass of an extension, whose records stay.
void addClass(Metaclass const& aMetaclass, Layout const& aLayout);
/// Ends the element; the memory stays.
inline void destruct(Element* aElement) noexcept {
  static_cast<Kelm::ReferenceCountingIntf*>(aElement)->~ReferenceCountingIntf();
}
Layout const& layoutOf(Element const& aElement) noexcept;

/// Root features with a reference or list slot on the element's metaclass.
std::span<FeatureIndex const> storedReferences(Element const& aElement) noexcept;

}  // namespace umlmm::engine
