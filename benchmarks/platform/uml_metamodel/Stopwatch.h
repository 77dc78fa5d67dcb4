#pragma once

#include <benchmark/benchmark.h>

#include <ctime>

/// Times part of an iteration by the processor time of this thread, which other programs on the machine don't
/// count in. For benchmarks with `UseManualTime`.
class Stopwatch {
 public:
  explicit Stopwatch(benchmark::State& aState) noexcept : fState(aState), fStart(now()) {}
  Stopwatch(Stopwatch const&) = delete;
  Stopwatch& operator=(Stopwatch const&) = delete;
  ~Stopwatch() { fState.SetIterationTime(now() - fStart); }

 private:
  static double now() noexcept {
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
  }

  benchmark::State& fState;
  double fStart;
};
