#pragma once

/// Forward declarations of the metamodel kernel.

namespace Kelm {

class Asserter;
class ClassObject;
class Deviant;
class DeviantRegistry;
class Exception;
class FactoryObject;
class ImmutableClass;
class ImmutableClassObject;
class ImmutableDataType;
class ImmutableFactoryObject;
class ImmutableModel;
class ImmutableObject;
class ImmutablePackage;
class ImmutableProperty;
class ImmutableType;
class Model;
class ModelCache;
class ModelObject;
class Object;
class ReferenceCountingIntf;
class String;
struct IdRecord;
struct IntrospectiveMethods;
struct Variant;

/// Domain of the kernel's own interfaces; see kelm/tags.h.
struct VisitationDomain {};

namespace Generic {
class IteratorIntf;
class Ref;
class SequenceIntf;
}  // namespace Generic

namespace NSInterface {
class ClassIntf;
class ClassObjectIntf;
class DataTypeIntf;
class FactoryIntf;
class FactoryObjectIntf;
class ModelElementIntf;
class ModelIntf;
class ObjectIntf;
class PackageIntf;
class PropertyIntf;
class TypeIntf;
}  // namespace NSInterface

}  // namespace Kelm
