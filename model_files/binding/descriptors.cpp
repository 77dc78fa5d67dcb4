#include "descriptors.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "model_files/files.h"

namespace umlmm::files::mi {

namespace {

/// What a call of the system moved; it is made again when a signal has come between.
template <class Call>
std::size_t moved(Call const& aCall, char const* aWhat) {
  for (;;) {
    ssize_t const count = aCall();
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno != EINTR) throw Error(std::string(aWhat) + ": " + std::strerror(errno) + ".");
  }
}

}  // namespace

std::string readAll(int aDescriptor) {
  struct stat status {};
  std::string bytes(fstat(aDescriptor, &status) == 0 ? static_cast<std::size_t>(status.st_size) : 0, '\0');
  std::size_t size = 0;
  while (size < bytes.size()) {
    std::size_t const count =
        moved([&] { return pread(aDescriptor, &bytes[size], bytes.size() - size, static_cast<off_t>(size)); },
              "The bytes of a model file can't be read");
    if (count == 0) break;
    size += count;
  }
  bytes.resize(size);
  return bytes;
}

void writeAll(int aDescriptor, std::string_view aBytes) {
  while (!aBytes.empty())
    aBytes.remove_prefix(moved([&] { return write(aDescriptor, aBytes.data(), aBytes.size()); },
                               "The bytes of a model file can't be handed over"));
}

}  // namespace umlmm::files::mi
