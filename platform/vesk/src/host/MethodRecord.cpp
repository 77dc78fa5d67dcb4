#include "vesk/VeskError.h"
#include "vesk/host/ClassRecord.h"

namespace vesk::host {

MethodRecord::MethodRecord(VeskMethodInfo* info, ClassRecord* owner)
    : fInfo(info),
      fOwner(owner),
      fName(internal::intern(info->getName())),
      fSignature(info->getMethodSignature().get()),
      fIsStatic(info->isStatic()),
      fOverridesAll(info->doesMethodOverrideAllSignatures()) {
  if (!fSignature) throw VeskError("Method '" + std::string(fName.view()) + "' has no signature");
  fIsConstructor = owner && fName.view() == owner->getConstructorName();
  fHasReceiver = owner && !fIsConstructor && !fIsStatic;
  std::size_t const count = fSignature->arguments().size();
  if (fHasReceiver && fSignature->receiver().empty()) {
    if (count == 0)
      throw VeskError("Method '" + std::string(fName.view()) + "' has no argument for its receiver");
    fFirst = 1;
  }
  if (count > kMaxArguments)
    throw VeskError("Method '" + std::string(fName.view()) + "' has too many arguments");
  fCount = static_cast<std::uint8_t>(count - fFirst);
}

std::string MethodRecord::text() const {
  std::string result(fName.view());
  std::string_view names = fSignature->names();
  result += '(';
  for (int i = 0; i < fCount; ++i) {
    if (i) result += ", ";
    result += fSignature->arguments()[fFirst + i].view();
    std::size_t const end = std::min(names.find(','), names.size());
    if (end > 0) result.append(1, ' ').append(names.substr(0, end));
    names.remove_prefix(std::min(end + 2, names.size()));
  }
  result += ')';
  if (fSignature->result().view() != "void") result.append(" -> ").append(fSignature->result().view());
  return result;
}

}  // namespace vesk::host
