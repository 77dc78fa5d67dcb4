#pragma once

#include <cstddef>

#include "vesk/fwd.h"
#include "vesk/interned.h"

namespace vesk {

/// A class object: what a class info fills when its class is first needed. Nothing can be added to it later:
/// all `add...` throw a VeskError then. Data types that members name must be known when the filling ends;
/// classes are looked up when they are first used.
class UMLMM_API VeskClass {
 public:
  virtual ~VeskClass();

  /// The name under which a constructor of the class is added.
  virtual char const* getConstructorName() const = 0;
  /// Adds superclasses by their full names, in order, and fills them. Access 0 is no restriction, inherit 1
  /// is all members. Throws for a class that is not defined, and for one that is itself being filled.
  virtual void addSuperclass(VeskInterned const* names, std::size_t count, int access, int inherit) = 0;
  /// Adds a property. The class owns it from the call on: one that it fails to take is deleted.
  virtual void addProperty(VeskPropInfo* property) = 0;
  /// Adds a name for an event; classes of this host raise none.
  virtual void addEvent(char const* name);
  /// Adds a method or constructor, which the class owns as it does a property. Methods of one name stand
  /// beside each other; what a call means is told by its arguments, and between equals by the order of
  /// adding.
  virtual void addMethod(VeskMethodInfo* method) = 0;

  /// Announces a class that belongs to no package; its short name is its full name. Throws for a name that is
  /// taken.
  static void addGlobalClass(VeskClassInfo* info);
};

}  // namespace vesk
