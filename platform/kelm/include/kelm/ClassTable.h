#pragma once

#include <array>
#include <cstdint>

#include "kelm/fwd.h"
#include "kelm/tags.h"

namespace Kelm {

/// What the kernel asks of the metamodel behind an element; one record for a metamodel, constant. Contracts
/// are those of the members of ClassObjectIntf by the same names.
struct ElementEngine {
  /// Frees an element whose last count is gone: one that is destroyed, or whose model let go of it.
  void (*release)(NSInterface::ModelElementIntf* aElement);
  void (*destroy)(NSInterface::ModelElementIntf* aElement, Deviant const& aDeviant);
  Object (*getKernelEntry)(NSInterface::ModelElementIntf const* aElement, Deviant const& aDeviant,
                           unsigned aId);
  void (*setKernelEntry)(NSInterface::ModelElementIntf* aElement, Deviant const& aDeviant, unsigned aId,
                         Object const& aValue);
  Generic::SequenceIntf* (*getKernelSequence)(NSInterface::ModelElementIntf const* aElement,
                                              Deviant const& aDeviant, unsigned aId);
};

/// Everything that all elements of one concrete metaclass share. Slots are 8-byte words behind the object:
/// one pointer each for strings, references, lists and sequences, two integers to a word; Booleans and
/// enumerations are bits of the element's flag word. Tables are constant and live as long as the process, so
/// all threads read them without locks.
struct ClassTable {
  static constexpr std::int16_t kNoInterface = INT16_MIN;

  /// Bit by metaclass, as far as there is room: the elements' own and all above it.
  std::array<std::uint64_t, 4> fGenerals;
  static constexpr int kGeneralsLimit = 256;

  char const* fVeskName;           ///< "umlmm.Class"
  char const* fImmutableVeskName;  ///< "umlmm.ImmutableClass"
  ElementEngine const* fEngine;
  NSInterface::ClassIntf const* fMetaClass;
  /// By interface tag: bytes from the kernel part of an element to the interface, or kNoInterface.
  std::int16_t const* fInterfaceOffsets;
  CooperativeVisitor::internal::Tag fInterfaceLimit;
  /// By feature: word (or, for flag features, bit) of its slot, or kNoSlot.
  std::uint8_t const* fSlotOfFeature;
  std::uint64_t fStringWords;     ///< Mask of the words that hold strings.
  std::uint64_t fReferenceWords;  ///< Mask of the words that hold single references.
  std::uint64_t fListWords;       ///< Mask of the words that hold lists of elements.
  std::uint64_t fSequenceWords;   ///< Mask of the words that hold sequences of primitive values.
  std::uint64_t fContentWords;    ///< Of the references and lists, those that own what they hold.
  /// By word: the feature whose slot it is; those of strings, references and lists alone.
  std::uint16_t const* fFeatureOfWord;
  std::uint32_t fDefaultFlags;  ///< The flag word of a new element: defaults of Booleans and enumerations.
  std::uint16_t fMetaclass;     ///< Index of the metaclass.
  std::uint16_t fIndex;         ///< Index among the concrete metaclasses.
  std::uint16_t fSize;          ///< Bytes of an element, slots included.
  std::uint16_t fRootOffset;    ///< From the element's first byte to its kernel part.
  std::uint16_t fSlotOffset;    ///< From the kernel part to the first slot word.

  static constexpr std::uint8_t kNoSlot = 0xFF;
};

}  // namespace Kelm
