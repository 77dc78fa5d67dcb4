#include "answers.h"

#include "Json.h"

namespace umlmm::files::mi {

namespace {

void put(Json& aJson, std::vector<std::pair<std::string, std::string>> const& aPairs) {
  aJson.open('[');
  for (auto const& [name, value] : aPairs) aJson.open('[').value(name).value(value).close(']');
  aJson.close(']');
}

void put(Json& aJson, std::vector<Unknown> const& aUnknown) {
  aJson.open('[');
  for (Unknown const& unknown : aUnknown) {
    aJson.open('[').value(unknown.fTag);
    put(aJson, unknown.fAttributes);
    aJson.value(unknown.fText);
    put(aJson, unknown.fChildren);
    aJson.close(']');
  }
  aJson.close(']');
}

}  // namespace

std::string toJson(std::vector<Unresolved> const& aReferences) {
  Json json;
  json.open('[');
  for (Unresolved const& reference : aReferences) {
    Place const& place = reference.fPlace;
    json.open('[').value(reference.fFeature).value(reference.fAddress);
    json.value(place.fFile).value(place.fLine).value(place.fColumn).close(']');
  }
  return json.close(']').text();
}

std::string toJson(std::vector<Unknown> const& aUnknown) {
  Json json;
  put(json, aUnknown);
  return json.text();
}

std::string toJson(std::vector<StereotypeApplication> const& aApplications) {
  Json json;
  json.open('[');
  for (StereotypeApplication const& application : aApplications) {
    json.open('[')
        .value(application.fNumber)
        .value(application.fName)
        .value(application.fProfile)
        .value(application.fProfileUri);
    put(json, application.fValues);
    json.close(']');
  }
  return json.close(']').text();
}

std::string toJson(Error const& aError) {
  auto const* const found = dynamic_cast<ReadError const*>(&aError);
  bool const isNotUml = dynamic_cast<NotUml const*>(&aError) != nullptr;
  Json json;
  json.open('{').member("kind", std::string_view(found ? "ReadError" : isNotUml ? "NotUml" : "Error"));
  json.member("message", std::string_view(aError.what()));
  if (found) {
    json.member("file", found->place().fFile).member("line", found->place().fLine);
    json.member("column", found->place().fColumn).member("path", found->path());
  }
  return json.close('}').text();
}

}  // namespace umlmm::files::mi
