#include <string>

#include "errors.h"
#include "names.h"
#include "packages.h"
#include "vesk/Detail.h"
#include "vesk/VeskClassInfo.h"
#include "vesk/factory/VeskMethod.h"
#include "vesk/host/PackageRecord.h"

namespace vesk::python {

namespace {

using host::ClassRecord;
using host::MethodRecord;

void put(Ref const& dictionary, char const* key, Ref value) {
  if (!value) throw PythonError();
  checkedInt(PyDict_SetItemString(dictionary.get(), key, value.get()));
}
void put(Ref const& dictionary, char const* key, char const* text) {
  put(dictionary, key, text ? pythonText(text) : Ref::shared(Py_None));
}
void append(Ref const& list, Ref item) { checkedInt(PyList_Append(list.get(), item.get())); }

Ref newDictionary() { return Ref::checked(PyDict_New()); }
Ref newList() { return Ref::checked(PyList_New(0)); }

Ref describeDetails(Details const& details) {
  Ref dictionary = newDictionary();
  for (Detail const& detail : details) {
    if (auto const* text = std::get_if<std::string>(&detail.fValue))
      put(dictionary, detail.fName, text->c_str());
    else
      put(dictionary, detail.fName, Ref(PyLong_FromLongLong(std::get<std::int64_t>(detail.fValue))));
  }
  return dictionary;
}

Ref describeMethod(MethodRecord const& method) {
  Ref dictionary = newDictionary();
  VeskMethodSignature const& signature = *method.fSignature;
  put(dictionary, "name", method.fName.c_str());
  put(dictionary, "kind", method.fIsConstructor ? "constructor" : "method");
  auto const* made = dynamic_cast<factory::VeskMethod const*>(method.fInfo);
  put(dictionary, "word", made ? Ref(PyLong_FromUnsignedLong(made->attributeWord())) : Ref::shared(Py_None));
  put(dictionary, "description", method.fInfo->getDescription());
  put(dictionary, "names", signature.names());
  put(dictionary, "result", signature.result().c_str());
  put(dictionary, "receiver", signature.receiver().empty() ? nullptr : signature.receiver().c_str());
  Ref arguments = newList();
  for (VeskInterned type : signature.arguments()) append(arguments, pythonText(type.view()));
  put(dictionary, "arguments", std::move(arguments));
  put(dictionary, "details", describeDetails(detailsOf(*method.fInfo)));
  return dictionary;
}

Ref describeProperty(host::PropertyRecord const& property) {
  Ref dictionary = newDictionary();
  put(dictionary, "name", property.fName.c_str());
  put(dictionary, "type", property.fTypeName.c_str());
  put(dictionary, "description", property.fInfo->getDescription());
  put(dictionary, "details", describeDetails(detailsOf(*property.fInfo)));
  return dictionary;
}

}  // namespace

Ref describeClass(ClassRecord& record) {
  Ref dictionary = newDictionary();
  put(dictionary, "name", record.fName.c_str());
  put(dictionary, "short", record.info().getName());
  put(dictionary, "description", record.info().getDescription());
  put(dictionary, "detailedDescription", record.info().getDetailedDescription());
  // What the class is about, and the class that shows the same and lets one change it.
  ClassFamily const* const family = record.info().family();
  put(dictionary, "subject", family ? pythonText(family->name()) : Ref::shared(Py_None));
  put(dictionary, "changeable", family ? family->partner(record.fName, Access::Changeable).c_str() : "");
  ClassRecord::Queries const& queries = record.queries();
  put(dictionary, "handleQueryFirst", Ref(PyLong_FromLong(queries.fHandleFirst)));
  put(dictionary, "factoryQuery", Ref(PyLong_FromLong(queries.fFactory)));
  put(dictionary, "handleQuerySecond", Ref(PyLong_FromLong(queries.fHandleSecond)));
  Ref superclasses = newList(), methods = newList(), properties = newList();
  for (ClassRecord* super : record.superclasses()) append(superclasses, pythonText(super->fName.view()));
  for (MethodRecord const& method : record.methods()) append(methods, describeMethod(method));
  for (host::PropertyRecord const& property : record.properties())
    append(properties, describeProperty(property));
  put(dictionary, "superclasses", std::move(superclasses));
  put(dictionary, "methods", std::move(methods));
  put(dictionary, "properties", std::move(properties));
  return dictionary;
}

Ref describeFunctions(std::string_view package) {
  host::PackageRecord* record = host::findPackage(package);
  if (!record) raise(PyExc_ValueError, "Package '" + std::string(package) + "' is not loaded");
  Ref functions = newList();
  for (host::Member const* function : record->functions())
    for (MethodRecord const* method : function->fMethods) append(functions, describeMethod(*method));
  return functions;
}

}  // namespace vesk::python
