#pragma once

#include <concepts>
#include <optional>
#include <utility>

#include "kelm/Object.h"
#include "kelm/kernel/containers/sequence/SequenceRef.h"
#include "uml_metamodel/umlmm/detail/metamodel.h"

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
  /// unset.
  template <class T, class Owner>
  T read(unsigned aId, int aLine = std::source_location::current().line()) const {
    auto const* const element = this->checked(Owner::kHeaderSource, aLine);
    auto const& methods = Owner::sIntrospectiveMethods;
    auto const& deviant = this->getDeviant();
    if constexpr (SequenceValue<T>) {
      return T(methods.getSequenceEntry(element, deviant, aId), deviant);
    } else if constexpr (OptionalValue<T>) {
      using Value = typename T::value_type;
      return methods.isSetEntry(element, deviant, aId) ? T(Value(methods.getEntry(element, deviant, aId)))
                                                       : std::nullopt;
    } else if constexpr (ReferenceValue<T>) {
      return Kelm::queryHandle<T, VisitationDomain>(methods.getEntry(element, deviant, aId));
    } else {
      Kelm::Object value = methods.getEntry(element, deviant, aId);
      return value.isNull() ? T() : T(std::move(value));
    }
  }

  /// Sets a feature of `Owner`; a null reference, a null sequence and no optional value unset it.
  template <class Owner, class T>
  void write(unsigned aId, T const& aValue, int aLine = std::source_location::current().line()) const {
    auto* const element = this->writable(Owner::kHeaderSource, aLine);
    auto const& methods = Owner::sIntrospectiveMethods;
    auto const& deviant = this->getDeviant();
    if constexpr (SequenceValue<T>) {
      methods.setSequenceEntry(element, deviant, aId, aValue.get(), aValue.getDeviant());
    } else if constexpr (OptionalValue<T>) {
      aValue ? methods.setEntry(element, deviant, aId, *aValue) : methods.unsetEntry(element, deviant, aId);
    } else if constexpr (ReferenceValue<T>) {
      aValue ? methods.setEntry(element, deviant, aId, asObject(aValue))
             : methods.unsetEntry(element, deviant, aId);
    } else {
      methods.setEntry(element, deviant, aId, aValue);
    }
  }

  /// Sets an optional text; an empty one unsets it.
  template <class Owner, class Text>
  void writeText(unsigned aId, Text const& aText, int aLine = std::source_location::current().line()) const {
    if (!aText.empty()) return write<Owner>(aId, aText, aLine);
    Owner::sIntrospectiveMethods.unsetEntry(this->writable(Owner::kHeaderSource, aLine), this->getDeviant(),
                                            aId);
  }
};

}  // namespace umlmm::detail
