#include "model_files/writing/TagEdits.h"

namespace umlmm::files {

namespace {

TagEdits::Layout layoutOf(std::string_view aText) {
  std::size_t const line = aText.find('\n');
  if (line == std::string_view::npos) return {};
  TagEdits::Layout layout{line > 0 && aText[line - 1] == '\r' ? "\r\n" : "\n", "  "};
  // The first tag that is set in tells by how much.
  for (std::size_t at = aText.find('\n'); at != std::string_view::npos; at = aText.find('\n', at + 1)) {
    std::size_t const tag = aText.find_first_not_of(" \t", at + 1);
    if (tag == std::string_view::npos) break;
    if (tag == at + 1 || aText[tag] != '<') continue;
    layout.fUnit = aText.substr(at + 1, tag - at - 1);
    break;
  }
  return layout;
}

}  // namespace

TagEdits::TagEdits(std::string_view aText, char aQuote)
    : Edits(aText), fText(aText), fQuote(aQuote), fLayout(layoutOf(aText)) {}

std::string_view TagEdits::indentAt(std::size_t aFrom) const {
  std::size_t at = aFrom;
  while (at > 0 && (fText[at - 1] == ' ' || fText[at - 1] == '\t')) --at;
  bool const isLine = at > 0 && (fText[at - 1] == '\n' || fText[at - 1] == '\r');
  return isLine ? fText.substr(at, aFrom - at) : std::string_view();
}

void TagEdits::replaceChildren(Tag const& aTag, std::vector<markup::Child> const& aOld,
                               std::vector<Write> aNew) {
  std::size_t at = 0;
  for (; at < aOld.size() && at < aNew.size(); ++at) {
    std::string text;
    aNew[at](text);
    if (text != fText.substr(aOld[at].fFrom, aOld[at].fTo - aOld[at].fFrom))
      replace(aOld[at].fFrom, aOld[at].fTo, std::move(text));
  }
  for (std::size_t more = at; more < aOld.size(); ++more) removeTag(aOld[more].fFrom, aOld[more].fTo);
  std::size_t const behind = aOld.empty() ? 0 : aOld.back().fTo;
  for (std::size_t more = at; more < aNew.size(); ++more) addChild(aTag, behind, std::move(aNew[more]));
}

TagEdits::Tag TagEdits::tagOf(std::size_t aName) const {
  Tag tag;
  tag.fName = aName;
  tag.fAttributes = markup::attributes(fText, aName);
  tag.fLast =
      tag.fAttributes.empty() ? aName + markup::nameAt(fText, aName).size() : tag.fAttributes.back().fTo;
  tag.fChildren = markup::children(fText, aName, tag.fEnd);
  return tag;
}

void TagEdits::setAttribute(Tag const& aTag, markup::Attribute const* aOld, std::string_view aName,
                            std::string const& aValue) {
  if (aOld != nullptr) {
    if (aOld->value() == aValue) return;
    auto const from = static_cast<std::size_t>(aOld->fRaw.data() - fText.data());
    return replace(from, from + aOld->fRaw.size(), markup::escaped(aValue, aOld->fQuote));
  }
  std::string text = " ";
  ((text += aName) += '=') += fQuote;
  (text += markup::escaped(aValue, fQuote)) += fQuote;
  insert(aTag.fLast, std::move(text));
}

void TagEdits::removeAttribute(markup::Attribute const& aAttribute) {
  std::size_t from = aAttribute.fFrom;
  while (from > 0 && std::string_view(" \t\r\n").find(fText[from - 1]) != std::string_view::npos) --from;
  erase(from, aAttribute.fTo);
}

void TagEdits::removeTag(std::size_t aFrom, std::size_t aTo) {
  std::size_t from = aFrom - indentAt(aFrom).size();
  bool const isLine = from > 0 && (fText[from - 1] == '\n' || fText[from - 1] == '\r');
  if (isLine && fText[from - 1] == '\n') --from;
  if (isLine && from > 0 && fText[from - 1] == '\r') --from;
  erase(isLine ? from : aFrom, aTo);
}

void TagEdits::addChild(Tag const& aTag, std::size_t aBehind, Write aChild) {
  if (aTag.fChildren.empty()) {
    fFirstChildren[aTag.fName].push_back(std::move(aChild));
    return;
  }
  std::size_t const at = aBehind != 0 ? aBehind : aTag.fChildren.back().fTo;
  addBehind(aTag.fChildren.front().fFrom, at, std::move(aChild));
}

void TagEdits::addBehind(std::size_t aFrom, std::size_t aTo, Write aTag) {
  replace(
      aTo, aTo,
      [gap = fLayout.fLineEnd + std::string(indentAt(aFrom)), write = std::move(aTag)](std::string& aOut) {
        aOut += gap;
        write(aOut);
      });
}

void TagEdits::flushChildren() {
  for (auto& [name, children] : fFirstChildren) {
    bool isEmpty = false;
    std::size_t const end = markup::endOfStart(fText, name, isEmpty);
    std::string const indent(indentAt(name - 1));
    std::string const& lineEnd = fLayout.fLineEnd;
    std::string const closing =
        isEmpty ? "</" + std::string(markup::nameAt(fText, name)) + '>' : std::string();
    // What stands between start and end tag now are blanks.
    std::size_t const to = isEmpty ? end : fText.find('<', end);
    std::size_t const from = isEmpty ? fText.find_last_not_of(" \t\r\n", end - 3) + 1 : end;
    replace(from, to,
            [this, lineEnd, indent, closing, isEmpty, all = std::move(children)](std::string& aOut) {
              if (isEmpty) aOut += '>';
              for (Write const& write : all) {
                (aOut += lineEnd) += lineEnd.empty() ? std::string() : indent + fLayout.fUnit;
                write(aOut);
              }
              (aOut += lineEnd) += lineEnd.empty() ? std::string() : indent;
              aOut += closing;
            });
  }
}

}  // namespace umlmm::files
