#include "model_files/text/SourceText.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "model_files/text/Encoding.h"
#include "model_files/text/Handle.h"
#include "model_files/text/messages.h"

namespace umlmm::files {

namespace {

constexpr std::string_view kMark = "\xEF\xBB\xBF";
constexpr std::size_t kBlock = 8192;
constexpr std::array<std::string_view, 4> kModelSuffixes{".uml", ".xmi", ".mdxml", ".emx"};

[[noreturn]] void cannotRead(std::string const& aPath, int aReason) {
  std::string const advice = aReason == ENOENT || aReason == ENOTDIR || aReason == ELOOP ? "check the path"
                             : aReason == EACCES || aReason == EPERM
                                 ? "ask for the right to read it"
                                 : "check the disk, or take a copy of the file";
  throw Error(inQuotes(aPath) + " can't be read: " + std::generic_category().message(aReason) + "; " +
              advice);
}

std::string readAll(int aHandle, std::size_t aExpected, std::string const& aPath) {
  std::string bytes;
  std::size_t size = 0;
  for (;;) {
    // One byte more than there should be shows the end without a further room.
    if (size == bytes.size())
      bytes.resize(size == 0 ? aExpected + 1 : size + std::max<std::size_t>(size, 65536));
    ssize_t const count = ::read(aHandle, bytes.data() + size, bytes.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) cannotRead(aPath, errno);
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
  }
  bytes.resize(size);
  return bytes;
}

/// The first by its name of the files in a folder that look like models; empty for none.
std::string modelIn(std::string const& aFolder) {
  std::string first;
  std::error_code failure;
  for (std::filesystem::directory_iterator at(aFolder, failure), end; !failure && at != end;
       at.increment(failure)) {
    std::string const suffix = at->path().extension().string();
    bool const isOne =
        std::find(kModelSuffixes.begin(), kModelSuffixes.end(), suffix) != kModelSuffixes.end();
    if (isOne && (first.empty() || at->path().string() < first)) first = at->path().string();
  }
  return first;
}

}  // namespace

SourceText SourceText::fromFile(std::string const& aPath) {
  // For the system a path ends at a zero, and would name another file.
  if (aPath.empty() || aPath.find('\0') != std::string::npos) cannotRead(aPath, ENOENT);
  Handle const file(::open(aPath.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.isValid()) cannotRead(aPath, errno);
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) cannotRead(aPath, errno);
  if (S_ISDIR(status.st_mode)) {
    std::string const model = modelIn(aPath);
    throw NotUml(inQuotes(aPath) + " is a folder, not a UML 2 model in XMI; " +
                 (model.empty() ? "open the file of a UML model" : "open " + inQuotes(model)));
  }
  auto const expected = S_ISREG(status.st_mode) ? static_cast<std::size_t>(status.st_size) : 0;
  SourceText text = fromBytes(readAll(file.get(), expected, aPath), aPath);
  text.fStamp = stampOf(status);
  return text;
}

SourceText SourceText::fromBytes(std::string aBytes, std::string aName) {
  SourceText text;
  text.fName = std::move(aName);
  text.fBytes = aBytes.size();
  text.fEncoding = encodingOf(aBytes);
  text.fCodec = Encoding::named(text.fEncoding);
  std::string const advice = "; convert the file to UTF-8 and say so in its first line";
  if (text.fCodec == nullptr) {
    throw Error(inQuotes(text.name()) + " says that its encoding is " + inQuotes(shown(text.fEncoding)) +
                ", which is not known here" + advice);
  }
  auto decoded = text.fCodec->decoded(std::move(aBytes));
  if (!decoded) {
    throw Error(inQuotes(text.name()) + " is not quite in the encoding \"" + text.fEncoding +
                "\" that it names, and could not be saved again without loss" + advice);
  }
  text.fText = *std::move(decoded);
  if (std::string_view(text.fText).starts_with(kMark)) text.fMark = kMark;
  return text;
}

std::string SourceText::encoded(std::string_view aText) const {
  if (fMark.empty()) return fCodec->encoded(aText);
  return fCodec->encoded(fMark + std::string(aText));
}

Place SourceText::placeOf(std::size_t aOffset) const {
  std::string_view const text = utf8();
  std::size_t const offset = std::min(aOffset, text.size());
  if (fBlocks.empty()) fBlocks.push_back({1, 0});
  auto const endsLine = [text](std::size_t aAt) {
    bool const isPair = aAt + 1 < text.size() && text[aAt + 1] == '\n';
    return text[aAt] == '\n' || (text[aAt] == '\r' && !isPair);
  };
  auto const scan = [&](Block aBlock, std::size_t aFrom, std::size_t aTo) {
    // The first finding of a kind may stand at the end of a long text: a search goes over several bytes in a
    // step.
    std::string_view const part = text.substr(0, aTo);
    std::size_t lines = 0;
    for (char const end : {'\n', '\r'})
      for (std::size_t at = part.find(end, aFrom); at != part.npos; at = part.find(end, at + 1))
        lines += endsLine(at);
    if (lines == 0) return aBlock;
    std::size_t last = aTo - 1;
    while (!endsLine(last)) --last;
    return Block{aBlock.fLine + lines, last + 1};
  };
  while (fBlocks.size() <= offset / kBlock) {
    fBlocks.push_back(scan(fBlocks.back(), (fBlocks.size() - 1) * kBlock, fBlocks.size() * kBlock));
  }
  std::size_t const block = offset / kBlock;
  Block const found = scan(fBlocks[block], block * kBlock, offset);
  return {fName, found.fLine, offset - found.fLineStart + 1};
}

}  // namespace umlmm::files
