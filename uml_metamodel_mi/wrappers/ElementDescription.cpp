#include "uml_metamodel_mi/wrappers/ElementDescription.h"

#include <string>

#include "kelm_mi/VeskExtensionsRegistry.h"
#include "uml_metamodel_mi/wrappers/metaclasses.h"
#include "vesk/factory/BindingRegistry.h"

namespace umlmm::mi {

using Kelm::mi::Access;
using Kelm::mi::addSuperclass;
using Kelm::mi::addTypedMethod;
using Kelm::mi::Form;
using vesk::factory::MethodFirstArgumentIsSelf;
using vesk::factory::MethodHidden;
using vesk::factory::MethodOverridesAllSignatures;

vesk::VeskInterned metaPropertyClassName(char const* aMetaclass) {
  return vesk::internal::makeInterned(std::string(kPackage) + "." + aMetaclass + "MetaProperty");
}

vesk::ClassFamily const& ElementDescription::family() const { return Kelm::mi::classFamily(kPackage, fName); }

namespace {

Kelm::ImmutableType getMetaType(Kelm::ImmutableObject const& aObject) {
  if (aObject.isNull()) Kelm::raiseNullReference("kelm/Kelm/Object_h");
  return aObject.get()->getMetaType(aObject.getDeviant());
}
Kelm::ImmutableType getMutableMetaType(Kelm::Object const& aObject) { return getMetaType(aObject); }

/// Adds the methods of one of the two classes of elements.
class Filler {
 public:
  Filler(vesk::VeskClass* aClass, ElementDescription const& aDescription, bool aMutable)
      : fClass(aClass),
        fDescription(aDescription),
        fMutable(aMutable),
        fMutableName(aDescription.family().reference(Access::Changeable).c_str()),
        fImmutableName(aDescription.family().reference(Access::ReadOnly).c_str()),
        fMetaPropertyName(metaPropertyClassName(aDescription.fName).c_str()) {}

  char const* mutableName() const { return fMutableName; }
  char const* immutableName() const { return fImmutableName; }
  char const* selfName() const { return fMutable ? fMutableName : fImmutableName; }
  RedeclaredMethods const* redeclared() const { return fDescription.fRedeclared; }

  void superclasses() const {
    if (fMutable) addSuperclass(fClass, fImmutableName);
    if (fDescription.fSupers.empty()) {
      addSuperclass(fClass, fMutable ? "Kelm.ClassObject" : "Kelm.ImmutableClassObject");
    }
    for (char const* super : fDescription.fSupers) {
      addSuperclass(fClass, Kelm::mi::classFamily(kPackage, super)
                                .reference(fMutable ? Access::Changeable : Access::ReadOnly)
                                .c_str());
    }
  }
  void constructors() const {
    for (ConstructorRow const& row : fDescription.fConstructors) {
      add({nullptr, 0, Form::Constructor, {"", fMutableName, nullptr, row.fArguments}, row.fBind});
    }
  }
  void isValid() const {
    add({"isvalid",
         0,
         Form::MemberFunction,
         {"", "logical scalar", selfName()},
         pick(redeclared()->fIsValid)});
  }
  void metaClass() const {
    add({"MetaClass",
         overriding(),
         Form::FreeFunction,
         {"", "Kelm.ImmutableClass", nullptr},
         fDescription.fCommon->fMetaClass});
    add({"MetaProperty",
         overriding(),
         Form::FreeFunction,
         {"", fMetaPropertyName, nullptr},
         fDescription.fCommon->fMetaProperty});
  }
  void destroy() const {
    add({"destroy", 0, Form::MemberFunction, {"", "void", fMutableName}, redeclared()->fDestroy});
  }
  void asDeviant() const {
    add({"asDeviant",
         overriding(),
         Form::MemberFunctionWithFlag,
         {"deviant", selfName(), selfName(), {"Kelm.ImmutableModel"}},
         pick(redeclared()->fAsDeviant)});
  }
  void operations() const {
    for (OperationRow const& row : fDescription.fOperations) {
      add({row.fName,
           overriding(),
           Form::MemberFunctionWithFlag,
           {row.fArgumentNames, row.fResult, selfName(), row.fArguments},
           pick(row.fBind)});
    }
  }
  void metaType() const {
    if (fMutable) {
      add({"getMetaType",
           MethodHidden,
           Form::MemberFunctionWithFlag,
           {"", "Kelm.ImmutableType", "Kelm.Object"},
           &Kelm::mi::bindFunction<&getMutableMetaType>});
    } else {
      add({"getMetaType",
           MethodHidden,
           Form::MemberFunctionWithFlag,
           {"", "Kelm.ImmutableType", "Kelm.ImmutableObject"},
           &Kelm::mi::bindFunction<&getMetaType>});
    }
  }
  void cast(char const* aFrom, char const* aTo, Bind aBind) const {
    add({"cast", 0, Form::FreeFunctionWithFlag, {"other", aTo, nullptr, {aFrom}}, aBind});
  }
  void asImmutable() const {
    add({"asImmutable",
         MethodFirstArgumentIsSelf,
         Form::FreeFunction,
         {"", fImmutableName, nullptr, {selfName()}},
         pick(redeclared()->fAsImmutable)});
  }
  void asMutable() const {
    add({"asMutable",
         MethodFirstArgumentIsSelf,
         Form::FreeFunction,
         {"", fMutableName, nullptr, {fImmutableName}},
         redeclared()->fAsMutable});
  }

 private:
  void add(Kelm::mi::MethodRow const& aRow) const { addTypedMethod(fClass, aRow); }
  Bind pick(BindPair const& aPair) const { return fMutable ? aPair.fOnMutable : aPair.fOnImmutable; }
  /// The changeable class replaces what it inherits from its read-only twin.
  std::uint32_t overriding() const { return fMutable ? std::uint32_t{MethodOverridesAllSignatures} : 0; }

  vesk::VeskClass* fClass;
  ElementDescription const& fDescription;
  bool fMutable;
  char const* fMutableName;
  char const* fImmutableName;
  char const* fMetaPropertyName;
};

}  // namespace

void fillMutableClass(vesk::VeskClass* aClass, ElementDescription const& aDescription) {
  Filler const filler(aClass, aDescription, true);
  bool const redeclares = aDescription.fRedeclared != nullptr;
  filler.superclasses();
  vesk::factory::detail::initStringDataTypes();
  filler.constructors();
  if (redeclares) filler.isValid();
  filler.metaClass();
  if (redeclares) {
    filler.destroy();
    filler.asDeviant();
  }
  filler.operations();
  filler.metaType();
  filler.cast("Kelm.Object", "Kelm.Object", aDescription.fCommon->fCast);
  if (redeclares) filler.asImmutable();
}

void fillImmutableClass(vesk::VeskClass* aClass, vesk::VeskClient const* aClient,
                        ElementDescription const& aDescription) {
  Filler const filler(aClass, aDescription, false);
  bool const redeclares = aDescription.fRedeclared != nullptr;
  filler.superclasses();
  vesk::factory::detail::initStringDataTypes();
  if (redeclares) filler.isValid();
  filler.metaClass();
  filler.operations();
  filler.metaType();

  Kelm::mi::KelmmiPropertyFactory const factory{aClass, filler.immutableName(), aDescription.fMethods};
  for (PropertyRow const& row : aDescription.fProperties) row.fAdd(factory, row);
  // Extensions know a metaclass by its changeable class, and find the properties in place.
  Kelm::mi::VeskExtensionsRegistry::instance().executeNonConstCallbacks(filler.mutableName(), aClass,
                                                                        aClient);

  if (redeclares) {
    filler.asDeviant();
    filler.asImmutable();
    filler.asMutable();
  }
  CommonMethods const& common = *aDescription.fCommon;
  filler.cast("Kelm.ImmutableObject", "Kelm.ImmutableObject", common.fCastImmutable);
  filler.cast("Kelm.Object", "Kelm.ImmutableObject", common.fCastToImmutable);
}

void fillMetaPropertyClass(vesk::VeskClass* aClass, ElementDescription const& aDescription) {
  vesk::factory::detail::initStringDataTypes();
  char const* const name = metaPropertyClassName(aDescription.fName).c_str();
  Kelm::mi::KelmmiPropertyFactory const factory{aClass, name, aDescription.fMethods};
  for (MetaPropertyRow const& row : aDescription.fMetaProperties) {
    factory.addMetaProperty(row.fName, row.fAccessor, row.fId);
  }
}

}  // namespace umlmm::mi
