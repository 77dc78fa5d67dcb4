// What programs do all day with a model, through the typed interface and on structs of the same shape: a
// package with classes, each with properties and operations, properties typed by classes far away.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "Stopwatch.h"
#include "TestModel.h"

namespace {

using benchmark::DoNotOptimize;

constexpr std::size_t kProperties = 6;
constexpr std::size_t kOperations = 3;

std::string nameOf(char aKind, std::size_t aNumber) {
  std::string const digits = std::to_string(aNumber);
  return aKind + std::string(12 - digits.size(), '0') + digits;
}
/// By which class property `aProperty` of class `aClass` is typed.
std::size_t typeOf(std::size_t aClass, std::size_t aProperty, std::size_t aCount) {
  return (7 * aClass + 13 * aProperty + 1) % aCount;
}

/// The structs: strings and vectors as one writes them.
namespace plain {

struct Class;

struct Named {
  std::string fName;
};
struct Property : Named {
  Class* fClass = nullptr;
  Class* fType = nullptr;
};
struct Operation : Named {
  Class* fClass = nullptr;
};
struct Package;
struct Class : Named {
  Package* fPackage = nullptr;
  std::vector<std::unique_ptr<Property>> fProperties;
  std::vector<std::unique_ptr<Operation>> fOperations;
};
struct Package : Named {
  std::vector<std::unique_ptr<Class>> fClasses;
};

}  // namespace plain

struct Shape {
  explicit Shape(std::size_t aElements) : fClasses(aElements / 10) { fill(); }

  void fill() {
    fRoot = umlmm::Package::create(fModel);
    std::vector<umlmm::Class> classes;
    classes.reserve(fClasses);
    for (std::size_t at = 0; at < fClasses; ++at) {
      classes.push_back(umlmm::Class::create(fModel));
      classes.back().setName(nameOf('C', at));
      fRoot.getPackagedElement().push_back(classes.back());
    }
    for (std::size_t at = 0; at < fClasses; ++at) {
      auto const properties = classes[at].getOwnedAttribute();
      for (std::size_t number = 0; number < kProperties; ++number) {
        auto const property = umlmm::Property::create(fModel);
        property.setName(nameOf('p', at * kProperties + number));
        properties.push_back(property);
        property.setType(classes[typeOf(at, number, fClasses)]);
      }
      auto const operations = classes[at].getOwnedOperation();
      for (std::size_t number = 0; number < kOperations; ++number) {
        auto const operation = umlmm::Operation::create(fModel);
        operation.setName(nameOf('o', at * kOperations + number));
        operations.push_back(operation);
      }
    }
  }
  std::size_t elements() const { return fClasses * (1 + kProperties + kOperations); }
  std::vector<umlmm::NamedElement> named() const {
    std::vector<umlmm::NamedElement> all;
    all.reserve(elements());
    for (auto const& element : umlmm::instancesOf<umlmm::NamedElement>(fModel).values())
      all.push_back(element);
    return all;
  }

  TestModel fModel;
  std::size_t fClasses;
  umlmm::Package fRoot;
};

struct PlainShape {
  explicit PlainShape(std::size_t aElements) : fClasses(aElements / 10) { fill(); }

  void fill() {
    fRoot = std::make_unique<plain::Package>();
    for (std::size_t at = 0; at < fClasses; ++at) {
      fRoot->fClasses.push_back(std::make_unique<plain::Class>());
      fRoot->fClasses.back()->fName = nameOf('C', at);
      fRoot->fClasses.back()->fPackage = fRoot.get();
    }
    for (std::size_t at = 0; at < fClasses; ++at) {
      plain::Class& owner = *fRoot->fClasses[at];
      for (std::size_t number = 0; number < kProperties; ++number) {
        auto property = std::make_unique<plain::Property>();
        property->fName = nameOf('p', at * kProperties + number);
        property->fClass = &owner;
        property->fType = fRoot->fClasses[typeOf(at, number, fClasses)].get();
        owner.fProperties.push_back(std::move(property));
      }
      for (std::size_t number = 0; number < kOperations; ++number) {
        auto operation = std::make_unique<plain::Operation>();
        operation->fName = nameOf('o', at * kOperations + number);
        operation->fClass = &owner;
        owner.fOperations.push_back(std::move(operation));
      }
    }
  }
  std::size_t elements() const { return fClasses * (1 + kProperties + kOperations); }
  std::vector<plain::Named*> named() const {
    std::vector<plain::Named*> all;
    all.reserve(elements());
    for (auto const& owner : fRoot->fClasses) {
      all.push_back(owner.get());
      for (auto const& property : owner->fProperties) all.push_back(property.get());
      for (auto const& operation : owner->fOperations) all.push_back(operation.get());
    }
    return all;
  }

  std::size_t fClasses;
  std::unique_ptr<plain::Package> fRoot;
};

/// Runs `aWork`, which answers how many things it has done, on a shape of the size that is asked for.
template <class S, class Work>
void run(benchmark::State& aState, Work aWork) {
  S shape(static_cast<std::size_t>(aState.range(0)));
  std::size_t done = 0;
  for (auto _ : aState) {
    benchmark::ClobberMemory();
    done += aWork(shape);
  }
  aState.SetItemsProcessed(static_cast<std::int64_t>(done));
}

template <class S>
void create(benchmark::State& aState) {
  std::size_t done = 0;
  for (auto _ : aState) {
    std::unique_ptr<S> shape;
    {
      Stopwatch const watch(aState);
      shape = std::make_unique<S>(static_cast<std::size_t>(aState.range(0)));
    }
    done += shape->elements();
  }
  aState.SetItemsProcessed(static_cast<std::int64_t>(done));
}

void readName(benchmark::State& aState) {
  run<Shape>(aState, [all = std::vector<umlmm::NamedElement>()](Shape& aIn) mutable {
    if (all.empty()) all = aIn.named();
    for (auto const& element : all) DoNotOptimize(element.getName());
    return all.size();
  });
}
void readNameBorrowed(benchmark::State& aState) {
  run<Shape>(aState, [all = std::vector<umlmm::NamedElementView>()](Shape& aIn) mutable {
    if (all.empty())
      for (auto const& element : aIn.named()) all.push_back(element.view());
    for (auto const& element : all) DoNotOptimize(element.getName());
    return all.size();
  });
}
void readNamePlain(benchmark::State& aState) {
  run<PlainShape>(aState, [all = std::vector<plain::Named*>()](PlainShape& aIn) mutable {
    if (all.empty()) all = aIn.named();
    for (auto const* element : all) DoNotOptimize(std::string(element->fName));
    return all.size();
  });
}

void setName(benchmark::State& aState) {
  run<Shape>(aState, [all = std::vector<umlmm::NamedElement>(),
                      name = std::string("another name.")](Shape& aIn) mutable {
    if (all.empty()) all = aIn.named();
    for (auto const& element : all) element.setName(name);
    return all.size();
  });
}
void setNameToText(benchmark::State& aState) {
  run<Shape>(aState, [all = std::vector<umlmm::NamedElement>(),
                      name = umlmm::String("another name.")](Shape& aIn) mutable {
    if (all.empty()) all = aIn.named();
    for (auto const& element : all) element.setName(name);
    return all.size();
  });
}
void setNamePlain(benchmark::State& aState) {
  run<PlainShape>(aState, [all = std::vector<plain::Named*>(),
                           name = std::string("another name.")](PlainShape& aIn) mutable {
    if (all.empty()) all = aIn.named();
    for (auto* element : all) element->fName = name;
    return all.size();
  });
}

/// Type, owner and class of every property, each of which is looked at: three steps a property.
void walk(benchmark::State& aState) {
  run<Shape>(aState, [](Shape& aIn) {
    std::size_t count = 0;
    for (auto const& part : aIn.fRoot.getPackagedElement().values()) {
      auto const owner = umlmm::cast<umlmm::Class>(part);
      for (auto const& property : owner.getOwnedAttribute().values()) {
        DoNotOptimize(property.getType());
        DoNotOptimize(property.getOwner());
        DoNotOptimize(property.getClass());
        count += 3;
      }
    }
    return count;
  });
}
void walkBorrowed(benchmark::State& aState) {
  run<Shape>(aState, [](Shape& aIn) {
    std::size_t count = 0;
    for (auto const part : aIn.fRoot.view().getPackagedElement())
      for (auto const property : umlmm::cast<umlmm::ClassView>(part).getOwnedAttribute()) {
        DoNotOptimize(property.getType());
        DoNotOptimize(property.getOwner());
        DoNotOptimize(property.getClass());
        count += 3;
      }
    return count;
  });
}
void walkPlain(benchmark::State& aState) {
  run<PlainShape>(aState, [](PlainShape& aIn) {
    std::size_t count = 0;
    for (auto const& owner : aIn.fRoot->fClasses)
      for (auto const& property : owner->fProperties) {
        DoNotOptimize(property->fType);
        DoNotOptimize(property->fClass);
        DoNotOptimize(property->fClass);
        count += 3;
      }
    return count;
  });
}

void allOwned(benchmark::State& aState) {
  run<Shape>(aState, [](Shape& aIn) {
    auto const all = aIn.fRoot.allOwnedElements();
    DoNotOptimize(all.get());
    return static_cast<std::size_t>(all.size());
  });
}
void allOwnedPlain(benchmark::State& aState) {
  run<PlainShape>(aState, [](PlainShape& aIn) {
    std::vector<plain::Named const*> all;
    for (auto const& owner : aIn.fRoot->fClasses) {
      all.push_back(owner.get());
      for (auto const& property : owner->fProperties) all.push_back(property.get());
      for (auto const& operation : owner->fOperations) all.push_back(operation.get());
    }
    DoNotOptimize(all.data());
    return all.size();
  });
}

/// A class at a time.
void members(benchmark::State& aState) {
  run<Shape>(aState, [](Shape& aIn) {
    for (auto const part : aIn.fRoot.view().getPackagedElement())
      DoNotOptimize(umlmm::cast<umlmm::ClassView>(part).getMember());
    return aIn.fClasses;
  });
}
void membersPlain(benchmark::State& aState) {
  run<PlainShape>(aState, [](PlainShape& aIn) {
    for (auto const& owner : aIn.fRoot->fClasses) {
      std::vector<plain::Named const*> all;
      for (auto const& property : owner->fProperties) all.push_back(property.get());
      for (auto const& operation : owner->fOperations) all.push_back(operation.get());
      DoNotOptimize(all.data());
    }
    return aIn.fClasses;
  });
}

void sizes(benchmark::internal::Benchmark* aBenchmark) {
  for (int const size : {10'000, 100'000, 1'000'000}) aBenchmark->Arg(size);
}

BENCHMARK(create<Shape>)->Name("create")->Apply(sizes)->UseManualTime();
BENCHMARK(create<PlainShape>)->Name("createPlain")->Apply(sizes)->UseManualTime();
BENCHMARK(readName)->Apply(sizes);
BENCHMARK(readNameBorrowed)->Apply(sizes);
BENCHMARK(readNamePlain)->Apply(sizes);
BENCHMARK(setName)->Apply(sizes);
BENCHMARK(setNameToText)->Apply(sizes);
BENCHMARK(setNamePlain)->Apply(sizes);
BENCHMARK(walk)->Apply(sizes);
BENCHMARK(walkBorrowed)->Apply(sizes);
BENCHMARK(walkPlain)->Apply(sizes);
BENCHMARK(allOwned)->Apply(sizes);
BENCHMARK(allOwnedPlain)->Apply(sizes);
BENCHMARK(members)->Apply(sizes);
BENCHMARK(membersPlain)->Apply(sizes);

}  // namespace
