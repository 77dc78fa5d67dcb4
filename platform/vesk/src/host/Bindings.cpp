#include "vesk/host/Bindings.h"

#include <unordered_map>

#include "lum/host_word.h"
#include "vesk/host/Instance.h"

namespace vesk::host::bindings {

namespace {

// Never destroyed: instances may be released until the very end of the process.
std::unordered_map<void const*, Instance*>& untagged() {
  static auto& sTable = *new std::unordered_map<void const*, Instance*>;
  return sTable;
}

std::size_t sSize = 0;

}  // namespace

Instance* lookUpUntagged(void const* id) noexcept {
  auto const found = untagged().find(id);
  return found == untagged().end() ? nullptr : found->second;
}

void store(void* id, Instance& instance) {
  bool const isNew = lookUp(id) == nullptr;
  if (lum::isTaggedId(id))
    lum::hostWordOf(id)->fHost = &instance;
  else
    untagged()[id] = &instance;
  instance.bind(id);
  sSize += isNew ? 1 : 0;
}

void erase(void const* id) noexcept {
  if (!lookUp(id)) return;
  if (lum::isTaggedId(id))
    lum::hostWordOf(id)->fHost = nullptr;
  else
    untagged().erase(id);
  --sSize;
}

std::size_t size() noexcept { return sSize; }

}  // namespace vesk::host::bindings
