#pragma once

#include <memory>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "lum/visibility.h"

namespace Brond {

/// Thrown when a value holder does not hold a value of the wanted type.
class UMLMM_API bad_any_cast : public std::bad_cast {
 public:
  char const* what() const noexcept override;
};

/// Holds one value of any copyable and comparable type, or nothing. Copying copies the value, equal are
/// holders of equal values of the same type.
class UMLMM_API any {
 public:
  class UMLMM_API placeholder {
   public:
    virtual ~placeholder();
    /// How many pointers lead to the value; 0 for a value held directly.
    virtual int pointerLevel() const = 0;
    virtual std::type_info const& type() const = 0;
    virtual placeholder* clone() const = 0;
    virtual bool equals(placeholder const* other) const = 0;
  };

  template <class T>
  class UMLMM_API holder : public placeholder {
   public:
    explicit holder(T value) : fValue(std::move(value)) {}
    int pointerLevel() const override { return 0; }
    std::type_info const& type() const override { return typeid(T); }
    placeholder* clone() const override { return new holder(fValue); }
    bool equals(placeholder const* other) const override {
      auto const* same = dynamic_cast<holder const*>(other);
      return same != nullptr && same->fValue == fValue;
    }
    T const& value() const noexcept { return fValue; }

   private:
    T fValue;
  };

  any() noexcept = default;
  template <class T>
  requires(!std::is_same_v<std::remove_cvref_t<T>, any>) explicit any(T&& value)
      : fContent(new holder<std::remove_cvref_t<T>>(std::forward<T>(value))) {}
  any(any const& other) : fContent(other.fContent ? other.fContent->clone() : nullptr) {}
  any(any&&) noexcept = default;
  any& operator=(any other) noexcept {
    fContent = std::move(other.fContent);
    return *this;
  }
  ~any() = default;

  [[nodiscard]] bool empty() const noexcept { return fContent == nullptr; }
  [[nodiscard]] placeholder const* content() const noexcept { return fContent.get(); }

  friend bool operator==(any const& a, any const& b) {
    return a.fContent ? a.fContent->equals(b.fContent.get()) : b.empty();
  }

 private:
  std::unique_ptr<placeholder> fContent;
};

/// The value in `value`, which must be a T held directly; throws bad_any_cast otherwise. It is the holder's:
/// good until that is assigned or ends.
template <class T>
T const& any_cast(any const& value) {
  any::placeholder const* content = value.content();
  if (content == nullptr || content->pointerLevel() != 0 || content->type() != typeid(T))
    throw bad_any_cast();
  return static_cast<any::holder<T> const*>(content)->value();
}

}  // namespace Brond
