#include "lum/lum.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

LumPrintSink sSink = nullptr;
void* sSinkContext = nullptr;

int printToSink(char const* format, std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  int const length = std::vsnprintf(nullptr, 0, format, arguments);
  if (length >= 0) {
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, again);
    sSink(text.c_str(), text.size(), sSinkContext);
  }
  va_end(again);
  return length;
}

}  // namespace

void lumFree(void* memory) noexcept { std::free(memory); }

int lumPrintf(char const* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  int const length = sSink ? printToSink(format, arguments) : std::vprintf(format, arguments);
  va_end(arguments);
  return length;
}

int lumVSNprintf(char* buffer, std::size_t size, char const* format, std::va_list arguments) {
  return std::vsnprintf(buffer, size, format, arguments);
}

void lumSetPrintSink(LumPrintSink sink, void* context) noexcept {
  sSink = sink;
  sSinkContext = context;
}
