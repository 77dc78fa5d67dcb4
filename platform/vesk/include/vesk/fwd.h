#pragma once

struct tarnArray_tag;
using tarnArray = tarnArray_tag;

/// The class system that scripts see, without a scripting language. It has no locks of its own: one thread at
/// a time calls it, which the front sees to. Only the making of interned names may go on in any thread.
///
/// Objects that a library hands over (providers, class infos, methods, properties, functions) belong to the
/// host from the call on, also when the call throws. Texts that they answer must live as long as they do.
namespace vesk {

class VeskClass;
class VeskClassInfo;
class VeskClient;
class VeskError;
class VeskInterface;
class VeskInterfacePtr;
class VeskLoadInfo;
class VeskMethodInfo;
class VeskMethodSignature;
class VeskPackage;
class VeskPackageInfo;
class VeskPropInfo;
class VeskValue;
class ObjectHook;
class SequenceHook;
struct PropertyDoor;

namespace factory {
class FunctionInfo;
class MethodAttributes;
class VeskFactoryClassInfo;
class VeskMethod;
}  // namespace factory

namespace host {
class ClassRecord;
class Instance;
class PackageRecord;
struct Member;
struct MethodRecord;
struct PropertyRecord;
struct Type;
}  // namespace host

}  // namespace vesk
