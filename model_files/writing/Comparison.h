#pragma once

#include <span>
#include <unordered_map>
#include <vector>

#include "model_files/dialect/values.h"
#include "model_files/store/ModelFiles.h"

namespace umlmm::files {

/// Whether files have the feature: what follows from others, and the owner's end of a containment, they have
/// not.
bool isWritten(Feature const& aFeature) noexcept;

/// A model beside what its files hold, read into a second one.
class Comparison {
 public:
  Comparison(Kelm::Model const& aModel, Kelm::Model const& aRead);

  void pair(Element& aModel, Element& aRead) {
    fToModel[&aRead] = &aModel;
    fToRead[&aModel] = &aRead;
  }
  Element* toModel(Element const* aRead) const { return find(fToModel, aRead); }
  Element* toRead(Element const* aModel) const { return find(fToRead, aModel); }

  bool isThere(Element const& aModel) const { return aModel.deviant_isValid(fDeviant); }
  Kelm::Deviant const& deviant() const noexcept { return fDeviant; }
  Kelm::Deviant const& readDeviant() const noexcept { return fReadDeviant; }
  Kelm::Model const& readModel() const noexcept { return fRead; }

  /// Whether a feature has the same values on both of a pair. Parts of both that nobody has paired become a
  /// pair if they stand at the same place.
  bool isSame(Element& aModel, Element& aRead, Feature const& aFeature);
  /// The same, in whatever order they come.
  bool isSameSet(Element& aModel, Element& aRead, Feature const& aFeature);

 private:
  using Pairs = std::unordered_map<Element const*, Element*>;
  static Element* find(Pairs const& aPairs, Element const* aKey) {
    auto const found = aPairs.find(aKey);
    return found == aPairs.end() ? nullptr : found->second;
  }

  Kelm::Model fModel;
  Kelm::Model fRead;
  Kelm::Deviant fDeviant;
  Kelm::Deviant fReadDeviant;
  Pairs fToModel;
  Pairs fToRead;
};

}  // namespace umlmm::files
