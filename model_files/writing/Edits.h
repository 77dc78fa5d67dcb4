#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace umlmm::files {

/// Changes of a text, each in its place, and the text that they give. What is new in a place may itself hold
/// pieces of the text with the changes in them: an element that has moved.
class Edits {
 public:
  /// Writes what comes into a place.
  using Write = std::function<void(std::string& aOut)>;
  /// Told of each stretch of the text that is copied, before it is.
  using Copied = std::function<void(std::size_t aFrom, std::size_t aTo)>;

  explicit Edits(std::string_view aText) noexcept : fText(aText) {}

  void insert(std::size_t aAt, std::string aText) { replace(aAt, aAt, std::move(aText)); }
  void erase(std::size_t aFrom, std::size_t aTo) { replace(aFrom, aTo, std::string()); }
  void replace(std::size_t aFrom, std::size_t aTo, std::string aText) {
    fEdits.push_back({aFrom, aTo, fEdits.size(), std::move(aText), {}});
  }
  void replace(std::size_t aFrom, std::size_t aTo, Write aWrite) {
    fEdits.push_back({aFrom, aTo, fEdits.size(), {}, std::move(aWrite)});
  }

  /// What is changed first in a place comes first. To be called when all changes are there.
  void sort();
  /// Appends a part of the text with the changes in it; those that would take the whole part away are left
  /// out.
  void write(std::size_t aFrom, std::size_t aTo, std::string& aOut, Copied const& aCopied) const {
    write(aFrom, aTo, false, aOut, aCopied);
  }
  /// Appends the text with all changes, also those that take it away or come behind it.
  void writeAll(std::string& aOut, Copied const& aCopied) const {
    write(0, fText.size(), true, aOut, aCopied);
  }

 private:
  struct Edit {
    std::size_t fFrom;
    std::size_t fTo;
    std::size_t fNumber;
    std::string fText;
    Write fWrite;
  };

  void write(std::size_t aFrom, std::size_t aTo, bool aIsAll, std::string& aOut, Copied const& aCopied) const;

  std::string_view fText;
  std::vector<Edit> fEdits;
};

}  // namespace umlmm::files
