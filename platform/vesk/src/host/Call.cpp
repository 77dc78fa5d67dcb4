#include "vesk/host/Call.h"

#include "vesk/VeskError.h"
#include "vesk/host/PackageRecord.h"

namespace vesk::host {

namespace {

/// The argument list of a running call: gives back the arrays that were made for it, also when the
/// call or a later conversion throws.
class ArgumentList {
 public:
  explicit ArgumentList(MethodRecord const& method) noexcept : fMethod(method) {}
  ArgumentList(ArgumentList const&) = delete;
  ArgumentList& operator=(ArgumentList const&) = delete;
  ~ArgumentList() {
    for (int i = fConverted; i-- > 0;) destroyValue(fMethod.argumentType(i), fValues[fOffset + i]);
    if (fOwnsReceiver) tarnDestroyArray(fValues[0].array());
  }

  void setReceiver(tarnArray* array, bool isOwned) noexcept {
    fValues[0] = array;
    fOffset = 1;
    fOwnsReceiver = isOwned;
  }
  void add(VeskValue value) noexcept { fValues[fOffset + fConverted++] = value; }

  [[nodiscard]] int size() const noexcept { return fOffset + fConverted; }
  [[nodiscard]] VeskValue const* data() const noexcept { return fValues; }

 private:
  MethodRecord const& fMethod;
  int fOffset = 0;
  int fConverted = 0;
  bool fOwnsReceiver = false;
  union {
    VeskValue fValues[MethodRecord::kMaxArguments + 1];  // filled as far as size() says
  };
};

Type const& voidType() {
  static Type const& sVoid = typeOf(internal::interned<"void">());
  return sVoid;
}

void convertArguments(ArgumentList& list, MethodRecord const& method, ArgumentSource& arguments, int offset,
                      int count) {
  for (int i = 0; i < count; ++i) list.add(arguments.convert(offset + i, method.argumentType(i)));
  for (int i = count; i < method.fCount; ++i) list.add(makeEmpty(method.argumentType(i)));
}

}  // namespace

OwnedValue callMethod(MethodRecord const& method, CallForm form, Instance* receiver,
                      ArgumentSource& arguments, int count) {
  ArgumentList list(method);
  int offset = 0;
  if (method.fHasReceiver && form == CallForm::OnInstance) {
    list.setReceiver(receiver->array(), false);
  } else if (method.fHasReceiver) {
    list.setReceiver(arguments.convert(0, *method.fOwner).array(), true);
    offset = 1;
  }
  convertArguments(list, method, arguments, offset, count - offset);

  Type const& type = method.resultType();
  VeskValue result;
  int resultCount = type.fCarrier == Carrier::Void ? 0 : 1;
  int const wanted = resultCount;
  method.fInfo->invoke(client(), resultCount, &result, list.size(), list.data());
  return wanted && resultCount ? OwnedValue(type, result) : OwnedValue(voidType(), VeskValue());
}

void construct(MethodRecord const& constructor, Instance& instance, ArgumentSource& arguments, int count) {
  ArgumentList list(constructor);
  convertArguments(list, constructor, arguments, 0, count);
  VeskValue result = instance.array();
  int resultCount = 0;
  constructor.fInfo->invoke(client(), resultCount, &result, list.size(), list.data());
  if (!instance.isBound())
    throw VeskError("The constructor of '" + std::string(instance.classRecord().fName.view()) +
                    "' has made no object");
}

Instance* newInstance(ClassRecord& cls, ArgumentSource& arguments, int count) {
  MethodRecord const& constructor = resolveConstructor(cls, arguments, count);
  auto instance = VeskInterfacePtr::adopt(makeInstance(cls));
  auto* made = static_cast<Instance*>(static_cast<VeskInterface*>(instance));
  construct(constructor, *made, arguments, count);
  made->retain();
  return made;
}

void setProperty(PropertyRecord const& property, Instance& instance, ArgumentSource& arguments, int index) {
  Type const& type = property.type();
  OwnedValue const value(type, arguments.convert(index, type));
  property.fInfo->setValue(&instance, value.value());
}

}  // namespace vesk::host
