#include <array>
#include <memory>
#include <optional>

#include "KelmClass.h"
#include "commonMethods.h"
#include "kelm/ElementQueries.h"
#include "kelm/ModelCache.h"
#include "kelm/ModelElementIntf.h"
#include "kelm_mi/KelmmiProperty.h"
#include "snapshots.h"
#include "tarn/tarn.h"

namespace Kelm::mi {

namespace {

using vesk::VeskValue;

constexpr char kSource[] = "kelm/Kelm/Model_h";

/// The implementation of a model that exists in the variant of the reference.
ModelObject& openModel(ImmutableModel const& aModel) {
  ModelObject& model = Model(aModel).object();
  if (!aModel.isvalid()) raiseFailure(words::kNotInVariant, kSource);
  return model;
}

bool isReadOnly(ImmutableModel const& aModel) {
  openModel(aModel);
  return aModel.getDeviant().variant()->fReadOnly;
}

template <class T>
ImmutableSequence<T> rootElements(ImmutableModel const& aModel) {
  ElementList const* const roots = openModel(aModel).roots();
  std::span<NSInterface::ModelElementIntf* const> const all =
      roots == nullptr ? std::span<NSInterface::ModelElementIntf* const>()
                       : std::span<NSInterface::ModelElementIntf* const>(roots->begin(), roots->end());
  return snapshot<T>(all, aModel.getDeviant());
}

template <class T>
ImmutableSequence<T> instancesOf(ImmutableModel const& aModel, ImmutableClass const& aClass) {
  ModelObject& model = openModel(aModel);
  if (aClass.isNull()) raiseNullReference(kSource);
  Deviant const deviant = aModel.getDeviant();
  auto const query = elementQueries().instancesOf;
  if (query == nullptr) return snapshot<T>(std::array<NSInterface::ObjectIntf const*, 0>(), deviant);
  return ImmutableSequence<T>::adopt(query(model, deviant, *aClass.get()), deviant);
}

template <class T>
ImmutableSequence<T> allElements(ImmutableModel const& aModel) {
  return instancesOf<T>(aModel, ImmutableClassObject::MetaClass());
}

/// The bound model of a uri.
template <class T>
std::optional<T> find(String const& aUri) {
  Model const found = ModelCache::instance().findModel(std::u16string(aUri.text()));
  if (found.isNull()) return std::nullopt;
  return T(found.get(), found.getDeviant());
}

Model readOnlyVariant(Model const& aModel) {
  return Model(aModel.get(), openModel(aModel).readOnlyDeviant());
}
void close(Model const& aModel) { Object(aModel.get(), aModel.getDeviant()).destroy(); }

/// The uri, which a changeable instance can set.
class ModelUriProperty final : public vesk::VeskPropInfo {
 public:
  ModelUriProperty() : VeskPropInfo("uri", "", 0) {}

  char const* getDataType() const override { return "char"; }
  VeskValue getValue(vesk::VeskInterface* aInstance) override {
    return Boxer<String>::box(modelOf(aInstance).getModelUri());
  }
  void setValue(vesk::VeskInterface* aInstance, VeskValue aValue) override {
    if (DeviantRegistry::isImmutable(aInstance->getNativeObject(ScriptClass<Model>::name())))
      KelmmiProperty::throwSetProhibitedException();
    modelOf(aInstance).setModelUri(String(tarn::get_ustring(aValue.array())));
  }
  void releaseValue(vesk::VeskInterface*, VeskValue aValue) override { tarnDestroyArray(aValue.array()); }

 private:
  static Model modelOf(vesk::VeskInterface* aInstance) {
    UnboxedInterface const found = unboxInstance(*aInstance, ScriptClass<Model>::name(),
                                                 tagPair<NSInterface::ModelIntf, VisitationDomain>());
    return Model(static_cast<NSInterface::ModelIntf*>(found.fInterface), found.fDeviant);
  }
};

void addUri(vesk::VeskClass* aClass) { aClass->addProperty(std::make_unique<ModelUriProperty>().release()); }

ImmutableModel getModel(ImmutableFactoryObject const& aFactory) {
  if (aFactory.isNull()) raiseNullReference("kelm/Kelm/FactoryObject_h");
  return aFactory.get()->getModel(aFactory.getDeviant());
}

constexpr char kImmutableModel[] = "Kelm.ImmutableModel";
constexpr char kModel[] = "Kelm.Model";

/// The queries of a model, whose answers are as changeable as the model is seen.
template <class T, class Receiver>
constexpr std::array<MethodRow, 4> queries(char const* aClass, char const* aElements, std::uint32_t aWord) {
  return {{
      {"rootElements", aWord, Form::MemberFunction, {"", aElements, aClass}, &bindFunction<&rootElements<T>>},
      {"allElements", aWord, Form::MemberFunction, {"", aElements, aClass}, &bindFunction<&allElements<T>>},
      {"instancesOf",
       aWord,
       Form::MemberFunction,
       {"class", aElements, aClass, {"Kelm.ImmutableClass"}},
       &bindFunction<&instancesOf<T>>},
      {"find",
       aWord,
       Form::FreeFunction,
       {"uri", aClass, nullptr, {"char vector"}},
       &bindFunction<&find<Receiver>>},
  }};
}

constexpr auto kImmutableQueries = queries<ImmutableClassObject, ImmutableModel>(
    kImmutableModel, "Kelm.ImmutableSequenceOfImmutableClassObject", 0);
constexpr auto kQueries =
    queries<ClassObject, Model>(kModel, "Kelm.ImmutableSequenceOfClassObject", kOverrides);

constexpr std::array kImmutableModelMethods{
    MethodRow{"isReadOnly",
              0,
              Form::MemberFunction,
              {"", "logical scalar", kImmutableModel},
              &bindFunction<&isReadOnly>},
    kImmutableQueries[0],
    kImmutableQueries[1],
    kImmutableQueries[2],
    kImmutableQueries[3],
};

constexpr std::array kModelMethods{
    MethodRow{
        "readOnlyVariant", 0, Form::MemberFunction, {"", kModel, kModel}, &bindFunction<&readOnlyVariant>},
    MethodRow{"close", 0, Form::MemberFunction, {"", "void", kModel}, &bindFunction<&close>},
    MethodRow{"destroy", 0, Form::MemberFunction, {"", "void", kModel}, &bindFunction<&close>},
    kQueries[0],
    kQueries[1],
    kQueries[2],
    kQueries[3],
};

constexpr std::array kFactoryMethods{
    MethodRow{"getModel",
              0,
              Form::MemberFunction,
              {"", kImmutableModel, "Kelm.ImmutableFactoryObject"},
              &bindFunction<&getModel>},
};

constexpr std::array<char const*, 1> kImmutableObjectOnly{"Kelm.ImmutableObject"};
constexpr std::array<char const*, 2> kModelSupers{kImmutableModel, "Kelm.Object"};
constexpr std::array<char const*, 2> kFactorySupers{"Kelm.ImmutableFactoryObject", "Kelm.Object"};

constexpr std::array kClasses{
    KelmClass{"Model",
              Access::ReadOnly,
              "A read-only reference to a model",
              kImmutableObjectOnly,
              kImmutableModelMethods,
              {},
              &addUri},
    KelmClass{"Model", Access::Changeable, "A changeable reference to a model", kModelSupers, kModelMethods},
    KelmClass{"FactoryObject", Access::ReadOnly, "A read-only reference to a factory of elements",
              kImmutableObjectOnly, kFactoryMethods},
    KelmClass{"FactoryObject",
              Access::Changeable,
              "A changeable reference to a factory of elements",
              kFactorySupers,
              {}},
};

}  // namespace

std::span<KelmClass const> modelClasses() { return kClasses; }

}  // namespace Kelm::mi
