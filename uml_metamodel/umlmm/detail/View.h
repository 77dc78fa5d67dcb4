#pragma once

#include <concepts>
#include <iterator>
#include <ranges>
#include <string_view>
#include <vector>

#include "uml_metamodel/umlmm/detail/Reference.h"

/// What the views of the metaclasses share. A view borrows: it is an element and a variant in two words,
/// takes no count and is seen as its interface only where that is needed, so a walk over a model touches no
/// element that it does not ask. In return it is good only as long as the model is not changed.
namespace umlmm::detail {

/// A type that a view is of: `ImmutableClass`, whose view is `ClassView`.
template <class T>
using ViewOf = typename T::View;

template <class Intf>
class View;

template <class T>
concept ListOfElements = SequenceValue<T> && ReferenceValue<typename T::Value>;

template <class T>
concept ViewClass = std::derived_from<T, View<typename T::InterfaceType>>;

/// What keeps a view from being used after a change: nothing where speed counts; in builds without NDEBUG the
/// revision of the model, which every use compares.
class ViewGuard {
 public:
#ifdef NDEBUG
  ViewGuard() noexcept = default;
  explicit ViewGuard(Kelm::Deviant const&) noexcept {}
  void check(Kelm::Deviant const&) const noexcept {}
#else
  ViewGuard() noexcept = default;
  explicit ViewGuard(Kelm::Deviant const& aDeviant) : fRevision(revisionOf(aDeviant)) {}
  /// Asks the variant alone: the element may be gone.
  void check(Kelm::Deviant const& aDeviant) const {
    if (fRevision != revisionOf(aDeviant))
      Kelm::raiseFailure("The model has changed since the view was made; make it anew",
                         "uml_metamodel/umlmm/View_h");
  }

 private:
  static std::uint64_t revisionOf(Kelm::Deviant const& aDeviant) noexcept {
    Kelm::Variant const* const variant = aDeviant.variant();
    return variant == nullptr || variant->fModel == nullptr ? 0 : variant->fModel->revision();
  }
  std::uint64_t fRevision = 0;
#endif
};

/// The elements of a list as views, in its order: a forward range, to be used as any of <ranges>. As good as
/// the view that gave it.
template <class V>
class ViewRange : public std::ranges::view_interface<ViewRange<V>> {
  using Entry = ModelElement* const*;

 public:
  class Iterator {
   public:
    using value_type = V;
    using difference_type = std::ptrdiff_t;
    using iterator_concept = std::forward_iterator_tag;

    Iterator() noexcept = default;
    Iterator(Entry aAt, Entry aEnd, Kelm::Deviant aDeviant, ViewGuard aGuard) noexcept
        : fAt(aAt), fEnd(aEnd), fDeviant(aDeviant), fGuard(aGuard) {
      skipHoles();
    }
    V operator*() const {
      fGuard.check(fDeviant);
      return V(**fAt, fDeviant, fGuard);
    }
    Iterator& operator++() {
      fGuard.check(fDeviant);
      ++fAt;
      skipHoles();
      return *this;
    }
    Iterator operator++(int) {
      Iterator const before = *this;
      ++*this;
      return before;
    }
    friend bool operator==(Iterator const& aLeft, Iterator const& aRight) noexcept {
      return aLeft.fAt == aRight.fAt;
    }

   private:
    void skipHoles() noexcept {
      while (fAt != fEnd && *fAt == nullptr) ++fAt;
    }

    Entry fAt = nullptr;
    Entry fEnd = nullptr;
    Kelm::Deviant fDeviant;
    [[no_unique_address]] ViewGuard fGuard;
  };

  ViewRange() noexcept = default;
  ViewRange(Kelm::ElementList const* aList, Kelm::Deviant aDeviant, ViewGuard aGuard) noexcept
      : fList(aList), fDeviant(aDeviant), fGuard(aGuard) {}
  Iterator begin() const {
    fGuard.check(fDeviant);
    return fList == nullptr ? Iterator() : Iterator(fList->begin(), fList->end(), fDeviant, fGuard);
  }
  Iterator end() const {
    fGuard.check(fDeviant);
    return fList == nullptr ? Iterator() : Iterator(fList->end(), fList->end(), fDeviant, fGuard);
  }
  std::size_t size() const {
    fGuard.check(fDeviant);
    return Kelm::ElementList::size(fList);
  }

 private:
  Kelm::ElementList const* fList = nullptr;
  Kelm::Deviant fDeviant;
  [[no_unique_address]] ViewGuard fGuard;
};

/// A read-only look at an element, or at none, with the access to features that the levels above it use; all
/// members raise for none. `view()` of a reference makes the first; a view of a more special element is one
/// of a more general, and `cast<ClassView>(view)` goes the other way.
///
/// *Good until the model changes*: reading after a change is an error, which builds without NDEBUG report as
/// a failure. `keep<ImmutableX>()` answers a reference, which counts.
///
/// *Features* answer what those of a reference do, but borrowed: references as views, stored texts as
/// `std::u16string_view`, stored lists of elements as a range of views, derived ones as a vector of views.
template <class Intf>
class View {
 public:
  /// Named so that no metaclass has the name.
  using InterfaceType = Intf;

  View() noexcept = default;
  /// For those who have an element that exists in the variant.
  View(ModelElement const& aElement, Kelm::Deviant aDeviant, ViewGuard aGuard) noexcept
      : fElement(&aElement), fDeviant(aDeviant), fGuard(aGuard) {}
  template <std::derived_from<Intf> Derived>
  View(View<Derived> const& aOther) noexcept
      : fElement(aOther.element()), fDeviant(aOther.getDeviant()), fGuard(aOther.guard()) {}

  bool isNull() const noexcept { return fElement == nullptr; }
  explicit operator bool() const noexcept { return fElement != nullptr; }
  /// A reference that counts, of class `ImmutableX` of the view or of a more general one.
  template <class Kept>
  requires std::derived_from<Intf, typename Kept::InterfaceType> Kept keep()
  const {
    fGuard.check(fDeviant);
    return Kept(interfaceOf<Intf>(fElement), fDeviant);
  }
  Kelm::Deviant const& getDeviant() const noexcept { return fDeviant; }
  ModelElement const* element() const noexcept { return fElement; }
  ViewGuard const& guard() const noexcept { return fGuard; }
  /// Whether both are of one element, or of none.
  friend bool operator==(View const& aLeft, View const& aRight) noexcept {
    return aLeft.fElement == aRight.fElement;
  }

 protected:
  /// The interface of the element; raises for none.
  Intf const* checked(char const* aSource, int aLine = std::source_location::current().line()) const {
    checkElement(aSource, aLine);
    return interfaceOf<Intf>(fElement);
  }

  template <class T, class Owner, unsigned Id>
  auto read(int aLine = std::source_location::current().line()) const {
    constexpr StoredFeature kFeature = Owner::kStored[Id];
    checkElement(Owner::kHeaderSource, aLine);
    if constexpr (kFeature.fStorage == Storage::String) {
      auto const* const text = pointerIn<kFeature, Kelm::StringObject>(*fElement);
      return text == nullptr ? std::u16string_view() : text->text();
    } else if constexpr (isKeptValue(kFeature)) {
      return valueIn<kFeature, T>(*fElement);
    } else if constexpr (ListOfElements<T>) {
      using Target = ViewOf<typename T::Value>;
      if constexpr (kFeature.fStorage == Storage::List)
        return ViewRange<Target>(pointerIn<kFeature, Kelm::ElementList>(*fElement), fDeviant, fGuard);
      else
        return computedList<Target>(kFeature.fNumber);
    } else if constexpr (ReferenceValue<T>) {
      using Target = ViewOf<T>;
      ModelElement const* target = nullptr;
      if constexpr (isKeptReference(kFeature))
        target = targetIn<kFeature>(*fElement);
      else
        target = computedIn(*fElement, fDeviant, kFeature.fNumber);
      return target == nullptr ? Target() : Target(*target, fDeviant, fGuard);
    } else {
      return throughTable<T, Id>(*interfaceOf<Owner>(fElement), fDeviant);
    }
  }

  ModelElement const* fElement = nullptr;
  Kelm::Deviant fDeviant;
  [[no_unique_address]] ViewGuard fGuard;

 private:
  template <class Target>
  std::vector<Target> computedList(std::uint16_t aNumber) const {
    std::vector<ModelElement*> const values = computedListIn(*fElement, fDeviant, aNumber);
    std::vector<Target> views;
    views.reserve(values.size());
    for (ModelElement const* const value : values) views.emplace_back(*value, fDeviant, fGuard);
    return views;
  }
  void checkElement(char const* aSource, int aLine) const {
    if (fElement == nullptr) [[unlikely]]
      Kelm::raiseNullReference(aSource, aLine);
    fGuard.check(fDeviant);
  }
};

template <class V, class Intf>
V viewOf(Kelm::Handle<Intf> const& aReference) {
  if (aReference.isNull()) return V();
  checkReadable(*aReference.get(), aReference.getDeviant());
  return V(*aReference.get(), aReference.getDeviant(), ViewGuard(aReference.getDeviant()));
}

}  // namespace umlmm::detail
