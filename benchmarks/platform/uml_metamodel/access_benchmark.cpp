// Reads, writes, casts and the life of one element, against plain structs that do the same.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

#include "TestModel.h"
#include "kelm/meta.h"
#include "plain.h"

namespace {

using benchmark::DoNotOptimize;

struct Elements {
  Elements() {
    fClass.setName(umlmm::String(u"Customer"));
    fProperty.setType(fClass);
  }
  TestModel fModel;
  umlmm::Class fClass = umlmm::Class::create(fModel);
  umlmm::Property fProperty = umlmm::Property::create(fModel);
  umlmm::LiteralInteger fLiteral = umlmm::LiteralInteger::create(fModel);
};

struct PlainElements {
  PlainElements() {
    fElement.fName = plain::Counted(new plain::Text{0, u"Customer"});
    fType.fCount = fElement.fCount = 1;
    fElement.fType = &fType;
    fElement.fClass = fType.fClass = &fTable;
  }
  std::int16_t fOffsets[4] = {-1, 0, 8, 16};
  plain::ClassTable fTable = {fOffsets, 4};
  plain::Element fType;
  plain::Element fElement;
};

/// Runs `aWork` on the elements; hidden from the optimizer so that no read moves out of the loop.
template <class Subject, class Work>
void run(benchmark::State& aState, Work aWork) {
  Subject subject;
  for (auto _ : aState) {
    benchmark::ClobberMemory();
    aWork(subject);
  }
}

void readText(benchmark::State& aState) {
  auto const& methods = umlmm::NSInterface::NamedElementIntf::sIntrospectiveMethods;
  run<Elements>(aState, [&](Elements& aIn) {
    DoNotOptimize(methods.getEntry(aIn.fClass.get(), aIn.fModel.deviant(), 1));
  });
}
void readTextPlain(benchmark::State& aState) {
  run<PlainElements>(aState, [](PlainElements& aIn) { DoNotOptimize(plain::Counted(aIn.fElement.fName)); });
}
void readTextTyped(benchmark::State& aState) {
  run<Elements>(aState, [](Elements& aIn) { DoNotOptimize(aIn.fClass.getName()); });
}
void writeText(benchmark::State& aState) {
  run<Elements>(aState, [text = umlmm::String(u"Customer")](Elements& aIn) { aIn.fClass.setName(text); });
}
void writeTextPlain(benchmark::State& aState) {
  run<PlainElements>(aState, [text = plain::Counted(new plain::Text{0, u"Customer"})](PlainElements& aIn) {
    aIn.fElement.fName = text;
  });
}

void readBoolean(benchmark::State& aState) {
  run<Elements>(aState, [](Elements& aIn) { DoNotOptimize(aIn.fClass.getIsAbstract()); });
}
void readBooleanPlain(benchmark::State& aState) {
  run<PlainElements>(aState, [](PlainElements& aIn) {
    DoNotOptimize((aIn.fElement.fFlags & plain::Element::kIsAbstract) != 0);
  });
}
void writeBoolean(benchmark::State& aState) {
  run<Elements>(aState, [](Elements& aIn) { aIn.fClass.setIsAbstract(true); });
}
void writeBooleanPlain(benchmark::State& aState) {
  run<PlainElements>(aState, [](PlainElements& aIn) { aIn.fElement.fFlags |= plain::Element::kIsAbstract; });
}

void readInteger(benchmark::State& aState) {
  run<Elements>(aState, [](Elements& aIn) { DoNotOptimize(aIn.fLiteral.getValue()); });
}
void readIntegerPlain(benchmark::State& aState) {
  run<PlainElements>(aState, [](PlainElements& aIn) { DoNotOptimize(aIn.fElement.fValue); });
}
void writeInteger(benchmark::State& aState) {
  run<Elements>(aState, [](Elements& aIn) { aIn.fLiteral.setValue(umlmm::Integer(7)); });
}
void writeIntegerPlain(benchmark::State& aState) {
  run<PlainElements>(aState, [](PlainElements& aIn) { aIn.fElement.fValue = 7; });
}

void readReference(benchmark::State& aState) {
  run<Elements>(aState, [](Elements& aIn) { DoNotOptimize(aIn.fProperty.getType()); });
}
void readReferencePlain(benchmark::State& aState) {
  run<PlainElements>(aState, [](PlainElements& aIn) { DoNotOptimize(plain::Counted(aIn.fElement.fType)); });
}
void writeReference(benchmark::State& aState) {
  run<Elements>(aState, [](Elements& aIn) { aIn.fProperty.setType(aIn.fClass); });
}
void writeReferencePlain(benchmark::State& aState) {
  run<PlainElements>(aState, [](PlainElements& aIn) { aIn.fElement.fType = &aIn.fType; });
}

void castToClass(benchmark::State& aState) {
  run<Elements>(aState, [](Elements& aIn) {
    Kelm::ReferenceCountingIntf const* object = aIn.fClass.get();
    DoNotOptimize(object);
    DoNotOptimize(Kelm::queryInterface<umlmm::NSInterface::ClassIntf, umlmm::VisitationDomain>(object));
  });
}
void castToClassPlain(benchmark::State& aState) {
  run<PlainElements>(aState, [](PlainElements& aIn) { DoNotOptimize(aIn.fElement.cast(2)); });
}

void createAndDestroy(benchmark::State& aState) {
  TestModel const model;
  for (auto _ : aState) umlmm::Class::create(model).destroy();
}
void createAndDestroyPlain(benchmark::State& aState) {
  plain::Model model;
  for (auto _ : aState) {
    plain::Element* element = model.create();
    DoNotOptimize(element);
    model.remove(element);
    delete element;
  }
}

constexpr int kReads = 960;

/// The same reads on elements of many metaclasses, in an order that nothing foresees.
void readTextsOfClasses(benchmark::State& aState) {
  auto const classCount = static_cast<std::size_t>(aState.range(0));
  TestModel const model;
  auto const named = umlmm::ImmutableNamedElement::MetaClass();
  std::vector<int> metaclasses;
  for (int index = umlmm::ImmutableClass::InterfaceType::kMetaclassIndex; metaclasses.size() < classCount;
       index = (index + 1) % 166) {
    auto const metaclass = umlmm::detail::metaClass(index);
    if (!metaclass.get()->isAbstract() && metaclass.get()->conformsTo(*named.get()))
      metaclasses.push_back(index);
  }
  auto const& methods = umlmm::NSInterface::NamedElementIntf::sIntrospectiveMethods;
  umlmm::String const text(u"Customer");
  std::vector<Kelm::NSInterface::ModelElementIntf*> elements;
  for (int at = 0; at < kReads; ++at) {
    int const metaclass = metaclasses[static_cast<std::size_t>(at) % classCount];
    elements.push_back(umlmm::detail::createElement(metaclass, model));
    methods.setEntry(elements.back(), model.deviant(), 1, text);
  }
  std::ranges::shuffle(elements, std::mt19937(7));
  for (auto _ : aState)
    for (auto* const element : elements) DoNotOptimize(methods.getEntry(element, model.deviant(), 1));
  aState.SetItemsProcessed(aState.iterations() * kReads);
}

BENCHMARK(readText);
BENCHMARK(readTextPlain);
BENCHMARK(readTextTyped);
BENCHMARK(writeText);
BENCHMARK(writeTextPlain);
BENCHMARK(readBoolean);
BENCHMARK(readBooleanPlain);
BENCHMARK(writeBoolean);
BENCHMARK(writeBooleanPlain);
BENCHMARK(readInteger);
BENCHMARK(readIntegerPlain);
BENCHMARK(writeInteger);
BENCHMARK(writeIntegerPlain);
BENCHMARK(readReference);
BENCHMARK(readReferencePlain);
BENCHMARK(writeReference);
BENCHMARK(writeReferencePlain);
BENCHMARK(castToClass);
BENCHMARK(castToClassPlain);
BENCHMARK(createAndDestroy);
BENCHMARK(createAndDestroyPlain);
BENCHMARK(readTextsOfClasses)->Arg(1)->Arg(60);

}  // namespace
