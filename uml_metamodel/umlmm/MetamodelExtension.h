#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kelm/ClassObject.h"
#include "kelm/Model.h"
#include "kelm/meta.h"
#include "lum/visibility.h"

namespace umlmm {

/// Further metaclasses, and further features of metaclasses that are there, which join the metamodel while
/// the process runs and stay as long as it does. Elements of all models have the features from then on, also
/// those that were made before, on which they read as unset. They are read and written by reflection, as
/// `Kelm::ImmutableProperty` tells; links keep far ends, subsets and owners as for any other feature.
///
/// Scripts see elements of an added metaclass as the nearest metaclass above it that the metamodel was
/// published with, and none of its features; the published classes stay as they are.
///
/// An extension is put together first and joins as a whole with `commit`, while no other thread uses the
/// metamodel. What is wrong with a row is raised as a failure that names it, and nothing has joined then.
class UMLMM_API MetamodelExtension {
 public:
  /// A metaclass that rows name: one that is there, or one of this extension.
  class Metaclass {
   public:
    UMLMM_API Metaclass(Kelm::ImmutableClass const& aClass);

   private:
    friend class MetamodelExtension;
    explicit Metaclass(int aIndex) noexcept : fIndex(aIndex) {}
    int fIndex;
  };
  /// The same of features.
  class Feature {
   public:
    UMLMM_API Feature(Kelm::ImmutableProperty const& aProperty);

   private:
    friend class MetamodelExtension;
    explicit Feature(std::uint16_t aIndex) noexcept : fIndex(aIndex) {}
    std::uint16_t fIndex;
  };
  /// What a feature holds: elements, a literal of an enumeration or a primitive value.
  class Type {
   public:
    Type(Metaclass aMetaclass) noexcept : fMetaclass(aMetaclass.fIndex) {}
    Type(Kelm::ImmutableClass const& aClass) : Type(Metaclass(aClass)) {}
    Type(Kelm::ImmutableDataType const& aType) noexcept : fDataType(aType.get()) {}

   private:
    friend class MetamodelExtension;
    int fMetaclass = -1;
    Kelm::NSInterface::DataTypeIntf const* fDataType = nullptr;
  };

  static constexpr int kUnlimited = Kelm::NSInterface::PropertyIntf::kUnlimited;

  struct FeatureRow {
    std::string_view fName;
    Type fType;
    int fLower = 0;
    int fUpper = 1;
    /// The owner owns the values. Without another superset they are among its owned elements.
    bool fComposite = false;
    bool fOrdered = false;
    /// Holds what its subsets hold, and nothing else; can't be written.
    bool fUnion = false;
    /// As text; of a Boolean or an enumeration.
    std::string_view fDefault = {};
    std::vector<Feature> fSubsets = {};
    std::vector<Feature> fRedefines = {};
  };

  /// The name is that of the package of the metaclasses.
  explicit MetamodelExtension(std::string_view aName);
  MetamodelExtension(MetamodelExtension const&) = delete;
  MetamodelExtension& operator=(MetamodelExtension const&) = delete;
  ~MetamodelExtension();

  /// A metaclass below others; its name is new to the metamodel. Elements of a concrete one have the
  /// interfaces of the published metaclasses above it, which some published class must have, too.
  Metaclass addMetaclass(std::string_view aName, std::vector<Metaclass> const& aSupers,
                         bool aIsAbstract = false);
  /// A feature of a metaclass, by a name that no other of its features has. A published metaclass numbers it
  /// behind its own features.
  Feature addFeature(Metaclass aOwner, FeatureRow const& aRow);
  /// Two features of this extension become the ends of one association: each has the other's owner for its
  /// type, and a link set at one shows at the other.
  void setOpposites(Feature aOne, Feature aOther);

  /// The metaclasses and features join the metamodel; their package, whose objects live as long as the
  /// process. Once only.
  Kelm::ImmutablePackage commit();

 private:
  struct Rows;
  std::unique_ptr<Rows> fRows;
};

/// A new element of a concrete metaclass, without an owner, required references unset. Raises for an abstract
/// metaclass and as `X::create` does. The answer is counted by the model or its container alone.
UMLMM_API Kelm::ClassObject createElement(Kelm::Model const& aModel, Kelm::ImmutableClass const& aClass);

}  // namespace umlmm
