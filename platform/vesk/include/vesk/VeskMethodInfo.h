#pragma once

#include <cstddef>

#include "vesk/VeskMethodSignature.h"
#include "vesk/VeskValue.h"
#include "vesk/access.h"
#include "vesk/fwd.h"

namespace vesk {

/// A method of a class, or a function of a package. The host owns it and calls it in its one thread; a call
/// may come while another of the same method runs. Of the many questions it asks those that have a remark,
/// the name and the descriptions.
class UMLMM_API VeskMethodInfo {
 public:
  VeskMethodInfo() = default;
  VeskMethodInfo(VeskMethodInfo const&) = delete;
  VeskMethodInfo& operator=(VeskMethodInfo const&) = delete;
  virtual ~VeskMethodInfo();

  static void* operator new(std::size_t size);
  static void operator delete(void* memory) noexcept;

  virtual char const* getName() const = 0;
  virtual char const* getDescription() const = 0;
  virtual bool isLookupScope() const { return true; }
  virtual char const* getDetailedDescription() const { return nullptr; }
  virtual int getMemberAccess() const = 0;
  virtual ExtendedAccess getExtendedAccess() const;
  /// Asked for when the method is added; never null, and at most 15 argument types.
  virtual VeskMethodSignaturePtr const& getMethodSignature() const = 0;
  /// Runs the method. `results` has at least one zeroed slot (for a constructor: the object that it is to
  /// bind); `resultCount` is the number of results that the caller wants and becomes the number given.
  /// Arrays in `arguments` stay the caller's; an array in `results` becomes the caller's. The receiver of a
  /// method that has one is `arguments[0]`. When it throws, `results` is not looked at.
  virtual void invoke(VeskClient const* client, int& resultCount, VeskValue* results, int argumentCount,
                      VeskValue const* arguments) const = 0;
  virtual bool isFirstArgDispatch() const { return true; }
  /// Whether the method has no receiver.
  virtual bool isStatic() const = 0;
  virtual bool isAbstract() const = 0;
  virtual bool isSealed() const = 0;
  virtual bool isVisible() const = 0;
  virtual bool isDestructible() const = 0;
  virtual bool isLocked() const = 0;
  virtual bool isExplicit() const { return false; }
  /// Whether methods of this name in classes above are out of sight, whatever their arguments.
  virtual bool doesMethodOverrideAllSignatures() const = 0;
};

}  // namespace vesk
