#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "kelm/ModelObject.h"

namespace Kelm {

/// The process-wide table of models by uri. It holds one count on each bound model, so a bound model lives
/// until it is closed, unbound or let go of. It serves all threads; a model that was found belongs to the
/// thread that uses it all the same.
class UMLMM_API ModelCache {
 public:
  /// Base name of new models.
  static std::u16string const UNTITLED;

  static ModelCache& instance();
  /// Keeps other threads out until it goes, for as long as an available uri must stay available.
  [[nodiscard]] std::unique_lock<std::recursive_mutex> guard() const { return std::unique_lock(fGuard); }
  /// `aBase` if no bound model has it, else `aBase` followed by the first free number from 1.
  std::u16string getNextAvailableModelUri(std::u16string const& aBase) const;
  /// Raises when another model is bound to the uri, and for a null model. A model has one uri here: a new one
  /// replaces the old. The model's own uri is not touched.
  void bindModel(std::u16string const& aUri, Model const& aModel);
  /// Gives its count on the model back, which may be the last. As long as others keep the model, it stays
  /// bound, also to another uri; nothing if it is not bound.
  void letGo(ModelObject const& aModel) noexcept;
  /// Forgets the model, whatever its uri; nothing if it is not bound. The count that goes may be its last.
  void unbindModel(ModelObject const& aModel) noexcept;
  /// A null model if the uri is not bound.
  Model findModel(std::u16string const& aUri) const;
  bool isBound(ModelObject const& aModel) const noexcept;
  std::size_t size() const noexcept;

 private:
  struct Entry {
    NSInterface::ModelIntf const* fModel = nullptr;
    Deviant fDeviant;
    /// Null when it was let go of.
    Model fHold;
  };

  ModelCache() = default;
  void forgetNumber(std::u16string_view aUri) const noexcept;

  mutable std::recursive_mutex fGuard;
  std::map<std::u16string, Entry> fModels;
  std::unordered_map<NSInterface::ModelIntf const*, std::u16string> fUris;
  // By base name, the number up to which all uris are bound: opening many untitled models stays linear.
  mutable std::map<std::u16string, unsigned, std::less<>> fBoundUpTo;
};

}  // namespace Kelm
