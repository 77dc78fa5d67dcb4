#include "model_files/text/writeFile.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "model_files/text/SourceText.h"

namespace {

namespace fs = std::filesystem;
using umlmm::files::Error;
using umlmm::files::NotUml;
using umlmm::files::SourceText;
using umlmm::files::stampOf;
using umlmm::files::writeFile;

class WriteFile : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = (fs::temp_directory_path() / "files-XXXXXX").string();
    ASSERT_NE(::mkdtemp(name.data()), nullptr);
    fFolder = name;
    fPath = (fFolder / "a.uml").string();
  }
  void TearDown() override { fs::remove_all(fFolder); }

  static std::string bytesOf(fs::path const& aPath) {
    std::ostringstream bytes;
    bytes << std::ifstream(aPath, std::ios::binary).rdbuf();
    return bytes.str();
  }
  std::size_t files() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(fFolder), fs::directory_iterator()));
  }
  static std::string failure(std::string const& aPath, std::string_view aBytes) {
    try {
      writeFile(aPath, aBytes);
    } catch (Error const& error) {
      return error.what();
    }
    return {};
  }

  fs::path fFolder;
  std::string fPath;
};

TEST_F(WriteFile, MakesAndReplacesFilesAndLeavesNothingElse) {
  mode_t const mask = ::umask(027);
  writeFile(fPath, "one");
  ::umask(mask);
  EXPECT_EQ(fs::status(fPath).permissions(), fs::perms{0640});
  EXPECT_EQ(SourceText::fromFile(fPath).utf8(), "one");
  ASSERT_EQ(::chmod(fPath.c_str(), 0604), 0);
  writeFile(fPath, "two");
  EXPECT_EQ(bytesOf(fPath), "two");
  EXPECT_EQ(fs::status(fPath).permissions(), fs::perms{0604});
  EXPECT_EQ(files(), 1U);
}

TEST_F(WriteFile, LinksStay) {
  fs::create_directory(fFolder / "b");
  fs::create_symlink("b/real.uml", fFolder / "link");
  fs::create_symlink("link", fPath);
  for (char const* text : {"new", "newer"}) {
    writeFile(fPath, text);
    EXPECT_TRUE(fs::is_symlink(fPath));
    EXPECT_EQ(bytesOf(fFolder / "b" / "real.uml"), text);
  }
  fs::create_symlink("circle", fFolder / "circle");
  EXPECT_NE(failure((fFolder / "circle").string(), "x").find("links"), std::string::npos);
}

TEST_F(WriteFile, WhatFailsLeavesAllAsItWas) {
  writeFile(fPath, "old");
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  rlimit const small{100000, before.rlim_max};
  auto* const handler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  std::string const text = failure(fPath, std::string(1 << 20, 'x'));
  EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(text,
            '"' + fPath + "\" can't be written, and is as it was: File too large; make room on the disk");
  EXPECT_EQ(bytesOf(fPath), "old");
  EXPECT_EQ(failure((fFolder / "no" / "a.uml").string(), "x"),
            '"' + (fFolder / "no" / "a.uml").string() +
                "\" can't be written, and is as it was: No such file or directory; make its folder first");
  EXPECT_NE(failure(fFolder.string(), "x").find("Is a directory"), std::string::npos);
  EXPECT_NE(failure("", "x"), "");
  EXPECT_EQ(files(), 1U);
}

/// Root may write anywhere, so it gives its rights away for a while.
TEST_F(WriteFile, ProtectedFilesAndOwnersStay) {
  writeFile(fPath, "one");
  bool const isGiven = ::chown(fPath.c_str(), 65534, 65534) == 0;
  writeFile(fPath, "old");
  struct stat status {};
  ASSERT_EQ(::stat(fPath.c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, isGiven ? 65534 : ::getuid());
  ASSERT_EQ(::chmod(fPath.c_str(), 0444), 0);
  ASSERT_EQ(::chmod(fFolder.c_str(), 0777), 0);
  uid_t const user = ::geteuid();
  ASSERT_EQ(::seteuid(user == 0 ? 65534 : user), 0);
  std::string const isProtected = failure(fPath, "new");
  ASSERT_EQ(::seteuid(user), 0);
  EXPECT_NE(isProtected.find("write protection"), std::string::npos);
  EXPECT_EQ(bytesOf(fPath), "old");
}

TEST_F(WriteFile, PipesAreWrittenThroughAndReadToTheEnd) {
  ASSERT_EQ(::mkfifo(fPath.c_str(), 0600), 0);
  pid_t const child = ::fork();
  if (child == 0) {
    writeFile(fPath, std::string(300000, 'x'));
    ::_exit(0);
  }
  EXPECT_EQ(SourceText::fromFile(fPath).utf8(), std::string(300000, 'x'));
  EXPECT_TRUE(fs::is_fifo(fPath));
  EXPECT_EQ(::waitpid(child, nullptr, 0), child);
}

TEST_F(WriteFile, StampsTellAWrittenFile) {
  auto const missing = stampOf(fPath);
  writeFile(fPath, "one");
  auto const first = stampOf(fPath);
  EXPECT_EQ(first, stampOf(fPath));
  EXPECT_EQ(first, SourceText::fromFile(fPath).stamp());
  EXPECT_NE(first, missing);
  writeFile(fPath, "two");
  EXPECT_NE(first, stampOf(fPath));
}

TEST_F(WriteFile, WhatCannotBeReadIsTold) {
  writeFile((fFolder / "z.uml").string(), "");
  writeFile((fFolder / "b.uml").string(), "");
  try {
    SourceText::fromFile(fFolder.string());
    ADD_FAILURE();
  } catch (NotUml const& failure) {
    EXPECT_TRUE(std::string_view(failure.what()).ends_with("b.uml\"")) << failure.what();
  }
  for (std::string const& path : {fPath, std::string(), std::string("a\0b", 3), fPath + "/b"}) {
    EXPECT_THROW(SourceText::fromFile(path), Error) << path;
  }
}

}  // namespace
