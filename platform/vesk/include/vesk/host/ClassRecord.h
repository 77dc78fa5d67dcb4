#pragma once

#include <exception>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "vesk/VeskClass.h"
#include "vesk/VeskMethodInfo.h"
#include "vesk/VeskPropInfo.h"
#include "vesk/host/Type.h"

namespace vesk::host {

/// A method, constructor or package function, with what a call needs read out once.
struct UMLMM_API MethodRecord {
  static constexpr int kMaxArguments = 15;

  /// Throws for a method without a signature, with too many arguments, or without the argument that is to
  /// be its receiver.
  MethodRecord(VeskMethodInfo* info, ClassRecord* owner);

  VeskMethodInfo* fInfo;
  ClassRecord* fOwner;  ///< null for a package function
  VeskInterned fName;
  VeskMethodSignature const* fSignature;
  std::uint8_t fFirst = 0;  ///< 1 if the first argument type is that of the receiver
  std::uint8_t fCount = 0;  ///< number of arguments without the receiver
  bool fIsConstructor = false;
  bool fIsStatic = false;
  bool fHasReceiver = false;  ///< arguments[0] is the receiver
  bool fOverridesAll = false;

  [[nodiscard]] Type& argumentType(int index) const {
    return typeOf(fSignature->arguments()[fFirst + index]);
  }
  [[nodiscard]] Type& resultType() const { return typeOf(fSignature->result()); }
  /// The signature as a script reads it, such as "cast(Kelm.Object other) -> Kelm.Object".
  [[nodiscard]] std::string text() const;
};

struct PropertyRecord {
  VeskPropInfo* fInfo;
  ClassRecord* fOwner;
  VeskInterned fName;
  VeskInterned fTypeName;

  [[nodiscard]] Type& type() const { return typeOf(fTypeName); }
};

/// What a name means on a class, inherited meanings included. Lives as long as the class.
struct Member {
  VeskInterned fName;
  PropertyRecord const* fProperty = nullptr;  ///< null for methods
  /// Candidates by class, nearest class first, in the order of definition within a class; ends behind a
  /// class that replaces all signatures.
  std::vector<MethodRecord const*> fMethods;
};

/// A class of the host: announced by a class info, filled when first needed.
class UMLMM_API ClassRecord final : public Type, public VeskClass {
 public:
  enum class State : std::uint8_t { Announced, Filling, Filled, Failed };

  ClassRecord(VeskInterned fullName, VeskClassInfo* info, PackageRecord* package, int mode);
  ~ClassRecord() override;

  [[nodiscard]] VeskClassInfo& info() const noexcept { return *fInfo; }
  /// Null for a global class.
  [[nodiscard]] PackageRecord* package() const noexcept { return fPackage; }
  [[nodiscard]] State state() const noexcept { return fState; }
  [[nodiscard]] int mode() const noexcept { return fMode; }
  /// What the class info answered when the class was announced.
  struct Queries {
    int fHandleFirst, fFactory, fHandleSecond;
  };
  [[nodiscard]] Queries const& queries() const noexcept { return fQueries; }

  /// Fills the class and its superclasses if that has not been done. A class whose filling failed raises
  /// the same failure again each time, unless it was for lack of memory: then it is as if not tried.
  void ensureFilled() {
    if (fState != State::Filled) [[unlikely]]
      fill();
  }

  // What follows fills the class first.

  /// Direct superclasses in order.
  [[nodiscard]] std::span<ClassRecord* const> superclasses();
  /// The class itself and all its superclasses in search order.
  [[nodiscard]] std::span<ClassRecord* const> linearization();
  /// Members that the class itself declares, in the order in which they were added.
  [[nodiscard]] std::span<PropertyRecord const> properties();
  [[nodiscard]] std::span<MethodRecord const> methods();
  [[nodiscard]] std::span<MethodRecord const* const> constructors();
  /// What `name` means on instances of the class; null for nothing. Constructors are no members.
  [[nodiscard]] Member const* findMember(VeskInterned name);

  /// 0 for the class itself, the place in the search order for a superclass, -1 for any other class.
  [[nodiscard]] int distanceTo(ClassRecord const& ancestor) {
    return &ancestor == this ? 0 : findDistance(ancestor);
  }

  // For the class info, while it fills the class; at any other time they throw.
  char const* getConstructorName() const override;
  void addSuperclass(VeskInterned const* names, std::size_t count, int access, int inherit) override;
  void addProperty(VeskPropInfo* property) override;
  void addMethod(VeskMethodInfo* method) override;

 private:
  struct Body;

  void fill();
  void finishFilling();
  int findDistance(ClassRecord const& ancestor);
  Body& bodyToFill() const;
  /// Throws for a member without a name.
  void checkName(char const* name, char const* kind) const;

  VeskClassInfo* fInfo;
  PackageRecord* fPackage;
  int fMode;
  Queries fQueries;
  State fState = State::Announced;
  std::unique_ptr<Body> fBody;
};

/// The class of a full name; null for no such class. Initialises the package that the name begins with.
[[nodiscard]] UMLMM_API ClassRecord* findClass(VeskInterned fullName);
/// The same; throws "Class 'N' is not defined" for no such class.
[[nodiscard]] UMLMM_API ClassRecord& classOf(VeskInterned fullName);

}  // namespace vesk::host
