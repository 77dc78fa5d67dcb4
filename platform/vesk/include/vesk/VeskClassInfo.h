#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "lum/host_word.h"
#include "vesk/ClassFamily.h"
#include "vesk/VeskInterface.h"
#include "vesk/VeskValue.h"
#include "vesk/fwd.h"

namespace vesk {

using VeskDataTypePtr = host::Type const*;

/// Lets the host walk a sequence in blocks, search it and put it into order: what a script's `for`, `in` and
/// `sort` are made of. Indices count from 0, unlike those of the sequences' own methods. `sequence` is an
/// instance of the class that gave the hook, or of one below it; what the library behind it refuses comes
/// through as it is.
class UMLMM_API SequenceHook {
 public:
  /// Most elements of a block.
  static constexpr std::size_t kBlock = 32;
  static constexpr std::size_t kNotFound = SIZE_MAX;

  virtual ~SequenceHook();
  /// Number of elements now.
  virtual std::size_t size(VeskInterface* sequence) const = 0;
  /// Boxes up to `count` elements, at most a block, from index `first`, counted from 0, as a method would
  /// return them, and answers how many, 0 behind the end; the values belong to the caller.
  ///
  /// `stamp` comes back as the state of the sequence and is given again for the next block: if elements came,
  /// went or moved meanwhile, nothing is boxed and it comes back 0. A stamp of 0 asks for no such check.
  virtual std::size_t readBlock(VeskInterface* sequence, std::size_t first, std::size_t count,
                                VeskValue* values, std::uint64_t& stamp) const = 0;
  /// Index of the first element in [first, last) that is the same as `value`, or kNotFound. `value` is of the
  /// element type and stays the caller's.
  virtual std::size_t find(VeskInterface* sequence, VeskValue value, std::size_t first,
                           std::size_t last) const = 0;
  /// Puts `count` values of the element type, which stay the caller's, in the place of the `removed` elements
  /// from index `first` on, all of them or, when it throws, none. Answers false, with nothing changed, for a
  /// sequence that is changed by its methods only.
  virtual bool splice(VeskInterface* sequence, std::size_t first, std::size_t removed,
                      VeskValue const* values, std::size_t count) const;
  /// Appends a value of the element type, which stays the caller's, as the published method does. Answers
  /// false, with nothing changed, for a sequence that is changed by its methods only.
  virtual bool append(VeskInterface* sequence, VeskValue value) const;
  /// Data type or full class name of the elements.
  virtual char const* elementType() const = 0;

  // What follows is for sequences that can be changed.

  /// Gives elements other places: the one at `from[i]` comes to `to[i]`. Both name the same indices, counted
  /// from 0, each once.
  virtual void rearrange(VeskInterface* sequence, std::span<int const> from,
                         std::span<int const> to) const = 0;
  /// Replaces all elements by those of another sequence of the same class.
  virtual void assign(VeskInterface* sequence, VeskInterface* values) const = 0;
  /// Whether the sequence refuses an element that it holds.
  virtual bool isUnique(VeskInterface* sequence) const = 0;
  /// Whether the sequence shows a property of another object, not values of its own.
  virtual bool isLive(VeskInterface* sequence) const = 0;
  /// That object, as a method would return it; no value for a sequence with values of its own.
  virtual VeskValue shownObject(VeskInterface* sequence) const;
};

/// What an instance stands for, whatever the view it gives of it: instances with equal words are the same
/// thing to a script, and hash alike by the first word.
struct Identity {
  void const* fObject = nullptr;
  std::uintptr_t fVariant = 0;

  friend bool operator==(Identity const&, Identity const&) noexcept = default;
};

/// What the host asks a library of the objects that instances stand for, by the ids that are bound to them.
class UMLMM_API ObjectHook {
 public:
  virtual ~ObjectHook();
  /// What the instance bound to `id` stands for, for `==` and `hash` of scripts; by default the id alone.
  virtual Identity identify(void const* id) const { return {id, 0}; }
  /// Where the host may keep something as long as the model is open that `id` stands for, or that what it
  /// stands for belongs to: one place for a model. Null for what belongs to none, or to none any more.
  virtual lum::HostPlace* hostPlace(void const* id) const;
  /// Copies what `id` stands for, with all that it owns: beside it, or into what `place` stands for if that
  /// is not null. Answers the copy, or `place`, as a method would return it; all or nothing. A null value for
  /// what can't be copied so.
  virtual VeskValue copy(void const* id, void const* place) const;
  /// The library keeps what `id` stands for no longer by itself: it lives as long as somebody has it or
  /// something that belongs to it. Nothing for what it never keeps.
  virtual void letGo(void const* id) const;
  /// Opens a short road to a property that objects of the class have; false for one that its descriptor
  /// serves alone.
  virtual bool openDoor(VeskPropInfo const& property, PropertyDoor& door) const;
};

/// What a library tells the host of one class. The host owns it. Of the many questions it asks those that
/// have a remark, names and texts, and isHidden; the rest belong to hosts that keep files and windows.
class UMLMM_API VeskClassInfo {
 public:
  VeskClassInfo() = default;
  VeskClassInfo(VeskClassInfo const&) = delete;
  VeskClassInfo& operator=(VeskClassInfo const&) = delete;
  virtual ~VeskClassInfo();

  static void* operator new(std::size_t size);
  static void operator delete(void* memory) noexcept;

  /// The short name; the package supplies the prefix.
  virtual char const* getName() const = 0;
  virtual char const* getDescription() const = 0;
  virtual char const* getDetailedDescription() const = 0;
  virtual int getAccess() const { return 0; }
  /// Fills the class; called when the class is first needed. What it throws is the answer to every later use
  /// of the class too; after std::bad_alloc alone it is called again, with the class as empty as before.
  virtual void initializeClass(VeskClass* cls, VeskClient const* client) = 0;
  virtual int handleQueryFirst() const = 0;
  /// The last host reference to the instance bound to `id` has gone; the info drops the binding and what the
  /// binding kept alive. Called once for an instance. A binding that is left is dropped by the host.
  virtual void releaseInstance(VeskClient const* client, void* id) = 0;
  virtual void updateInstance(void*) {}
  virtual int factoryQuery() const = 0;
  virtual bool isHidden() const { return false; }
  virtual bool isCompatibleInexactProperties() const { return false; }
  virtual bool isFullNameDisplayed() const { return false; }
  virtual bool isPropertyNameReservedByThisClass(char const* name) const;
  virtual bool canOtherClassContainThisClass(VeskInterned className) const;
  virtual bool canThisClassContainOtherClass(VeskInterned className) const;
  virtual int handleQuerySecond() const = 0;
  virtual bool isHandleCompatible() const { return false; }
  virtual bool isEnumeration() const { return false; }
  virtual int getConnectAccess() const { return 0; }
  virtual int getConnectivity() const { return 0; }
  virtual bool areChildrenSaved() const { return true; }
  virtual bool isAbstract() const { return false; }
  virtual bool useClassDefaultsOnLoad() const { return false; }
  virtual bool isSealed() const { return false; }
  virtual bool isPropertyTruncationAllowed() const { return false; }
  virtual bool isConstructedOnLoad() const { return true; }
  virtual bool arePropertiesCaseInsensitive() const { return false; }
  virtual bool isInstanceLeaf() const { return getConnectivity() == 0 || getConnectivity() == 2; }
  virtual bool isDestructible() const { return true; }
  virtual bool isLocked() const { return true; }
  virtual bool attemptToLoadProperty(char const* name);
  virtual bool attemptToLoadMethod(char const* name);
  virtual bool attemptToLoadEvent(char const* name);
  virtual void instanceLoaded(VeskInterfacePtr instance, VeskLoadInfo const* info);
  virtual bool customSave(VeskInterfacePtr instance, VeskValue& value, VeskDataTypePtr& type);
  virtual bool customLoad(VeskInterfacePtr& instance, VeskValue value, VeskDataTypePtr type);
  virtual void* getModule() const { return nullptr; }
  virtual bool areClassFunctionsAllowed() const { return false; }
  virtual bool areExtensionMethodsAllowed() const { return false; }
  virtual bool usesRootRecords() const { return false; }
  virtual bool doEventsHaveSeparateNamespace() const { return false; }
  virtual bool doesInexactPropertyNameIssueWarning() const { return false; }
  virtual bool usesCustomChildrenList() const { return false; }
  virtual int getArrayNature() const { return 0; }
  virtual std::vector<VeskInterfacePtr> getChildrenOfInstance(VeskInterface* instance);
  virtual void classIsAbstract() {}
  virtual bool allowInstanceUpdates() const { return false; }
  virtual bool isIDConsistent() const { return false; }
  /// For classes of sequences: how to walk an instance. Belongs to the info. Null for all others.
  virtual SequenceHook const* getSequenceHook() const { return nullptr; }
  /// What the host asks of the objects behind instances. Belongs to the info. Null for objects that are
  /// nothing but their ids.
  virtual ObjectHook const* getObjectHook() const { return nullptr; }
  /// The classes about the same kind of thing; null for a class without others. Lives as long as the class.
  virtual ClassFamily const* family() const { return nullptr; }
  /// Calls `visit` with the name of each method and property that the class declares itself, constructors
  /// left out, and answers true: for a host that wants to know what names are taken before any class is
  /// filled. The names live as long as the class. False, with nothing visited, for a class that has to be
  /// filled first.
  virtual bool visitMemberNames(std::function<void(char const*)> const& visit) const;
};

}  // namespace vesk
