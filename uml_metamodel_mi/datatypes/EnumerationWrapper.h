#pragma once

#include <utility>

#include "frame/ElementClassInfo.h"
#include "frame/addTypedMethod.h"
#include "lum/lum.h"
#include "uml_metamodel_mi/datatypes/conversions.h"
#include "vesk/factory/BindingRegistry.h"

namespace umlmm::mi {

namespace detail {

/// The type of literals as any object tells it; raises for a null reference.
Kelm::ImmutableType literalMetaType(Kelm::Object const& aLiteral);

/// The typed functions of an enumeration's class that are no members of the enumeration.
template <class E>
struct EnumerationMethods {
  static E fromString(std::string const& aName) { return E::fromString(aName); }
  /// Prints where the process prints (lumPrintf).
  static void disp(E aValue) { lumPrintf("%s\n", aValue.toString().to_string().c_str()); }
  // By the order in which the metamodel lists the literals.
  static bool eq(E aLeft, E aRight) { return aLeft.number() == aRight.number(); }
  static bool ne(E aLeft, E aRight) { return aLeft.number() != aRight.number(); }
  static bool gt(E aLeft, E aRight) { return aLeft.number() > aRight.number(); }
  static bool ge(E aLeft, E aRight) { return aLeft.number() >= aRight.number(); }
  static bool lt(E aLeft, E aRight) { return aLeft.number() < aRight.number(); }
  static bool le(E aLeft, E aRight) { return aLeft.number() <= aRight.number(); }

  template <int Number>
  static E literal() {
    static E const value(Number);
    return value;
  }
};

template <class E, int... Numbers>
void addLiterals(vesk::VeskClass* aClass, char const* aSelf, std::integer_sequence<int, Numbers...>) {
  using Kelm::mi::Form;
  (Kelm::mi::addTypedMethod(aClass,
                            {E::kLiterals[Numbers].data(),
                             0,
                             Form::FreeFunction,
                             {"", aSelf, nullptr},
                             &Kelm::mi::bindFunction<&EnumerationMethods<E>::template literal<Numbers>>}),
   ...);
}

}  // namespace detail

/// Fills the class of an enumeration (UML 2.5.1, clause 10.2). An instance stands for a literal and holds no
/// number; a literal is reached by the static method of its name, and has one instance as long as a script
/// holds it. E is an enumeration's class of C++, as the catalogue makes it.
template <class E>
void fillEnumerationClass(vesk::VeskClass* aClass) {
  using Methods = detail::EnumerationMethods<E>;
  using Kelm::mi::bindFunction;
  using Kelm::mi::bindMember;
  using Kelm::mi::Form;
  using Kelm::mi::MethodRow;
  constexpr std::uint32_t selfFirst = vesk::factory::MethodFirstArgumentIsSelf;
  constexpr int literals = static_cast<int>(std::size(E::kLiterals));
  char const* const self = E::type().veskName();
  auto const comparison = [self](char const* aName, Kelm::mi::Bind aBind) {
    return MethodRow{
        aName, selfFirst, Form::FreeFunction, {"", "logical scalar", nullptr, {self, self}}, aBind};
  };

  vesk::factory::detail::initStringDataTypes();
  MethodRow const general[] = {
      {"isvalid", 0, Form::MemberFunction, {"", "logical scalar", self}, &bindMember<&E::isValid, E>},
      {"MetaDataType",
       0,
       Form::FreeFunction,
       {"", "Kelm.ImmutableDataType", nullptr},
       &bindFunction<&E::MetaDataType>},
      {"getMetaDataType",
       0,
       Form::MemberFunction,
       {"", "Kelm.ImmutableDataType", self},
       &bindMember<&E::getMetaDataType, E>},
      {"getMetaType",
       vesk::factory::MethodHidden,
       Form::MemberFunctionWithFlag,
       {"", "Kelm.ImmutableType", "Kelm.Object"},
       &bindFunction<&detail::literalMetaType>},
      {"fromString",
       0,
       Form::FreeFunction,
       {"", self, nullptr, {"char"}},
       &bindFunction<&Methods::fromString>},
      {"toString", 0, Form::MemberFunction, {"", "char vector", self}, &bindMember<&E::toString, E>},
      {"disp", selfFirst, Form::FreeFunction, {"", "void", nullptr, {self}}, &bindFunction<&Methods::disp>},
  };
  Kelm::mi::addTypedMethods(aClass, general);
  detail::addLiterals<E>(aClass, self, std::make_integer_sequence<int, literals>());
  MethodRow const comparisons[] = {
      comparison("eq", &bindFunction<&Methods::eq>), comparison("ne", &bindFunction<&Methods::ne>),
      comparison("gt", &bindFunction<&Methods::gt>), comparison("ge", &bindFunction<&Methods::ge>),
      comparison("lt", &bindFunction<&Methods::lt>), comparison("le", &bindFunction<&Methods::le>),
  };
  Kelm::mi::addTypedMethods(aClass, comparisons);
}

}  // namespace umlmm::mi
