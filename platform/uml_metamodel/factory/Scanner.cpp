#include "factory/Scanner.h"

#include "kelm/Asserter.h"
#include "kelm/String.h"

namespace umlmm::factory::textual {

namespace {

bool isBlank(char16_t aCharacter) noexcept {
  return aCharacter == u' ' || aCharacter == u'\t' || aCharacter == u'\n' || aCharacter == u'\r';
}
bool isDigit(char16_t aCharacter) noexcept { return aCharacter >= u'0' && aCharacter <= u'9'; }
bool endsWord(char16_t aCharacter) noexcept {
  return isBlank(aCharacter) ||
         std::u16string_view(u"{}[];=,\"'*").find(aCharacter) != std::u16string_view::npos;
}

class Reader {
 public:
  explicit Reader(std::u16string_view aText) noexcept : fText(aText) {}

  Description description() {
    Description result;
    skipBlanks();
    result.fMetaclassPosition = fAt;
    result.fMetaclass = word();
    skipBlanks();
    if (!atEnd() && peek() != u'{') {
      result.fHasName = true;
      result.fName = isQuote(peek()) ? quoted() : word();
      skipBlanks();
    }
    if (!atEnd()) {
      take(u'{');
      while (!tryTake(u'}')) result.fAssignments.push_back(assignment());
      skipBlanks();
      if (!atEnd()) fail();
    }
    return result;
  }

 private:
  static bool isQuote(char16_t aCharacter) noexcept { return aCharacter == u'"' || aCharacter == u'\''; }
  bool atEnd() const noexcept { return fAt == fText.size(); }
  char16_t peek() const noexcept { return fText[fAt]; }
  void skipBlanks() noexcept {
    while (!atEnd() && isBlank(peek())) ++fAt;
  }

  [[noreturn]] void fail() const {
    std::size_t const length = 20;
    raiseUnreadable(fText.substr(fAt, length), fAt);
  }

  bool tryTake(char16_t aCharacter) {
    skipBlanks();
    if (atEnd() || peek() != aCharacter) return false;
    ++fAt;
    return true;
  }
  void take(char16_t aCharacter) {
    if (!tryTake(aCharacter)) fail();
  }

  std::u16string word() {
    skipBlanks();
    std::size_t const start = fAt;
    while (!atEnd() && !endsWord(peek())) ++fAt;
    if (fAt == start) fail();
    return std::u16string(fText.substr(start, fAt - start));
  }

  /// A text in quotes; the quote itself stands behind a backslash, and so does the backslash.
  std::u16string quoted() {
    std::size_t const start = fAt;
    char16_t const quote = fText[fAt++];
    std::u16string text;
    while (!atEnd() && peek() != quote) {
      if (peek() == u'\\' && fAt + 1 < fText.size()) ++fAt;
      text += fText[fAt++];
    }
    if (atEnd()) {
      fAt = start;
      fail();
    }
    ++fAt;
    return text;
  }

  Value value() {
    skipBlanks();
    if (atEnd()) fail();
    std::size_t const start = fAt;
    if (tryTake(u'*')) return {Value::Kind::Star, u"*", start};
    if (isQuote(peek())) return {Value::Kind::Text, quoted(), start};
    std::u16string text = word();
    bool const number =
        isDigit(text.back()) &&
        text.find_first_not_of(u"0123456789", text[0] == u'-' ? 1 : 0) == std::u16string::npos;
    return {number ? Value::Kind::Number : Value::Kind::Word, std::move(text), start};
  }

  Assignment assignment() {
    skipBlanks();
    Assignment result{{}, fAt, false, {}};
    result.fFeature = word();
    take(u'=');
    result.fIsList = tryTake(u'[');
    if (!result.fIsList) {
      result.fValues.push_back(value());
    } else if (!tryTake(u']')) {
      do result.fValues.push_back(value());
      while (tryTake(u','));
      take(u']');
    }
    if (!tryTake(u';')) {
      skipBlanks();
      if (atEnd() || peek() != u'}') fail();
    }
    return result;
  }

  std::u16string_view fText;
  std::size_t fAt = 0;
};

}  // namespace

void raiseUnreadable(std::u16string_view aWhat, std::size_t aPosition) {
  std::string const text =
      "cannot read '" + Kelm::toUtf8(aWhat) + "' at position " + std::to_string(aPosition + 1);
  Kelm::raiseFailure(text.c_str(), "uml_metamodel/umlmm/Factory");
}

Description scan(std::u16string_view aText) { return Reader(aText).description(); }

}  // namespace umlmm::factory::textual
