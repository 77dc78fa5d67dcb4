#include "model_files/reading/Reading.h"

namespace umlmm::files {

class Loading::Work : public Reading {
 public:
  using Reading::Reading;
};

Loading::Loading(std::vector<Input> aInputs, LoadOptions aOptions)
    : fWork(std::make_unique<Work>(std::move(aInputs), std::move(aOptions))) {}
Loading::~Loading() = default;

bool Loading::step(std::chrono::milliseconds aTime) { return fWork->step(aTime); }
double Loading::progress() const noexcept { return fWork->progress(); }
Kelm::Model Loading::model() const { return fWork->model(); }

Kelm::Model load(std::string const& aPath, LoadOptions const& aOptions) {
  Loading loading({{aPath, std::nullopt}}, aOptions);
  while (!loading.step(std::chrono::hours(1))) {
  }
  return loading.model();
}

}  // namespace umlmm::files
