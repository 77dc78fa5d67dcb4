#include "vesk/interned.h"

#include <deque>
#include <mutex>
#include <unordered_map>

namespace vesk::internal {

namespace {

// Never destroyed: tokens are in use until the very end of the process.
struct Pool {
  std::mutex fMutex;
  std::deque<InternedRecord> fRecords;  // addresses stay
  std::unordered_map<std::string_view, InternedRecord*> fByText;
};

Pool& pool() {
  static Pool& sPool = *new Pool;
  return sPool;
}

template <class Text>
VeskInterned find(Text&& text) {
  if (text.empty()) return {};
  Pool& all = pool();
  std::lock_guard const lock(all.fMutex);
  auto const found = all.fByText.find(text);
  if (found != all.fByText.end()) return VeskInterned(found->second);
  InternedRecord& record = all.fRecords.emplace_back();
  record.fText = std::forward<Text>(text);
  all.fByText.emplace(record.fText, &record);
  return VeskInterned(&record);
}

}  // namespace

VeskInterned makeInterned(std::string&& text) { return find(std::move(text)); }

VeskInterned intern(char const* text) { return text ? find(std::string_view(text)) : VeskInterned(); }

VeskInterned intern(std::string_view text) { return find(std::string_view(text)); }

VeskInterned findInterned(std::string_view text) noexcept {
  Pool& all = pool();
  std::lock_guard const lock(all.fMutex);
  auto const found = all.fByText.find(text);
  return found == all.fByText.end() ? VeskInterned() : VeskInterned(found->second);
}

}  // namespace vesk::internal
