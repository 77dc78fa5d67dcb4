#pragma once

#include <string>

#include "vesk/VeskClassInfo.h"

namespace vesk::factory {

/// A class info that keeps copies of its texts. The description is also the detailed one.
class UMLMM_API VeskFactoryClassInfo : public VeskClassInfo {
 public:
  VeskFactoryClassInfo(std::string const& name, std::string const& description);
  ~VeskFactoryClassInfo() override;

  char const* getName() const override { return fName.c_str(); }
  char const* getDescription() const override { return fDescription.c_str(); }
  char const* getDetailedDescription() const override { return getDescription(); }
  int factoryQuery() const override { return 1; }

 private:
  std::string fName;
  std::string fDescription;
};

}  // namespace vesk::factory
