#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace umlmm::files {

/// Writes a file whole: a new one beside it takes its place when all is on the disk. Links of the file system
/// stay, as do its permissions and, if the process may, its owner; another hard link to it keeps the old
/// bytes. Raises Error when that fails, and then all is as it was. What is no file of a disk, such as a pipe,
/// is written straight through.
void writeFile(std::string const& aPath, std::string_view aBytes);

/// What changes when somebody writes a file.
struct FileStamp {
  std::uint64_t fDevice = 0;
  std::uint64_t fInode = 0;
  std::uint64_t fSize = 0;
  /// Nanoseconds.
  std::int64_t fTime = 0;

  bool operator==(FileStamp const&) const = default;
};

/// Of a file that is not there, the empty stamp.
FileStamp stampOf(std::string const& aPath);
FileStamp stampOf(struct stat const& aStatus) noexcept;

}  // namespace umlmm::files
