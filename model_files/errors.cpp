#include <utility>

#include "model_files/files.h"

namespace umlmm::files {

namespace {

std::string placed(std::string const& aMessage, Place const& aPlace, std::string const& aPath) {
  std::string text = aPlace.fFile;
  if (aPlace.fLine != 0) text += ':' + std::to_string(aPlace.fLine) + ':' + std::to_string(aPlace.fColumn);
  if (!text.empty()) text += ": ";
  text += aMessage;
  return aPath.empty() ? text : text + ", in " + aPath;
}

}  // namespace

Error::~Error() = default;

NotUml::~NotUml() = default;

ReadError::ReadError(std::string const& aMessage, Place aPlace, std::string aPath)
    : Error(placed(aMessage, aPlace, aPath)), fPlace(std::move(aPlace)), fPath(std::move(aPath)) {}

ReadError::~ReadError() = default;

}  // namespace umlmm::files
