#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "vesk/VeskInterface.h"
#include "vesk/VeskValue.h"
#include "vesk/access.h"
#include "vesk/fwd.h"

namespace vesk {

namespace factory {

/// The word by which a maker describes a property, of PropertyFlag bits; 0 is an ordinary visible property.
struct PropertyAttributes {
  constexpr PropertyAttributes(std::uint32_t word = 0) noexcept : fWord(word) {}
  std::uint32_t fWord;
};

}  // namespace factory

/// Bits of the property word, one for each flag accessor of VeskPropInfo that reads it. They describe; this
/// host enforces none of them.
enum PropertyFlag : std::uint32_t {
  PropertyHidden = 1u << 0,
  PropertyConstant = 1u << 1,
  PropertyTransient = 1u << 2,
  PropertyDependent = 1u << 3,
  PropertyObservableGet = 1u << 4,
  PropertyObservableSet = 1u << 5,
  PropertyAbortSet = 1u << 6,
  PropertyStatic = 1u << 7,
  PropertyAbstract = 1u << 8,
  PropertySealed = 1u << 9,
  PropertyNotCopied = 1u << 10,
  PropertyNonlocal = 1u << 11,
  PropertyDeprecated = 1u << 12,
  PropertyOrderMatters = 1u << 13,
  PropertyOwned = 1u << 14,
  PropertyUnlocked = 1u << 15,
};

/// A property of a class. The host owns it, asks it in its one thread, and asks it for an instance of the
/// class that it was added to or of one below. Of the many questions it asks those that have a remark, the
/// name and the descriptions.
class UMLMM_API VeskPropInfo {
 public:
  VeskPropInfo();
  VeskPropInfo(char const* name, char const* description, factory::PropertyAttributes attributes);
  VeskPropInfo(VeskPropInfo const&) = delete;
  VeskPropInfo& operator=(VeskPropInfo const&) = delete;
  virtual ~VeskPropInfo();

  static void* operator new(std::size_t size);
  static void operator delete(void* memory) noexcept;

  virtual char const* getName() const { return fName.c_str(); }
  virtual char const* getDescription() const { return fDescription.c_str(); }
  virtual char const* getDetailedDescription() const { return nullptr; }
  virtual char const* getDefaultText() const { return nullptr; }
  /// Data type or full class name of the value. Asked for when the property is added, and the type looked up
  /// when it is first needed.
  virtual char const* getDataType() const = 0;
  virtual int getMemberGetAccess() const { return 0; }
  virtual ExtendedAccess getExtendedGetAccess() const;
  virtual int getMemberSetAccess() const { return 0; }
  virtual ExtendedAccess getExtendedSetAccess() const;
  virtual bool isVisible() const { return !has(PropertyHidden); }
  virtual bool hasInternalDefault() const { return false; }
  virtual bool isConstant() const { return has(PropertyConstant); }
  virtual bool isTransient() const { return has(PropertyTransient); }
  virtual bool isDependent() const { return has(PropertyDependent); }
  virtual bool isGetObservable() const { return has(PropertyObservableGet); }
  virtual bool isSetObservable() const { return has(PropertyObservableSet); }
  virtual bool isAbortSet() const { return has(PropertyAbortSet); }
  virtual bool isWarnOnCopyError() const { return false; }
  virtual bool isStatic() const { return has(PropertyStatic); }
  virtual bool isAbstract() const { return has(PropertyAbstract); }
  virtual bool isSealed() const { return has(PropertySealed); }
  virtual bool isCopied() const { return !has(PropertyNotCopied); }
  virtual bool isNonlocal() const { return has(PropertyNonlocal); }
  virtual bool isNeverAmbiguous() const { return false; }
  virtual double getPartialMatchPriority() const { return 1.0; }
  virtual bool isDeprecated() const { return has(PropertyDeprecated); }
  virtual bool isOrderSignificant() const { return has(PropertyOrderMatters); }
  virtual bool isOwned() const { return has(PropertyOwned); }
  virtual bool isWeakReference() const { return false; }
  /// The value of the property, to be given back to releaseValue, once, when it is copied. What it throws
  /// comes through, and nothing is to be given back then.
  virtual VeskValue getValue(VeskInterface* instance) = 0;
  /// Sets the property; `value` is of getDataType and stays the caller's. Nothing has changed when it throws.
  /// Refuses what must not be set: the host looks at no flag before.
  virtual void setValue(VeskInterface* instance, VeskValue value) = 0;
  /// Takes back what getValue gave for the same instance. Must not throw.
  virtual void releaseValue(VeskInterface* instance, VeskValue value) = 0;
  virtual bool isLocked() const { return !has(PropertyUnlocked); }
  virtual bool isDestructible() const { return true; }
  /// The instances and the arrays that a property keeps for an instance; none unless it says otherwise.
  virtual std::vector<VeskInterfacePtr> getInterfaces(VeskClient const* client, VeskInterface* instance);
  virtual std::vector<tarnArray*> getSarnArrays(VeskClient const* client, VeskInterface* instance);

 private:
  [[nodiscard]] bool has(PropertyFlag flag) const noexcept { return (fWord & flag) != 0; }

  std::string fName;
  std::string fDescription;
  std::uint32_t fWord = 0;
};

}  // namespace vesk
