#include "model_files/reading/TagReader.h"

#include "model_files/dialect/older.h"
#include "model_files/reading/tree.h"

namespace umlmm::files {

namespace {

bool isDeclaration(std::string_view aName) noexcept {
  return aName.starts_with("xmlns") && (aName.size() == 5 || aName[5] == ':');
}

}  // namespace

TagReader::Head TagReader::read(pugi::xml_node aNode) {
  std::uintptr_t const scope = fScope;
  Head const head = collect(aNode, fAttributes);
  if (!fDeclares) [[likely]]
    return head;
  // What a tag declares holds for the tag itself.
  declare(aNode);
  return fScope == scope ? head : collect(aNode, fAttributes);
}

TagReader::Head TagReader::headOf(pugi::xml_node aNode) { return collect(aNode, fInner); }

TagReader::Head TagReader::collect(pugi::xml_node aNode, std::vector<Attribute>& aOut) {
  Head head;
  fDeclares = false;
  aOut.clear();
  for (pugi::xml_attribute at = aNode.first_attribute(); isThere(at); at = at.next_attribute()) {
    std::string_view const text = at.name();
    std::string_view const value = at.value();
    Name const& name = meaningOf(text);
    aOut.push_back({text, value, name});
    switch (name.fRole) {
      case Role::Plain:
        if (name.fIsHref) head.fHref = value;
        break;
      case Role::Declaration:
        fDeclares = true;
        break;
      case Role::Type:
        head.fType = value;
        break;
      case Role::Id:
        head.fId = value;
        break;
      case Role::Uuid:
        head.fUuid = value;
        break;
      case Role::Idref:
        head.fIdref = value;
        break;
      case Role::Nil:
        head.fIsNil = value.find_first_of("1tTyY") == 0;
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

void TagReader::declare(pugi::xml_node aNode) {
  for (pugi::xml_attribute const attribute : aNode.attributes()) {
    std::string_view const name = attribute.name();
    if (!isDeclaration(name)) continue;
    std::string_view const prefix = name.size() > 6 ? name.substr(6) : "";
    std::string_view const address = fPieces.lasting(attribute.value());
    fPrefixes.declare(prefix.empty() ? prefix : fPieces.lasting(prefix), address);
    ++fScope;
    Space const space = fPrefixes.all().back().fSpace;
    if (space == Space::Uml && fUmlAddress.empty()) fUmlAddress = address;
    if (space == Space::Xmi && fXmiAddress.empty()) fXmiAddress = address;
  }
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
