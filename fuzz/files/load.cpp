#include "files/models.h"

// Reads whatever comes: one text, or two that may refer to each other with a form feed between them. What is
// read can be asked for all that is known of it, and is saved to the bytes that it came from.

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* aData, std::size_t aSize) {
  using namespace umlmm;
  std::string_view const data(reinterpret_cast<char const*>(aData), aSize);
  std::size_t const cut = data.find('\f');
  std::vector<files::Input> inputs{{"first.uml", std::string(data.substr(0, cut))}};
  if (cut != data.npos) inputs.push_back({"second.uml", std::string(data.substr(cut + 1))});
  fuzzing::loaded(inputs, true);
  Kelm::Model const model = fuzzing::loaded(inputs);
  if (!model) return 0;
  files::report(model).page();
  files::report(model).json();
  files::unresolved(model);
  files::stereotyped(model, "Table");
  for (files::Element* const element : fuzzing::elementsOf(model)) {
    Kelm::ClassObject const reference(element, model.getDeviant());
    files::unknown(reference);
    files::stereotypes(reference);
    std::string const id = files::externalIdOf(*element, model.getDeviant());
    // What is no character can't be asked for.
    bool const isMalformed = id.find("\xEF\xBF\xBD") != id.npos;
    if (!id.empty() && !isMalformed && files::byId(model, id).isNull())
      fuzzing::fail("an id that leads nowhere");
  }
  for (files::Input const& input : inputs)
    if (files::textOf(model, {}, input.fPath) != *input.fBytes)
      fuzzing::fail("other bytes than those that were read");
  return 0;
}
