#include "model_files/text/writeFile.h"

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <system_error>
#include <vector>

#include "model_files/files.h"
#include "model_files/text/Handle.h"
#include "model_files/text/messages.h"

namespace umlmm::files {

namespace {

constexpr int kMostLinks = 40;
constexpr int kMostNames = 1000;

[[noreturn]] void cannotWrite(std::string const& aPath, int aReason, std::string const& aAdvice = {}) {
  std::string advice = aAdvice;
  if (advice.empty()) {
    advice = aReason == ENOSPC || aReason == EDQUOT || aReason == EFBIG ? "make room on the disk"
             : aReason == ENOENT || aReason == ENOTDIR                  ? "make its folder first"
             : aReason == EACCES || aReason == EPERM || aReason == EROFS
                 ? "ask for the right to write in its folder, or save elsewhere"
                 : "check the disk, or save elsewhere";
  }
  throw Error(inQuotes(aPath) + " can't be written, and is as it was: " +
              std::generic_category().message(aReason) + "; " + advice);
}

std::string folderOf(std::string const& aPath) { return aPath.substr(0, aPath.rfind('/') + 1); }

/// Where links lead to, be there a file or not.
std::string targetOf(std::string const& aPath) {
  std::string path = aPath;
  for (int i = 0; i < kMostLinks; ++i) {
    std::array<char, 4096> buffer;
    ssize_t const length = ::readlink(path.c_str(), buffer.data(), buffer.size());
    if (length < 0) return path;
    std::string const target(buffer.data(), static_cast<std::size_t>(length));
    path = target.starts_with('/') ? target : folderOf(path).append(target);
  }
  cannotWrite(aPath, ELOOP, "mend the links that lead in a circle");
}

int writeAll(int aHandle, std::string_view aBytes) {
  while (!aBytes.empty()) {
    ssize_t const count = ::write(aHandle, aBytes.data(), aBytes.size());
    if (count < 0 && errno != EINTR) return errno;
    if (count > 0) aBytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return 0;
}

/// A new file in the folder of another, that is gone at the end unless it has taken its place.
class Replacement {
 public:
  Replacement(std::string const& aTarget, mode_t aMode) : fFile(-1) {
    static std::atomic<unsigned> sCount{0};
    for (int i = 0; i < kMostNames && !fFile.isValid(); ++i) {
      timespec now{};
      ::clock_gettime(CLOCK_REALTIME, &now);
      fPath = folderOf(aTarget).append(".saving");
      for (long const part :
           {long{::getpid()}, now.tv_nsec, long{sCount.fetch_add(1, std::memory_order_relaxed)}}) {
        fPath.append("-").append(std::to_string(part));
      }
      fFile = Handle(::open(fPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, aMode));
      if (!fFile.isValid() && errno != EEXIST) break;
    }
    if (!fFile.isValid()) {
      fReason = errno;
      fPath.clear();
    }
  }
  Replacement(Replacement const&) = delete;
  Replacement& operator=(Replacement const&) = delete;
  ~Replacement() {
    if (!fPath.empty()) ::unlink(fPath.c_str());
  }

  /// As those of a file that is there. Whoever may not give a file away becomes its owner, without the rights
  /// that it lends to those who run it.
  int takeRightsOf(std::string const& aTarget, struct stat const& aStatus) {
    bool const isOwned = ::fchown(fFile.get(), aStatus.st_uid, aStatus.st_gid) == 0;
    bool const isGroups = isOwned || ::fchown(fFile.get(), static_cast<uid_t>(-1), aStatus.st_gid) == 0;
    takeAttributesOf(aTarget);
    mode_t mode = aStatus.st_mode & (isOwned ? 07777U : 0777U);
    if (!isGroups) mode &= ~static_cast<mode_t>(S_IRWXG);
    // Where even the owner may not, the file system keeps no rights of files.
    return ::fchmod(fFile.get(), mode) == 0 || errno == EPERM ? 0 : errno;
  }

  int write(std::string_view aBytes) {
    if (int const reason = writeAll(fFile.get(), aBytes); reason != 0) return reason;
    // Some file systems know no fsync.
    if (::fsync(fFile.get()) != 0 && errno != EINVAL) return errno;
    return fFile.close() ? 0 : errno;
  }

  int takePlaceOf(std::string const& aTarget) {
    if (::rename(fPath.c_str(), aTarget.c_str()) != 0) return errno;
    fPath.clear();
    return 0;
  }

  /// Why there is none; else 0.
  int reason() const noexcept { return fReason; }

 private:
  /// Lists of access rights, and what users have noted; what the file system doesn't take is left.
  void takeAttributesOf(std::string const& aTarget) const {
    std::array<char, 16384> names;
    ssize_t const length = ::listxattr(aTarget.c_str(), names.data(), names.size());
    for (ssize_t i = 0; i < length;
         i += static_cast<ssize_t>(std::strlen(&names[static_cast<std::size_t>(i)])) + 1) {
      char const* const name = &names[static_cast<std::size_t>(i)];
      if (std::string_view(name) != "system.posix_acl_access" && std::strncmp(name, "user.", 5) != 0)
        continue;
      std::vector<char> value(65536);
      ssize_t const size = ::getxattr(aTarget.c_str(), name, value.data(), value.size());
      if (size >= 0) ::fsetxattr(fFile.get(), name, value.data(), static_cast<std::size_t>(size), 0);
    }
  }

  Handle fFile;
  std::string fPath;
  int fReason = 0;
};

/// So that the new name outlives a loss of power. The file has its place already, whatever comes of it.
void syncFolderOf(std::string const& aPath) {
  std::string const folder = folderOf(aPath);
  Handle const handle(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (handle.isValid()) ::fsync(handle.get());
}

void writeThrough(std::string const& aPath, std::string_view aBytes) {
  Handle file(::open(aPath.c_str(), O_WRONLY | O_CLOEXEC));
  int const reason = file.isValid() ? writeAll(file.get(), aBytes) : errno;
  if (reason != 0)
    throw Error(inQuotes(aPath) + " can't be written: " + std::generic_category().message(reason));
}

}  // namespace

void writeFile(std::string const& aPath, std::string_view aBytes) {
  if (aPath.empty() || aPath.find('\0') != std::string::npos) {
    cannotWrite(aPath, ENOENT, "give the path of a file");
  }
  std::string const target = targetOf(aPath);
  struct stat status {};
  bool const isThere = ::stat(target.c_str(), &status) == 0;
  if (!isThere && errno != ENOENT) cannotWrite(aPath, errno);
  if (isThere && S_ISDIR(status.st_mode)) cannotWrite(aPath, EISDIR, "give the path of a file in it");
  if (isThere && !S_ISREG(status.st_mode)) return writeThrough(target, aBytes);
  // The folder's rights alone would let a protected file be replaced.
  if (isThere && ::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) {
    cannotWrite(aPath, errno, "take its write protection off, or save elsewhere");
  }
  Replacement replacement(target, isThere ? 0600 : 0666);
  int reason = replacement.reason();
  if (reason == 0 && isThere) reason = replacement.takeRightsOf(target, status);
  if (reason == 0) reason = replacement.write(aBytes);
  if (reason == 0) reason = replacement.takePlaceOf(target);
  if (reason != 0) cannotWrite(aPath, reason);
  syncFolderOf(target);
}

FileStamp stampOf(std::string const& aPath) {
  struct stat status {};
  return ::stat(aPath.c_str(), &status) == 0 ? stampOf(status) : FileStamp();
}

FileStamp stampOf(struct stat const& aStatus) noexcept {
  constexpr std::int64_t kNanoseconds = 1'000'000'000;
  return {aStatus.st_dev, aStatus.st_ino, static_cast<std::uint64_t>(aStatus.st_size),
          aStatus.st_mtim.tv_sec * kNanoseconds + aStatus.st_mtim.tv_nsec};
}

}  // namespace umlmm::files
