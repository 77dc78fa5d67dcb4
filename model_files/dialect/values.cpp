#include "model_files/dialect/values.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>

#include "kelm/String.h"
#include "kelm/kernel/containers/Ref.h"
#include "uml_metamodel/umlmm/Boolean.h"
#include "uml_metamodel/umlmm/String.h"
#include "uml_metamodel/umlmm/detail/direct.h"

namespace umlmm::files {

namespace {

struct LetGo {
  void operator()(Kelm::StringObject* aText) const noexcept { aText->decRef(); }
};
using TextPtr = std::unique_ptr<Kelm::StringObject, LetGo>;

using Kelm::makePrimitive;
using Kelm::PrimitiveKind;

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view trimmed(std::string_view aText) noexcept {
  // Mostly there are no blanks.
  if (!aText.empty() && aText.front() > ' ' && aText.back() > ' ') [[likely]]
    return aText;
  std::size_t const from = aText.find_first_not_of(kBlanks);
  if (from == std::string_view::npos) return {};
  return aText.substr(from, aText.find_last_not_of(kBlanks) - from + 1);
}

template <class Number>
std::optional<std::uint32_t> number(std::string_view aText) noexcept {
  Number value = 0;
  auto const [end, error] = std::from_chars(aText.data(), aText.data() + aText.size(), value);
  if (error != std::errc() || end != aText.data() + aText.size()) return std::nullopt;
  return static_cast<std::uint32_t>(value);
}

std::optional<std::uint32_t> boolean(std::string_view aText) noexcept {
  if (aText == "true" || aText == "1") return 1;
  if (aText == "false" || aText == "0") return 0;
  return std::nullopt;
}

/// Literals are written with a small first letter: "inout", "private", "sequential".
bool isSpelling(std::string_view aText, std::string_view aLiteral) noexcept {
  return aText.size() == aLiteral.size() && (aText.front() | 0x20) == (aLiteral.front() | 0x20) &&
         aText.substr(1) == aLiteral.substr(1);
}

std::optional<std::uint32_t> literal(Kelm::EnumerationType const& aType, std::string_view aText) {
  auto const literals = aType.literals();
  for (std::size_t at = 0; !aText.empty() && at < literals.size(); ++at)
    if (isSpelling(aText, literals[at])) return static_cast<std::uint32_t>(at);
  return std::nullopt;
}

/// What an element keeps of a value that is neither text nor element; none if the text is no such value.
std::optional<std::uint32_t> bitsOf(Feature const& aFeature, std::string_view aText) {
  std::string_view const text = trimmed(aText);
  switch (aFeature.fKind) {
    case Kind::Boolean:
      return boolean(text);
    case Kind::Integer:
      // Bounds are written as integers, too, and unlimited is less than none.
      return text == "*" ? UINT32_MAX : number<std::int32_t>(text);
    case Kind::UnlimitedNatural:
      return text == "*" || text == "-1" || text == "n" ? UINT32_MAX : number<std::uint32_t>(text);
    case Kind::Enumeration:
      return literal(*aFeature.fEnumeration, text);
    default:
      return std::nullopt;
  }
}

}  // namespace

Kelm::Object textObject(std::string_view aText) {
  Kelm::StringObject* const record = Kelm::StringObject::make(aText);
  Kelm::Object const object(record, Kelm::Deviant());
  record->decRef();
  return object;
}

Kelm::Object valueOf(Feature const& aFeature, std::string_view aText) {
  if (aFeature.fKind == Kind::String) return textObject(aText);
  auto const bits = bitsOf(aFeature, aText);
  if (!bits) return {};
  switch (aFeature.fKind) {
    case Kind::Boolean:
      return makePrimitive(PrimitiveKind::Boolean, *bits);
    case Kind::Integer:
      return makePrimitive(PrimitiveKind::Integer, *bits);
    case Kind::UnlimitedNatural:
      return makePrimitive(PrimitiveKind::UnlimitedNatural, *bits);
    default:
      return Kelm::Object(aFeature.fEnumeration->object(static_cast<int>(*bits)), Kelm::Deviant());
  }
}

bool setValue(Element& aElement, Feature const& aFeature, std::string_view aText,
              Kelm::Deviant const& aDeviant) {
  auto& element = static_cast<umlmm::detail::ModelElement&>(aElement);
  umlmm::detail::StoredFeature const& stored = aFeature.fStored;
  if (stored.fStorage == umlmm::detail::Storage::String) {
    TextPtr const text(Kelm::StringObject::make(aText));
    umlmm::detail::setText(element, aDeviant, stored.fNumber, text.get());
    return true;
  }
  if (stored.fStorage <= umlmm::detail::Storage::Integer) {
    auto const bits = bitsOf(aFeature, aText);
    if (bits) umlmm::detail::setBits(element, aDeviant, stored.fNumber, *bits);
    return bits.has_value();
  }
  Kelm::Object const value = valueOf(aFeature, aText);
  if (value.isNull()) return false;
  if (aFeature.fMany)
    return appendValue(*aFeature.fMethods->getSequenceEntry(&aElement, aDeviant, aFeature.fId), aFeature,
                       value, aDeviant);
  aFeature.fMethods->setEntry(&aElement, aDeviant, aFeature.fId, value);
  return true;
}

void addElement(Element& aElement, Feature const& aFeature, Element& aValue, Kelm::Deviant const& aDeviant) {
  auto const storage = aFeature.fStored.fStorage;
  if (storage == umlmm::detail::Storage::Reference || storage == umlmm::detail::Storage::List)
    return umlmm::detail::addTarget(static_cast<umlmm::detail::ModelElement&>(aElement), aDeviant,
                                    aFeature.fStored.fNumber,
                                    static_cast<umlmm::detail::ModelElement&>(aValue));
  if (!aFeature.fMany)
    return aFeature.fMethods->setEntry(&aElement, aDeviant, aFeature.fId, Kelm::Object(&aValue, aDeviant));
  aFeature.fMethods->getSequenceEntry(&aElement, aDeviant, aFeature.fId)
      ->generic_push_back(
          aDeviant, Kelm::Generic::RefAccess<Kelm::ClassObject>::make(Kelm::ClassObject(&aValue, aDeviant)));
}

bool appendValue(Kelm::Generic::SequenceIntf& aList, Feature const& aFeature, Kelm::Object const& aValue,
                 Kelm::Deviant const& aDeviant) {
  using Kelm::Generic::RefAccess;
  switch (aFeature.fKind) {
    case Kind::String:
      aList.generic_push_back(aDeviant, RefAccess<String>::make(String(aValue)));
      return true;
    case Kind::Boolean:
      aList.generic_push_back(aDeviant, RefAccess<Boolean>::make(Boolean(aValue)));
      return true;
    default:
      return false;
  }
}

std::string textOf(Feature const& aFeature, Kelm::Object const& aValue) {
  std::uint32_t const bits = aValue.getDeviant().value();
  switch (aFeature.fKind) {
    case Kind::Boolean:
      return bits != 0 ? "true" : "false";
    case Kind::Integer:
      return std::to_string(static_cast<std::int32_t>(bits));
    case Kind::UnlimitedNatural:
      return bits == UINT32_MAX ? "*" : std::to_string(bits);
    case Kind::Enumeration: {
      std::string text = aFeature.fEnumeration->text(Kelm::literalNumber(aValue, *aFeature.fEnumeration));
      if (!text.empty() && text.front() >= 'A' && text.front() <= 'Z')
        text.front() = static_cast<char>(text.front() | 0x20);
      return text;
    }
    case Kind::String:
      return Kelm::toUtf8(Kelm::asString(aValue)->text());
    case Kind::Reference:
      break;
  }
  return {};
}

namespace {

std::vector<Kelm::Generic::Loan> loansOf(Kelm::Generic::SequenceIntf const& aList,
                                         Kelm::Deviant const& aDeviant) {
  std::vector<Kelm::Generic::Loan> loans(static_cast<std::size_t>(aList.generic_size(aDeviant)));
  aList.readBlock(aDeviant, 0, static_cast<int>(loans.size()), loans.data());
  return loans;
}

Kelm::Generic::SequenceIntf const& listOf(Element const& aElement, Feature const& aFeature,
                                          Kelm::Deviant const& aDeviant) {
  return *aFeature.fMethods->getSequenceEntry(&aElement, aDeviant, aFeature.fId);
}

Element* asElement(Kelm::Object const& aObject) {
  return Kelm::queryHandle<Kelm::ClassObject, Kelm::VisitationDomain>(aObject).get();
}

}  // namespace

Kelm::Object read(Element const& aElement, Feature const& aFeature, Kelm::Deviant const& aDeviant) {
  return aFeature.fMethods->getEntry(&aElement, aDeviant, aFeature.fId);
}

std::vector<Element*> elementsOf(Element const& aElement, Feature const& aFeature,
                                 Kelm::Deviant const& aDeviant) {
  std::vector<Element*> elements;
  if (!aFeature.fMany) {
    if (Element* const element = asElement(read(aElement, aFeature, aDeviant))) elements.push_back(element);
    return elements;
  }
  for (auto const& loan : loansOf(listOf(aElement, aFeature, aDeviant), aDeviant))
    elements.push_back(Kelm::Generic::RefAccess<Kelm::ClassObject>::get(loan).get());
  return elements;
}

Element* elementAt(Element const& aElement, Feature const& aFeature, std::size_t aPosition,
                   Kelm::Deviant const& aDeviant) {
  Kelm::Generic::SequenceIntf const& list = listOf(aElement, aFeature, aDeviant);
  if (aPosition >= static_cast<std::size_t>(list.generic_size(aDeviant))) return nullptr;
  Kelm::Generic::Loan loan;
  list.readBlock(aDeviant, static_cast<int>(aPosition), 1, &loan);
  return Kelm::Generic::RefAccess<Kelm::ClassObject>::get(loan).get();
}

std::vector<std::string> textsOf(Element const& aElement, Feature const& aFeature,
                                 Kelm::Deviant const& aDeviant) {
  std::vector<std::string> texts;
  if (!aFeature.fMany) {
    Kelm::Object const value = read(aElement, aFeature, aDeviant);
    if (!value.isNull()) texts.push_back(textOf(aFeature, value));
    return texts;
  }
  for (auto const& loan : loansOf(listOf(aElement, aFeature, aDeviant), aDeviant))
    texts.push_back(aFeature.fKind == Kind::Boolean
                        ? (Kelm::Generic::RefAccess<Boolean>::get(loan).value() ? "true" : "false")
                        : Kelm::toUtf8(Kelm::Generic::RefAccess<String>::get(loan).text()));
  return texts;
}

std::string pathOf(Element const& aElement, Kelm::Deviant const& aDeviant) {
  std::string path;
  for (Element const* element = &aElement; element != nullptr; element = containerOf(*element, aDeviant)) {
    Metaclass const& metaclass = Metamodel::instance().metaclassOf(*element);
    Feature const* const feature = metaclass.feature("name");
    Kelm::Object const name = feature == nullptr ? Kelm::Object() : read(*element, *feature, aDeviant);
    if (!path.empty()) path.insert(0, "::");
    path.insert(0, name.isNull() ? std::string(metaclass.fName) : textOf(*feature, name));
  }
  return path;
}

std::string externalIdOf(Element const& aElement, Kelm::Deviant const& aDeviant) {
  Kelm::Object const id = aElement.getKernelEntry(aDeviant, Element::ExternalId);
  return id.isNull() ? std::string() : Kelm::toUtf8(Kelm::asString(id)->text());
}

Element* containerOf(Element const& aElement, Kelm::Deviant const& aDeviant) {
  return asElement(aElement.getKernelEntry(aDeviant, Element::ContainerKelm));
}

}  // namespace umlmm::files
