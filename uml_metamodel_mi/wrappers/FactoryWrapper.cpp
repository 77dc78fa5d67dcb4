#include "uml_metamodel_mi/wrappers/FactoryWrapper.h"

#include <functional>

#include "kelm/ModelCache.h"
#include "uml_metamodel/umlmm/Factory.h"
#include "uml_metamodel_mi/datatypes/conversions.h"
#include "uml_metamodel_mi/wrappers/elementMethods.h"
#include "uml_metamodel_mi/wrappers/factoryNames.h"

namespace umlmm::mi {

using Kelm::mi::addSuperclass;
using Kelm::mi::addTypedMethod;
using Kelm::mi::addTypedMethods;
using Kelm::mi::announceClass;
using Kelm::mi::bindFunction;
using Kelm::mi::bindMember;
using Kelm::mi::Form;
using Kelm::mi::MethodRow;

namespace {

constexpr char kFactory[] = "umlmm.Factory";
constexpr char kImmutableFactory[] = "umlmm.ImmutableFactory";

vesk::ClassFamily const& factoryFamily() { return Kelm::mi::classFamily(kPackage, "Factory"); }

/// Turns the writability checks off until the end of the scope.
class AssertionsOff {
 public:
  AssertionsOff() noexcept : fOld(Kelm::DeviantAssertions::enableAssertions(false)) {}
  AssertionsOff(AssertionsOff const&) = delete;
  AssertionsOff& operator=(AssertionsOff const&) = delete;
  ~AssertionsOff() { Kelm::DeviantAssertions::enableAssertions(fOld); }

 private:
  bool fOld;
};

/// A new model under a fresh uri, known to the cache.
Kelm::Model createNewModel() {
  Kelm::String const base(Kelm::ModelCache::UNTITLED);
  Kelm::Model const model = Kelm::NSInterface::FactoryIntf::createNewModel();
  AssertionsOff const off;
  auto& cache = Kelm::ModelCache::instance();
  auto const guard = cache.guard();
  std::u16string const uri = cache.getNextAvailableModelUri(std::u16string(base.text()));
  if (model.isNull()) Kelm::raiseNullReference("kelm/Kelm/Model_h");
  model.get()->setModelUri(model.getDeviant(), Kelm::String(uri));
  cache.bindModel(uri, model);
  return model;
}

/// A factory as a reference of the kernel; null stays null.
template <class To, class From>
To toKernel(From const& aFactory) {
  return Kelm::queryHandle<To, Kelm::VisitationDomain>(aFactory);
}

/// A reference of the kernel as a factory: null for anything else.
template <class To, class From>
To cast(From aOther) {
  return Kelm::queryHandle<To, VisitationDomain>(aOther);
}

/// Compares the places of two factories in memory. Deviants take no part.
template <class Compare>
bool compare(ImmutableFactory const& aLeft, ImmutableFactory const& aRight) {
  return Compare()(aLeft.get(), aRight.get());
}

constexpr MethodRow kStatics[] = {
    {"createNewFactory",
     0,
     Form::FreeFunction,
     {"", kFactory, nullptr, {"Kelm.Model"}},
     &bindFunction<&Factory::createNewFactory>},
    {"createNewModel", 0, Form::FreeFunction, {"", "Kelm.Model", nullptr}, &bindFunction<&createNewModel>},
    {"createFromString",
     0,
     Form::MemberFunction,
     {"", "Kelm.Object", kFactory, {"char vector"}},
     &bindMember<With<Kelm::String const&>::of(&Factory::createFromString), Factory>},
    {"createFromString",
     0,
     Form::MemberFunction,
     {"", "Kelm.Object", kFactory, {"char vector", "char vector"}},
     &bindMember<With<Kelm::String const&, Kelm::String const&>::of(&Factory::createFromString), Factory>},
};

constexpr MethodRow kConversions[] = {
    {"cast",
     0,
     Form::FreeFunction,
     {"", kFactory, nullptr, {"Kelm.Object"}},
     &bindFunction<&cast<Factory, Kelm::Object>>},
    {"toKelmObject",
     0,
     Form::MemberFunction,
     {"", "Kelm.Object", kFactory},
     &bindFunction<&toKernel<Kelm::Object, Factory>>},
    {"cast",
     0,
     Form::FreeFunction,
     {"", kFactory, nullptr, {"Kelm.FactoryObject"}},
     &bindFunction<&cast<Factory, Kelm::FactoryObject>>},
    {"toKelmFactoryObject",
     0,
     Form::MemberFunction,
     {"", "Kelm.FactoryObject", kFactory},
     &bindFunction<&toKernel<Kelm::FactoryObject, Factory>>},
};

constexpr MethodRow comparison(char const* aName, Kelm::mi::Bind aBind) {
  return {
      aName, 0, Form::MemberFunction, {"", "logical scalar", kImmutableFactory, {kImmutableFactory}}, aBind};
}

constexpr MethodRow kImmutableMethods[] = {
    comparison("eq", &bindFunction<&compare<std::equal_to<>>>),
    comparison("ne", &bindFunction<&compare<std::not_equal_to<>>>),
    comparison("gt", &bindFunction<&compare<std::greater<>>>),
    comparison("ge", &bindFunction<&compare<std::greater_equal<>>>),
    comparison("lt", &bindFunction<&compare<std::less<>>>),
    comparison("le", &bindFunction<&compare<std::less_equal<>>>),
    {"cast",
     0,
     Form::FreeFunction,
     {"other", kImmutableFactory, nullptr, {"Kelm.ImmutableObject"}},
     &bindFunction<&cast<ImmutableFactory, Kelm::ImmutableObject>>},
    {"toKelmImmutableObject",
     0,
     Form::MemberFunction,
     {"", "Kelm.ImmutableObject", kImmutableFactory},
     &bindFunction<&toKernel<Kelm::ImmutableObject, ImmutableFactory>>},
    {"cast",
     0,
     Form::FreeFunction,
     {"other", kImmutableFactory, nullptr, {"Kelm.ImmutableFactoryObject"}},
     &bindFunction<&cast<ImmutableFactory, Kelm::ImmutableFactoryObject>>},
    {"toKelmImmutableFactoryObject",
     0,
     Form::MemberFunction,
     {"", "Kelm.ImmutableFactoryObject", kImmutableFactory},
     &bindFunction<&toKernel<Kelm::ImmutableFactoryObject, ImmutableFactory>>},
};

}  // namespace

void FactoryWrapper::initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const*) {
  addSuperclass(aClass, "Kelm.FactoryObject");
  vesk::factory::detail::initStringDataTypes();
  addTypedMethods(aClass, kStatics);
  for (CreateRow const& row : createMethods()) {
    addTypedMethod(aClass, {row.fName,
                            0,
                            Form::MemberFunction,
                            {row.fArgumentNames, row.fResult, kFactory, row.fArguments},
                            row.fBind});
  }
  addTypedMethods(aClass, kConversions);
}

void ImmutableFactoryWrapper::initializeClass(vesk::VeskClass* aClass, vesk::VeskClient const*) {
  addSuperclass(aClass, "Kelm.ImmutableFactoryObject");
  vesk::factory::detail::initStringDataTypes();
  addTypedMethods(aClass, kImmutableMethods);
}

vesk::ClassFamily const* FactoryWrapper::family() const { return &factoryFamily(); }
vesk::ClassFamily const* ImmutableFactoryWrapper::family() const { return &factoryFamily(); }

void registerFactoryClasses(vesk::VeskPackage* aPackage) {
  using Kelm::mi::Access;
  constexpr char description[] = "An implementation of the factory design pattern";
  vesk::ClassFamily const& family = factoryFamily();
  auto const name = [&](Access aAccess) { return family.shortName(family.reference(aAccess)); };
  announceClass(aPackage, new FactoryWrapper(name(Access::Changeable), description));
  announceClass(aPackage, new ImmutableFactoryWrapper(name(Access::ReadOnly), description));
}

}  // namespace umlmm::mi
