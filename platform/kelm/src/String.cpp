#include "kelm/String.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace Kelm {

StringObject::~StringObject() = default;

void* StringObject::operator new(std::size_t aSize, std::size_t aCharacters) {
  return ::operator new(aSize + (aCharacters + 1) * sizeof(char16_t));
}
void StringObject::operator delete(void* aMemory) { ::operator delete(aMemory); }
void StringObject::operator delete(void* aMemory, std::size_t) { ::operator delete(aMemory); }

template <class Units>
StringObject* StringObject::copy(Units aText) {
  if (aText.empty()) {
    empty()->incRef();
    return empty();
  }
  auto* const record = new (aText.size()) StringObject;
  record->fLength = static_cast<std::uint32_t>(aText.size());
  auto* const text = const_cast<char16_t*>(record->data());
  *std::copy(aText.begin(), aText.end(), text) = u'\0';
  return record;
}

StringObject* StringObject::make(std::u16string_view aText) { return copy(aText); }

StringObject* StringObject::make(std::string_view aText) {
  // Without a way out of the loop, so that it takes several characters in a step.
  unsigned all = 0;
  for (char const character : aText) all |= static_cast<unsigned char>(character);
  return all < 0x80 ? copy(aText) : copy(std::u16string_view(toUtf16(aText)));
}

StringObject* StringObject::empty() noexcept {
  static StringObject* const sEmpty = [] {
    auto* const record = new (0) StringObject;
    *const_cast<char16_t*>(record->data()) = u'\0';
    return record;
  }();
  return sEmpty;
}

// What the empty text counts until there is a second thread is nothing to go by.
int StringObject::countShared(int aStep) const noexcept {
  if (fLength == 0) return 1;
  return std::atomic_ref(fCount).fetch_add(aStep, std::memory_order_acq_rel) + aStep;
}

int StringObject::end() const {
  if (fLength == 0) return 1;
  delete this;
  return 0;
}

// No script class shows a text: it becomes a value of the host.
char const* StringObject::getVeskName(bool) const { return ""; }

String::String() noexcept : String(StringObject::empty()) {}

String::String(String const& aOther) noexcept : String(aOther.fText) {}

String::String(String&& aOther) noexcept : String() {
  std::swap(fText, aOther.fText);
  std::swap(fNarrow, aOther.fNarrow);
}

String& String::operator=(String aOther) noexcept {
  std::swap(fText, aOther.fText);
  std::swap(fNarrow, aOther.fNarrow);
  return *this;
}

void String::dropNarrow() noexcept { delete[] std::exchange(fNarrow, nullptr); }

void String::assign(std::u16string_view aText) {
  // Made before the old record goes: the text may lie in it.
  StringObject const* const old = std::exchange(fText, StringObject::make(aText));
  old->decRef();
  delete[] std::exchange(fNarrow, nullptr);
}

std::string String::to_string() const { return toUtf8(text()); }
std::string String::to_string(std::u16string const& aText) { return toUtf8(aText); }

char const* String::narrow() const {
  if (fNarrow == nullptr) {
    std::string const text = to_string();
    fNarrow = new char[text.size() + 1];
    std::memcpy(fNarrow, text.c_str(), text.size() + 1);
  }
  return fNarrow;
}

}  // namespace Kelm
