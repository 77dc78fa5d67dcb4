#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kelm/ClassObject.h"
#include "kelm/Generic.h"
#include "model_files/dialect/Metamodel.h"

namespace umlmm::files {

using Element = Kelm::NSInterface::ClassObjectIntf;

/// A text as a value.
Kelm::Object textObject(std::string_view aText);
/// A value of a feature from its text in a file; null if the text is no such value.
Kelm::Object valueOf(Feature const& aFeature, std::string_view aText);
/// Sets or adds a value by its text in a file; false if the text is no value of the feature.
bool setValue(Element& aElement, Feature const& aFeature, std::string_view aText,
              Kelm::Deviant const& aDeviant);
/// Sets a reference, or adds to one with many values.
void addElement(Element& aElement, Feature const& aFeature, Element& aValue, Kelm::Deviant const& aDeviant);
/// Adds to a list of values; false for a kind of value that no list of the metamodel holds.
bool appendValue(Kelm::Generic::SequenceIntf& aList, Feature const& aFeature, Kelm::Object const& aValue,
                 Kelm::Deviant const& aDeviant);
/// The text of a value, as files have it: "true", "*", "public".
std::string textOf(Feature const& aFeature, Kelm::Object const& aValue);

/// The value of a feature of one value.
Kelm::Object read(Element const& aElement, Feature const& aFeature, Kelm::Deviant const& aDeviant);
/// The elements of a feature, of a single one as well.
std::vector<Element*> elementsOf(Element const& aElement, Feature const& aFeature,
                                 Kelm::Deviant const& aDeviant);
/// One of many, counted from 0; null if there are fewer.
Element* elementAt(Element const& aElement, Feature const& aFeature, std::size_t aPosition,
                   Kelm::Deviant const& aDeviant);
/// Values of a feature as texts.
std::vector<std::string> textsOf(Element const& aElement, Feature const& aFeature,
                                 Kelm::Deviant const& aDeviant);
Element* containerOf(Element const& aElement, Kelm::Deviant const& aDeviant);

/// The names of an element and of all that own it, from the outermost on; metaclasses where there are none.
std::string pathOf(Element const& aElement, Kelm::Deviant const& aDeviant);
/// The id that an element has in its file; empty for none.
std::string externalIdOf(Element const& aElement, Kelm::Deviant const& aDeviant);

/// Calls `aVisit` with each of the words between blanks.
template <class Visit>
void forEachWord(std::string_view aText, Visit aVisit) {
  constexpr std::string_view kBlanks = " \t\r\n";
  for (std::size_t at = aText.find_first_not_of(kBlanks); at != std::string_view::npos;) {
    std::size_t const end = std::min(aText.find_first_of(kBlanks, at), aText.size());
    aVisit(aText.substr(at, end - at));
    at = aText.find_first_not_of(kBlanks, end);
  }
}

}  // namespace umlmm::files
