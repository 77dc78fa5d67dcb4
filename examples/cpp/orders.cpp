// A model of a shop's orders: built, asked and changed through typed references.
//
// `umlmm::X` is a changeable reference to an X, `umlmm::ImmutableX` a read-only one. References are small,
// are copied like pointers, and share the element. Each feature has a getter, and a setter where it can be
// set; lists are live. What UML promises is kept at every step: both ends of an association, one owner for
// each part.

#include <iostream>
#include <string>
#include <vector>

#include "uml_metamodel/umlmm.h"

namespace {

using umlmm::UnlimitedNatural;

// --- building

/// A new X of this name in a package.
template <class X>
X add(umlmm::Package const& aPackage, umlmm::String const& aName, Kelm::Model const& aModel) {
  X const element = X::create(aModel);
  element.setName(aName);
  aPackage.getPackagedElement().push_back(element);
  return element;
}

umlmm::Property makeProperty(umlmm::String const& aName, umlmm::Type const& aType, int aLower,
                             UnlimitedNatural aUpper, Kelm::Model const& aModel) {
  auto const property = umlmm::Property::create(aModel);
  property.setName(aName);
  property.setType(aType);
  property.setLower(aLower);
  property.setUpper(aUpper);
  return property;
}

/// The package "shop" with everything in it.
umlmm::Package buildShop(Kelm::Model const& aModel) {
  constexpr UnlimitedNatural kOne(1);
  constexpr UnlimitedNatural kMany = UnlimitedNatural::unlimited();

  auto const shop = umlmm::Package::create(aModel);
  shop.setName("shop");
  auto const text = add<umlmm::PrimitiveType>(shop, "Text", aModel);
  auto const number = add<umlmm::PrimitiveType>(shop, "Number", aModel);

  auto const state = add<umlmm::Enumeration>(shop, "OrderState", aModel);
  for (char const* name : {"Open", "Paid", "Shipped"}) {
    auto const literal = umlmm::EnumerationLiteral::create(aModel);
    literal.setName(name);
    state.getOwnedLiteral().push_back(literal);
  }

  auto const party = add<umlmm::Class>(shop, "Party", aModel);
  party.setIsAbstract(true);
  party.getOwnedAttribute().push_back(makeProperty("name", text, 1, kOne, aModel));

  auto const customer = add<umlmm::Class>(shop, "Customer", aModel);
  customer.getOwnedAttribute().push_back(makeProperty("emails", text, 0, kMany, aModel));
  auto const company = add<umlmm::Class>(shop, "Company", aModel);
  company.setName(u"Company");  // texts may be UTF-16 or UTF-8
  umlmm::Generalization::create(aModel, customer, party);
  umlmm::Generalization::create(aModel, company, customer);

  auto const order = add<umlmm::Class>(shop, "Order", aModel);
  order.getOwnedAttribute().push_back(makeProperty("number", number, 1, kOne, aModel));
  order.getOwnedAttribute().push_back(makeProperty("state", state, 1, kOne, aModel));
  order.getOwnedAttribute().push_back(makeProperty("customer", customer, 1, kOne, aModel));
  auto const item = add<umlmm::Class>(shop, "Item", aModel);
  item.getOwnedAttribute().push_back(makeProperty("quantity", number, 1, kOne, aModel));

  // An association has two ends: one that the order owns and one that the association owns itself.
  auto const items = makeProperty("items", item, 1, kMany, aModel);
  items.setAggregation(umlmm::AggregationKind::Composite);
  items.setVisibility(umlmm::VisibilityKind::Private);
  order.getOwnedAttribute().push_back(items);
  auto const contents = add<umlmm::Association>(shop, "Contents", aModel);
  contents.getMemberEnd().push_back(items);
  contents.getOwnedEnd().push_back(makeProperty("order", order, 1, kOne, aModel));
  return shop;
}

// --- reading

/// UTF-8 of a name, for a stream.
template <class Named>
std::string nameOf(Named const& aElement) {
  return aElement.isNull() ? "nothing" : aElement.getName().to_string();
}

/// "[Party, Customer]"
template <class List>
std::string namesOf(List const& aList) {
  std::string names;
  for (auto const& element : aList.values()) names += (names.empty() ? "" : ", ") + nameOf(element);
  return "[" + names + "]";
}

std::string boundsOf(umlmm::ImmutableProperty const& aProperty) {
  std::string const upper =
      aProperty.upperBound().isUnlimited() ? "*" : std::to_string(aProperty.upperBound().value());
  return std::to_string(aProperty.lowerBound().value()) + ".." + upper;
}

void print(umlmm::ImmutableProperty const& aProperty) {
  std::cout << "    " << nameOf(aProperty) << ": " << nameOf(aProperty.getType()) << " ["
            << boundsOf(aProperty) << "]" << (aProperty.getIsComposite().value() ? ", part of it" : "")
            << "\n";
}

void print(umlmm::ImmutableClass const& aClass) {
  std::cout << "  class " << nameOf(aClass) << (aClass.getIsAbstract().value() ? ", abstract" : "");
  if (!aClass.getSuperClass().empty()) std::cout << ", a special " << nameOf(aClass.getSuperClass().front());
  std::cout << "\n";
  for (umlmm::ImmutableProperty const& attribute : aClass.getOwnedAttribute().values()) print(attribute);
}

/// A read-only reference is enough to print with, and promises that nothing is changed.
void print(umlmm::ImmutablePackage const& aPackage) {
  std::cout << "package " << nameOf(aPackage) << "\n";
  for (umlmm::ImmutablePackageableElement const& element : aPackage.getPackagedElement().values()) {
    // A reference to something more special is null if the element is no such thing.
    if (auto const cls = umlmm::cast<umlmm::ImmutableClass>(element)) {
      print(cls);
    } else if (auto const enumeration = umlmm::cast<umlmm::ImmutableEnumeration>(element)) {
      std::cout << "  enumeration " << nameOf(enumeration) << " " << namesOf(enumeration.getOwnedLiteral())
                << "\n";
    } else if (auto const association = umlmm::cast<umlmm::ImmutableAssociation>(element)) {
      std::cout << "  association " << nameOf(association) << " between "
                << namesOf(association.getMemberEnd()) << "\n";
    }
  }
}

// --- asking

template <class X>
X find(umlmm::Package const& aPackage, char const* aName) {
  for (umlmm::PackageableElement const& element : aPackage.getPackagedElement().values())
    if (element.getName() == umlmm::String(aName)) return umlmm::cast<X>(element);
  return X();
}

void ask(umlmm::Package const& aShop) {
  auto const company = find<umlmm::Class>(aShop, "Company");
  auto const party = find<umlmm::Class>(aShop, "Party");
  auto const order = find<umlmm::Class>(aShop, "Order");
  umlmm::Property const items = order.getOwnedAttribute().back();
  umlmm::Property const farEnd = items.getAssociation().getOwnedEnd().front();

  std::cout << "Parents of Company:      " << namesOf(company.allParents()) << "\n"
            << "Members of Company:      " << namesOf(company.getMember()) << "\n"
            << "Company is a Party:      " << (company.conformsTo(party).value() ? "yes" : "no") << "\n"
            << "Full name of the items:  " << items.getQualifiedName().to_string() << "\n"
            << "Visibility of the items: " << items.getVisibility()->toString().to_string() << "\n"
            << "Far end of the items:    " << nameOf(farEnd) << ": " << nameOf(farEnd.getType()) << "\n";
}

/// Who refers to an element: through any feature, whether it has a far end or not.
void printReferencesTo(umlmm::NamedElement const& aElement) {
  std::cout << "What refers to " << nameOf(aElement) << ":";
  char const* comma = " ";
  for (umlmm::Element const& element : umlmm::referencedBy(aElement).values()) {
    auto const owner = umlmm::cast<umlmm::NamedElement>(element.getOwner());
    std::cout << comma << "a " << umlmm::metaclassName(element) << " of " << nameOf(owner);
    comma = ", ";
  }
  std::cout << "\n";
}

// --- changing

void change(umlmm::Package const& aShop, Kelm::Model const& aModel) {
  // An element has one owner: put into another list, it leaves the old one.
  auto const people = add<umlmm::Package>(aShop, "people", aModel);
  for (char const* name : {"Party", "Customer", "Company"})
    people.getPackagedElement().push_back(find<umlmm::Class>(aShop, name));

  auto const order = find<umlmm::Class>(aShop, "Order");
  order.setName("PurchaseOrder");
  order.getOwnedAttribute().at(2).setLower(0);  // an order without a customer

  // What must not be is refused, and nothing has changed then.
  try {
    people.getPackagedElement().push_back(aShop);
  } catch (Kelm::Exception const&) {
    std::cout << "A package in its own part: refused\n";
  }
}

/// Takes a class out of the model, after the properties of its type and their associations.
void remove(umlmm::Class const& aClass) {
  std::vector<umlmm::Property> users;
  for (umlmm::Element const& element : umlmm::referencedBy(aClass).values())
    if (auto const property = umlmm::cast<umlmm::Property>(element)) users.push_back(property);
  for (umlmm::Property const& user : users) {
    if (auto const association = user.getAssociation()) association.destroy();
    if (user.isvalid()) user.destroy();
  }
  aClass.destroy();
}

void run() {
  // The model lives as long as a reference to it.
  Kelm::Model const model = umlmm::createNewModel();
  umlmm::Package const shop = buildShop(model);
  print(shop);

  std::cout << "\n";
  ask(shop);
  printReferencesTo(find<umlmm::Class>(shop, "Customer"));

  std::cout << "\n";
  change(shop, model);
  auto const item = find<umlmm::Class>(shop, "Item");
  remove(item);
  std::cout << "Item is still there: " << (item.isvalid() ? "yes" : "no") << "\n"
            << "Associations left:   " << umlmm::instancesOf<umlmm::Association>(model).size() << "\n"
            << "Classes left:        " << namesOf(umlmm::instancesOf<umlmm::Class>(model)) << "\n\n";
  print(shop);
  print(find<umlmm::Package>(shop, "people"));
}

}  // namespace

int main() {
  try {
    run();
  } catch (Kelm::Exception const& failure) {
    std::cerr << failure.what() << "\n";
    return 1;
  }
}
