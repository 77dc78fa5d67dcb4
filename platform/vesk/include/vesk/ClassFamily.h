#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "vesk/interned.h"

namespace vesk {

/// Whether a class lets its instances change what they stand for.
enum class Access : std::uint8_t { Changeable, ReadOnly };

/// The classes about one kind of thing: those of references to it, of sequences of such references and of
/// iterators over these, each changeable and read-only. A library makes the family when it announces the
/// classes; whoever has one of them finds the others here and reads nothing in names. Not every family
/// publishes a class under each of its names: values have no read-only references, for one.
class ClassFamily {
 public:
  /// Full names: the two of references; then those of sequences and those of iterators, four each, the two of
  /// changeable elements first. Of every two the changeable class goes before the read-only one.
  using Names = std::array<VeskInterned, 10>;

  /// `package` and `name` ("umlmm" and "Class") must live as long as the family.
  constexpr ClassFamily(std::string_view package, std::string_view name, Names const& names) noexcept
      : fPackage(package), fName(name), fNames(names) {}

  [[nodiscard]] std::string_view package() const noexcept { return fPackage; }
  /// What the family is about, as the package calls it.
  [[nodiscard]] std::string_view name() const noexcept { return fName; }

  [[nodiscard]] VeskInterned reference(Access access) const noexcept { return fNames[index(access)]; }
  [[nodiscard]] VeskInterned sequence(Access access, Access elements) const noexcept {
    return fNames[2 + 2 * index(elements) + index(access)];
  }
  /// `access` is that of the sequence that is walked.
  [[nodiscard]] VeskInterned iterator(Access access, Access elements) const noexcept {
    return fNames[6 + 2 * index(elements) + index(access)];
  }

  /// The class that shows the same as `cls` with another access: itself if it has that one, null for a class
  /// that is none of the ten.
  [[nodiscard]] VeskInterned partner(VeskInterned cls, Access access) const noexcept {
    auto const found = std::ranges::find(fNames, cls);
    if (found == fNames.end()) return {};
    auto const place = static_cast<std::size_t>(found - fNames.begin());
    return fNames[place / 2 * 2 + index(access)];
  }

  /// A name of the family without the package, as class infos have it.
  [[nodiscard]] char const* shortName(VeskInterned cls) const noexcept {
    return cls.c_str() + (fPackage.empty() ? 0 : fPackage.size() + 1);
  }

 private:
  static constexpr std::size_t index(Access access) noexcept { return static_cast<std::size_t>(access); }

  std::string_view fPackage;
  std::string_view fName;
  Names fNames;
};

}  // namespace vesk
