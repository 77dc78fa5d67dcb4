#pragma once

struct tarnArray_tag;
using tarnArray = tarnArray_tag;

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
class SequenceHook;

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
