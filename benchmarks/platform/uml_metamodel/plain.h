#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// The limit of what the metamodel can cost: structs as one writes them by hand for the same work, inlined,
/// without reflection, variants or a host.
namespace plain {

/// A counted pointer, as reads answer it.
template <class T>
class Counted {
 public:
  Counted() noexcept = default;
  explicit Counted(T* aObject) noexcept : fObject(aObject) {
    if (fObject != nullptr) ++fObject->fCount;
  }
  Counted(Counted const& aOther) noexcept : Counted(aOther.fObject) {}
  Counted(Counted&& aOther) noexcept : fObject(std::exchange(aOther.fObject, nullptr)) {}
  Counted& operator=(Counted aOther) noexcept {
    std::swap(fObject, aOther.fObject);
    return *this;
  }
  ~Counted() {
    if (fObject != nullptr && --fObject->fCount == 0) delete fObject;
  }
  T* get() const noexcept { return fObject; }

 private:
  T* fObject = nullptr;
};

struct Text {
  int fCount = 0;
  std::u16string fText;
};

/// What elements of one class share: bytes from the element to each of its parts, by number.
struct ClassTable {
  std::int16_t const* fOffsets;
  std::uintptr_t fLimit;
};

/// As large as a Class of the metamodel with its slots.
struct Element {
  static constexpr std::uint32_t kIsAbstract = 1;

  int fCount = 0;
  std::uint32_t fFlags = 0;
  ClassTable const* fClass = nullptr;
  Element* fOwner = nullptr;
  std::size_t fPlace = 0;
  Counted<Text> fName;
  Element* fType = nullptr;
  std::int32_t fValue = 0;
  std::uint64_t fOtherSlots[24] = {};

  void const* cast(std::uintptr_t aPart) const noexcept {
    if (aPart >= fClass->fLimit || fClass->fOffsets[aPart] < 0) return nullptr;
    return reinterpret_cast<char const*>(this) + fClass->fOffsets[aPart];
  }
};

/// Owns the elements without an owner; each knows its place.
class Model {
 public:
  Model() = default;
  Model(Model const&) = delete;
  Model& operator=(Model const&) = delete;
  ~Model() {
    for (Element* const root : fRoots) delete root;
  }
  Element* create() {
    auto* const element = new Element();
    add(element);
    return element;
  }
  void add(Element* aElement) {
    aElement->fPlace = fRoots.size();
    fRoots.push_back(aElement);
  }
  void remove(Element const* aElement) noexcept {
    fRoots[aElement->fPlace] = nullptr;
    if (aElement->fPlace + 1 == fRoots.size()) fRoots.pop_back();
  }

 private:
  std::vector<Element*> fRoots;
};

}  // namespace plain
