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

/// Adds the methods of one of the two classes of elements, or tells somebody their names instead.
class Filler {
 public:
  Filler(vesk::VeskClass* aClass, ElementDescription const& aDescription, bool aMutable,
         NameVisitor const* aVisit = nullptr)
      : fClass(aClass),
        fVisit(aVisit),
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
  void add(Kelm::mi::MethodRow const& aRow) const {
    if (fVisit == nullptr)
      addTypedMethod(fClass, aRow);
    else if (aRow.fForm != Form::Constructor)
      (*fVisit)(aRow.fName);
  }
  Bind pick(BindPair const& aPair) const { return fMutable ? aPair.fOnMutable : aPair.fOnImmutable; }
  /// The changeable class replaces what it inherits from its read-only twin.
  std::uint32_t overriding() const { return fMutable ? std::uint32_t{MethodOverridesAllSignatures} : 0; }

  vesk::VeskClass* fClass;
  NameVisitor const* fVisit;
  ElementDescription const& fDescription;
  bool fMutable;
  char const* fMutableName;
  char const* fImmutableName;
  char const* fMetaPropertyName;
};

}  // namespace

namespace {

void addMutableMembers(Filler const& aFiller, ElementDescription const& aDescription) {
  bool const redeclares = aDescription.fRedeclared != nullptr;
  aFiller.constructors();
  if (redeclares) aFiller.isValid();
  aFiller.metaClass();
  if (redeclares) {
    aFiller.destroy();
    aFiller.asDeviant();
  }
  aFiller.operations();
  aFiller.metaType();
  aFiller.cast("Kelm.Object", "Kelm.Object", aDescription.fCommon->fCast);
  if (redeclares) aFiller.asImmutable();
}

/// `aAddProperties` comes where the properties stand among the methods.
template <class AddProperties>
void addImmutableMembers(Filler const& aFiller, ElementDescription const& aDescription,
                         AddProperties aAddProperties) {
  bool const redeclares = aDescription.fRedeclared != nullptr;
  if (redeclares) aFiller.isValid();
  aFiller.metaClass();
  aFiller.operations();
  aFiller.metaType();
  aAddProperties();
  if (redeclares) {
    aFiller.asDeviant();
    aFiller.asImmutable();
    aFiller.asMutable();
  }
  CommonMethods const& common = *aDescription.fCommon;
  aFiller.cast("Kelm.ImmutableObject", "Kelm.ImmutableObject", common.fCastImmutable);
  aFiller.cast("Kelm.Object", "Kelm.ImmutableObject", common.fCastToImmutable);
}

}  // namespace

void fillMutableClass(vesk::VeskClass* aClass, ElementDescription const& aDescription) {
  Filler const filler(aClass, aDescription, true);
  filler.superclasses();
  vesk::factory::detail::initStringDataTypes();
  addMutableMembers(filler, aDescription);
}

void fillImmutableClass(vesk::VeskClass* aClass, vesk::VeskClient const* aClient,
                        ElementDescription const& aDescription) {
  Filler const filler(aClass, aDescription, false);
  filler.superclasses();
  vesk::factory::detail::initStringDataTypes();
  addImmutableMembers(filler, aDescription, [&] {
    Kelm::mi::KelmmiPropertyFactory const factory{aClass, filler.immutableName(), aDescription.fMethods};
    for (PropertyRow const& row : aDescription.fProperties) row.fAdd(factory, row);
    // Extensions know a metaclass by its changeable class, and find the properties in place.
    Kelm::mi::VeskExtensionsRegistry::instance().executeNonConstCallbacks(filler.mutableName(), aClass,
                                                                          aClient);
  });
}

bool visitMutableNames(NameVisitor const& aVisit, ElementDescription const& aDescription) {
  addMutableMembers(Filler(nullptr, aDescription, true, &aVisit), aDescription);
  return true;
}

bool visitImmutableNames(NameVisitor const& aVisit, ElementDescription const& aDescription) {
  Filler const filler(nullptr, aDescription, false, &aVisit);
  if (Kelm::mi::VeskExtensionsRegistry::instance().hasCallbacks(filler.mutableName())) return false;
  addImmutableMembers(filler, aDescription, [&] {
    for (PropertyRow const& row : aDescription.fProperties) aVisit(row.fName);
  });
  return true;
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
