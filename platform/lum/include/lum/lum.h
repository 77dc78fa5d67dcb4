#pragma once

#include <cstdarg>
#include <cstddef>

#include "lum/visibility.h"

/// Gives back memory that came from `calloc` or `malloc`; null is allowed.
UMLMM_API void lumFree(void* memory) noexcept;

/// Prints formatted text to the process's standard output, or to the sink set by lumSetPrintSink. Answers the
/// number of bytes of the text, or -1 if it cannot be formatted.
UMLMM_API int lumPrintf(char const* format, ...) __attribute__((format(printf, 1, 2)));

/// Formats into `buffer` as C99 `vsnprintf` does: at most `size` characters with the closing zero, cut
/// text is no error. Answers the length of the whole text, or -1 if it cannot be formatted.
UMLMM_API int lumVSNprintf(char* buffer, std::size_t size, char const* format, std::va_list arguments)
    __attribute__((format(printf, 3, 0)));

/// Takes what lumPrintf prints: zero-terminated text and its length.
using LumPrintSink = void (*)(char const* text, std::size_t length, void* context);

/// Sends what lumPrintf prints, in all threads, to `sink`; null restores standard output. Set it while nobody
/// prints: it is not guarded. The text is the sink's for the length of the call.
UMLMM_API void lumSetPrintSink(LumPrintSink sink, void* context) noexcept;
