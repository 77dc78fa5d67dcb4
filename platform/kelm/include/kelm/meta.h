#pragma once

#include <span>
#include <string_view>

#include "kelm/Object.h"

/// The metamodel about itself: types, classes, data types, properties and packages. All are immortal,
/// read-only objects that every thread may read; texts and spans they answer live as long as the process. The
/// words are those of UML 2.5.1: clauses 7.5 (types, multiplicities), 9.2 (classifiers) and 9.5 (properties).
namespace Kelm {

namespace NSInterface {

class UMLMM_API MetaObjectIntf : public ObjectIntf {
 public:
  ~MetaObjectIntf() override;
  int incRef() const final { return 1; }
  int decRef() const final { return 1; }
  int numRef() const final { return 1; }
  bool deviant_isValid(Deviant) const final { return true; }
};

class UMLMM_API TypeIntf : public MetaObjectIntf {
 public:
  ~TypeIntf() override;
  void* cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const override;
  char const* getVeskName(bool aImmutable) const override;
  virtual std::string_view getName() const = 0;
  /// Packages and name, "umlmm::Class".
  virtual std::string_view getQualifiedName() const = 0;
  /// This type is `aOther` or a specialization of it.
  virtual bool conformsTo(TypeIntf const& aOther) const = 0;
};

class UMLMM_API ClassIntf : public TypeIntf {
 public:
  ~ClassIntf() override;
  void* cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const override;
  char const* getVeskName(bool aImmutable) const override;
  virtual bool isAbstract() const = 0;
  virtual std::span<ClassIntf const* const> superClasses() const = 0;
  /// Own properties by ascending id.
  virtual std::span<PropertyIntf const* const> ownedProperties() const = 0;
  /// Own and inherited properties but for those that another one redefines, in the order of the meta-property
  /// list.
  virtual std::span<PropertyIntf const* const> allProperties() const = 0;
};

class UMLMM_API DataTypeIntf : public TypeIntf {
 public:
  ~DataTypeIntf() override;
  void* cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const override;
  char const* getVeskName(bool aImmutable) const override;
  /// Literals in declared order; none for a primitive type.
  virtual std::span<std::string_view const> literals() const = 0;
};

class UMLMM_API PropertyIntf : public MetaObjectIntf {
 public:
  static constexpr int kUnlimited = -1;

  ~PropertyIntf() override;
  void* cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const override;
  char const* getVeskName(bool aImmutable) const override;
  /// "ownedAttribute"
  virtual std::string_view getName() const = 0;
  /// The id within the owner, from 1.
  virtual unsigned getId() const = 0;
  virtual ClassIntf const& getOwner() const = 0;
  virtual TypeIntf const& getType() const = 0;
  virtual int getLower() const = 0;
  /// kUnlimited for "*".
  virtual int getUpper() const = 0;
  /// The default as text; empty for none.
  virtual std::string_view getDefault() const = 0;
  virtual bool isReadOnly() const = 0;
  virtual bool isComposite() const = 0;
  virtual bool isDerived() const = 0;
  virtual bool isOrdered() const = 0;
  virtual bool isUnique() const = 0;
  /// The other end of the association, if that is a property too; else null.
  virtual PropertyIntf const* getOpposite() const = 0;
  virtual std::span<PropertyIntf const* const> subsetted() const = 0;
  virtual std::span<PropertyIntf const* const> redefined() const = 0;
  /// The accessors that serve the property, with `getId()`.
  virtual IntrospectiveMethods const& accessors() const = 0;

  bool isMultivalued() const { return getUpper() == kUnlimited || getUpper() > 1; }
};

class UMLMM_API PackageIntf : public MetaObjectIntf {
 public:
  ~PackageIntf() override;
  void* cast(CooperativeVisitor::internal::ClassInfo const& aClassInfo) const override;
  char const* getVeskName(bool aImmutable) const override;
  virtual std::string_view getName() const = 0;
  virtual std::string_view getUri() const = 0;
  virtual std::span<ClassIntf const* const> classes() const = 0;
  virtual std::span<DataTypeIntf const* const> dataTypes() const = 0;
};

}  // namespace NSInterface

/// The one read-only variant in which meta objects are seen.
UMLMM_API Deviant metaDeviant() noexcept;

class ImmutableType : public Handle<NSInterface::TypeIntf> {
 public:
  using Handle::Handle;
  ImmutableType() noexcept = default;
  ImmutableType(Handle const& aOther) : Handle(aOther) {}
};

class ImmutableClass : public Handle<NSInterface::ClassIntf> {
 public:
  using Handle::Handle;
  ImmutableClass() noexcept = default;
};

class ImmutableDataType : public Handle<NSInterface::DataTypeIntf> {
 public:
  using Handle::Handle;
  ImmutableDataType() noexcept = default;
};

class ImmutableProperty : public Handle<NSInterface::PropertyIntf> {
 public:
  using Handle::Handle;
  ImmutableProperty() noexcept = default;
};

class ImmutablePackage : public Handle<NSInterface::PackageIntf> {
 public:
  using Handle::Handle;
  ImmutablePackage() noexcept = default;
};

}  // namespace Kelm
