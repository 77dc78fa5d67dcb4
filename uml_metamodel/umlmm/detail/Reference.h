#pragma once

#include <concepts>
#include <optional>
#include <utility>

#include "kelm/Object.h"
#include "kelm/kernel/containers/sequence/SequenceRef.h"
#include "uml_metamodel/umlmm/detail/metamodel.h"
#include "uml_metamodel/umlmm/detail/stored.h"

/// What the reference classes of the metaclasses share. A reference class is a handle with one level of
/// members for each metaclass that its elements are of, the most special on top, so that a redefined feature
/// hides the one it redefines. The levels are templates: only where a member is called need the classes of
/// its arguments and its result be complete, so the headers of metaclasses that refer to each other include
/// each other in no circle.
namespace umlmm::detail {

template <class Base, template <class> class... Levels>
struct StackOf {
  using Type = Base;
};
template <class Base, template <class> class Top, template <class> class... Levels>
struct StackOf<Base, Top, Levels...> {
  using Type = Top<typename StackOf<Base, Levels...>::Type>;
};
template <class Base, template <class> class... Levels>
using Stack = typename StackOf<Base, Levels...>::Type;

template <class Base, class T>
struct LaterOf {
  using Type = T;
};
/// T, looked at only when a member of a level on `Base` is used.
template <class Base, class T>
using Later = typename LaterOf<Base, T>::Type;

template <class T>
concept ReferenceValue = std::derived_from<T, Kelm::Handle<typename T::InterfaceType>>;
template <class T>
concept SequenceValue = std::derived_from<T, Kelm::SequenceRef>;
template <class T>
concept OptionalValue = std::same_as<T, std::optional<typename T::value_type>>;

/// The value of any feature of `Owner` as the accessor table answers it: a null reference, an empty text or
/// no optional value where it is unset.
template <class T, unsigned Id, class Owner>
T throughTable(Owner const& aElement, Kelm::Deviant const& aDeviant) {
  auto const& methods = Owner::sIntrospectiveMethods;
  if constexpr (SequenceValue<T>) {
    return T(methods.getSequenceEntry(&aElement, aDeviant, Id), aDeviant);
  } else if constexpr (OptionalValue<T>) {
    using Value = typename T::value_type;
    return methods.isSetEntry(&aElement, aDeviant, Id) ? T(Value(methods.getEntry(&aElement, aDeviant, Id)))
                                                       : std::nullopt;
  } else if constexpr (ReferenceValue<T>) {
    return Kelm::queryHandle<T, VisitationDomain>(methods.getEntry(&aElement, aDeviant, Id));
  } else {
    Kelm::Object value = methods.getEntry(&aElement, aDeviant, Id);
    return value.isNull() ? T() : T(std::move(value));
  }
}

/// A changeable reference to a more special element than those of the interface.
template <class Other, class Intf>
concept ChangeableTo =
    ReferenceValue<typename Other::Changeable> && !std::same_as<typename Other::InterfaceType, Intf> &&
    std::derived_from<typename Other::InterfaceType, Intf>;

/// A read-only handle with the access to features that the levels above it use. All members raise for a null
/// reference, and for an element that does not exist in the reference's variant.
///
/// *Single features.* Unset ones answer a null reference, an empty text, or no optional value; a number,
/// truth value or literal that must be there is always set. References answered see their element in the same
/// variant, and are as changeable as the one that was asked.
///
/// *Lists* are live: a list shows the feature as it is whenever it is asked, and a changeable one changes it.
/// Stored lists keep the order in which values came; those of elements hold each once. The list counts the
/// element, so it may outlive the reference; once the element is destroyed it raises, as the reference does.
/// Asking twice gives the same list. Read-only lists are those of read-only references and features; others
/// may change them meanwhile.
///
/// *Sets* of a list replace all values in one step, by those of any sequence of the type. A set that raises
/// has changed nothing.
template <class Intf>
class Reference : public Kelm::Handle<Intf> {
 public:
  using Domain = VisitationDomain;

  using Kelm::Handle<Intf>::Handle;
  Reference() noexcept = default;
  Reference(Kelm::Handle<Intf> const& aOther) : Kelm::Handle<Intf>(aOther) {}

 protected:
  /// The value of a feature of `Owner`: a null reference, an empty text or no optional value where it is
  /// unset. What the element keeps itself is read where it stands (a name in a third of the time that the
  /// accessor table takes, readTextTyped against readText); all else goes through the table.
  template <class T, class Owner, unsigned Id>
  T read(int aLine = std::source_location::current().line()) const {
    constexpr StoredFeature kFeature = Owner::kStored[Id];
    Owner const* const element = this->checked(Owner::kHeaderSource, aLine);
    auto const& deviant = this->getDeviant();
    if constexpr (kFeature.fStorage == Storage::String) {
      checkReadable(*element, deviant);
      return T(Kelm::String(pointerIn<kFeature, Kelm::StringObject>(*element)));
    } else if constexpr (isKeptValue(kFeature)) {
      checkReadable(*element, deviant);
      return valueIn<kFeature, T>(*element);
    } else if constexpr (ReferenceValue<T> && isKeptReference(kFeature)) {
      checkReadable(*element, deviant);
      return T(interfaceOf<typename T::InterfaceType>(targetIn<kFeature>(*element)), deviant);
    } else {
      return throughTable<T, Id>(*element, deviant);
    }
  }

  /// Sets a feature of `Owner`; a null reference, a null sequence and no optional value unset it.
  template <class Owner, unsigned Id, class T>
  void write(T const& aValue, int aLine = std::source_location::current().line()) const {
    auto* const element = this->writable(Owner::kHeaderSource, aLine);
    auto const& methods = Owner::sIntrospectiveMethods;
    auto const& deviant = this->getDeviant();
    if constexpr (SequenceValue<T>) {
      methods.setSequenceEntry(element, deviant, Id, aValue.get(), aValue.getDeviant());
    } else if constexpr (OptionalValue<T>) {
      aValue ? methods.setEntry(element, deviant, Id, *aValue) : methods.unsetEntry(element, deviant, Id);
    } else if constexpr (ReferenceValue<T>) {
      aValue ? methods.setEntry(element, deviant, Id, asObject(aValue))
             : methods.unsetEntry(element, deviant, Id);
    } else if constexpr (Owner::kStored[Id].fStorage == Storage::String) {
      setText(*element, deviant, Owner::kStored[Id].fNumber, aValue.record());
    } else {
      methods.setEntry(element, deviant, Id, aValue);
    }
  }

  /// Sets an optional text; an empty one unsets it.
  template <class Owner, unsigned Id, class Text>
  void writeText(Text const& aText, int aLine = std::source_location::current().line()) const {
    if (!aText.empty()) return write<Owner, Id>(aText, aLine);
    Owner::sIntrospectiveMethods.unsetEntry(this->writable(Owner::kHeaderSource, aLine), this->getDeviant(),
                                            Id);
  }
};

}  // namespace umlmm::detail
