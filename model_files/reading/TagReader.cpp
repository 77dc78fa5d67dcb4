#include "model_files/reading/TagReader.h"

#include "model_files/dialect/older.h"

namespace umlmm::files {

namespace {

bool isDeclaration(std::string_view aName) noexcept {
  return aName.starts_with("xmlns") && (aName.size() == 5 || aName[5] == ':');
}

}  // namespace

TagReader::Head TagReader::read(pugi::xml_node aNode) {
  if (collect(aNode, fAttributes)) [[unlikely]]
    declare(fAttributes);
  return headOf(fAttributes);
}

TagReader::Head TagReader::headOf(pugi::xml_node aNode) {
  collect(aNode, fInner);
  return headOf(fInner);
}

bool TagReader::collect(pugi::xml_node aNode, std::vector<Attribute>& aOut) {
  bool declares = false;
  aOut.clear();
  for (pugi::xml_attribute at = aNode.first_attribute(); at; at = at.next_attribute()) {
    char const* const name = at.name();
    declares |= name[0] == 'x' && name[1] == 'm' && name[2] == 'l';
    std::string_view const text = name;
    aOut.push_back({text, at.value(), Role::Plain, NameWords(text)});
  }
  return declares;
}

void TagReader::declare(std::vector<Attribute> const& aAttributes) {
  for (Attribute const& attribute : aAttributes) {
    if (!isDeclaration(attribute.fName)) continue;
    std::string_view const prefix = attribute.fName.size() > 6 ? attribute.fName.substr(6) : "";
    std::string_view const address = fPieces.lasting(attribute.fValue);
    fPrefixes.declare(prefix.empty() ? prefix : fPieces.lasting(prefix), address);
    ++fScope;
    Space const space = fPrefixes.all().back().fSpace;
    if (space == Space::Uml && fUmlAddress.empty()) fUmlAddress = address;
    if (space == Space::Xmi && fXmiAddress.empty()) fXmiAddress = address;
  }
}

TagReader::Head TagReader::headOf(std::vector<Attribute>& aAttributes) {
  Head head;
  for (Attribute& attribute : aAttributes) {
    attribute.fRole =
        fRoles.get(fScope, attribute.fName, attribute.fWords, [&] { return roleOf(attribute.fName); });
    switch (attribute.fRole) {
      case Role::Plain:
        if (attribute.fName == "href") head.fHref = attribute.fValue;
        break;
      case Role::Type:
        head.fType = attribute.fValue;
        break;
      case Role::Id:
        head.fId = attribute.fValue;
        break;
      case Role::Uuid:
        head.fUuid = attribute.fValue;
        break;
      case Role::Idref:
        head.fIdref = attribute.fValue;
        break;
      case Role::Nil:
        head.fIsNil = attribute.fValue.find_first_of("1tTyY") == 0;
        break;
      default:
        break;
    }
  }
  if (!head.fType.empty())
    head.fTypeSaid =
        fTypes.get(fScope, head.fType, NameWords(head.fType), [&] { return typeOf(head.fType); });
  return head;
}

TagReader::Role TagReader::roleOf(std::string_view aName) const {
  if (isDeclaration(aName)) return Role::Declaration;
  if (aName.find(':') == std::string_view::npos) return Role::Plain;
  QualifiedName const name(aName);
  Space const space = name.fPrefix == "xmi" ? Space::Xmi : fPrefixes.find(name.fPrefix);
  if (space != Space::Xmi && space != Space::Xsi) return Role::Foreign;
  if (name.fName == "type") return Role::Type;
  if (name.fName == "id") return Role::Id;
  if (name.fName == "uuid") return Role::Uuid;
  if (name.fName == "idref" || name.fName == "uuidref") return Role::Idref;
  if (name.fName == "nil") return Role::Nil;
  return Role::OtherXmi;
}

TagReader::Type TagReader::typeOf(std::string_view aValue) const {
  QualifiedName const name(aValue);
  // Without a prefix it is one of UML in a file that has to do with UML.
  bool const isPlain = name.fPrefix.empty() && !fUmlAddress.empty();
  Space const space = isPlain ? Space::Uml : fPrefixes.find(name.fPrefix);
  return {space, space == Space::Uml ? metaclassCalled(name.fName) : nullptr};
}

}  // namespace umlmm::files
