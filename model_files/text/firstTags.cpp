#include "model_files/text/firstTags.h"

#include <algorithm>

#include "model_files/text/encodings.h"

namespace umlmm::files {

namespace {

constexpr auto kEnd = std::string_view::npos;

class Scan {
 public:
  explicit Scan(std::string_view aText) noexcept : fText(aText) {}

  FirstTags run(std::size_t aMost) {
    while (fFound.fTags.size() < aMost) {
      std::size_t const start = fText.find('<', fPlace);
      if (start == kEnd || !takeMarkup(start)) break;
    }
    return std::move(fFound);
  }

 private:
  struct Binding {
    std::size_t fDepth;
    std::string_view fPrefix;
    std::string_view fNamespace;
  };

  /// False at the end of the text.
  bool takeMarkup(std::size_t aStart) {
    std::string_view const rest = fText.substr(aStart);
    if (rest.starts_with("<!--")) return skipPast("-->", aStart + 4);
    if (rest.starts_with("<![CDATA[")) return skipPast("]]>", aStart);
    if (rest.starts_with("<?")) return skipPast("?>", aStart);
    if (rest.starts_with("<!")) return takeDoctype(aStart + 2);
    if (rest.starts_with("</")) {
      if (fDepth > 0) --fDepth;
      return skipPast(">", aStart);
    }
    return takeTag(aStart + 1);
  }

  bool skipPast(std::string_view aMark, std::size_t aFrom) {
    std::size_t const end = fText.find(aMark, aFrom);
    fPlace = end + aMark.size();
    return end != kEnd;
  }

  /// With declarations in brackets, if it has such.
  bool takeDoctype(std::size_t aFrom) {
    std::size_t const end = fText.find_first_of("[>", aFrom);
    if (end == kEnd) return false;
    fPlace = aFrom;
    takeName();
    skipBlanks();
    fFound.fDoctype = takeName();
    return fText[end] == '[' ? skipPast("]", end) && skipPast(">", fPlace) : skipPast(">", end);
  }

  bool takeTag(std::size_t aFrom) {
    fPlace = aFrom;
    Tag tag;
    tag.fName = takeName();
    tag.fDepth = fDepth;
    for (;;) {
      skipBlanks();
      if (fPlace >= fText.size()) return false;
      char const next = fText[fPlace];
      if (next == '>' || next == '/' || next == '<') break;
      if (!takeAttribute(tag)) return false;
    }
    tag.fIsEmpty = fText[fPlace] == '/';
    bind(tag);
    fFound.fTags.push_back(std::move(tag));
    if (fText[fPlace] == '>') ++fDepth;
    return true;
  }

  bool takeAttribute(Tag& aTag) {
    std::size_t const start = fPlace;
    std::string_view const name = takeName();
    skipBlanks();
    if (fPlace < fText.size() && fText[fPlace] == '=') ++fPlace;
    skipBlanks();
    if (fPlace >= fText.size()) return false;
    char const quote = fText[fPlace];
    if (quote != '"' && quote != '\'') {
      if (fPlace == start) ++fPlace;
      return true;
    }
    std::size_t const end = fText.find(quote, fPlace + 1);
    if (end == kEnd) return false;
    aTag.fAttributes.emplace_back(name, fText.substr(fPlace + 1, end - fPlace - 1));
    fPlace = end + 1;
    return true;
  }

  void bind(Tag& aTag) {
    while (!fBindings.empty() && fBindings.back().fDepth >= fDepth) fBindings.pop_back();
    for (auto const& [name, value] : aTag.fAttributes) {
      if (name != "xmlns" && !name.starts_with("xmlns:")) continue;
      fBindings.push_back({fDepth, name.substr(std::min<std::size_t>(6, name.size())), value});
      if (fDepth == 0) fFound.fNamespaces.push_back(value);
    }
    std::size_t const colon = aTag.fName.find(':');
    std::string_view const prefix = colon == kEnd ? std::string_view() : aTag.fName.substr(0, colon);
    auto const binding =
        std::find_if(fBindings.rbegin(), fBindings.rend(),
                     [prefix](Binding const& aBinding) { return aBinding.fPrefix == prefix; });
    if (binding != fBindings.rend()) aTag.fNamespace = binding->fNamespace;
  }

  std::string_view takeName() {
    std::size_t const start = fPlace;
    while (fPlace < fText.size() && !isBlank(fText[fPlace]) &&
           std::string_view("=/<>\"'").find(fText[fPlace]) == kEnd) {
      ++fPlace;
    }
    return fText.substr(start, fPlace - start);
  }

  void skipBlanks() {
    while (fPlace < fText.size() && isBlank(fText[fPlace])) ++fPlace;
  }

  std::string_view fText;
  std::size_t fPlace = 0;
  std::size_t fDepth = 0;
  std::vector<Binding> fBindings;
  FirstTags fFound;
};

}  // namespace

bool Tag::has(std::string_view aAttribute) const noexcept {
  return std::any_of(fAttributes.begin(), fAttributes.end(),
                     [aAttribute](auto const& aPair) { return aPair.first == aAttribute; });
}

std::string_view Tag::attribute(std::string_view aName) const noexcept {
  auto const found = std::find_if(fAttributes.begin(), fAttributes.end(),
                                  [aName](auto const& aPair) { return aPair.first == aName; });
  return found == fAttributes.end() ? std::string_view() : found->second;
}

FirstTags firstTags(std::string_view aText, std::size_t aMost) { return Scan(aText).run(aMost); }

}  // namespace umlmm::files
