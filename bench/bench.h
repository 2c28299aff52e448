/// @file
/// The benchmark compares a function of the module with a library that people would use instead. The
/// two are called in turn, each of them first every other time, so that a noisy machine disturbs
/// both alike.
#pragma once

#include <functional>
#include <string>
#include <utility>

namespace bench {

/// Keeps the compiler from leaving a result out.
template <class Result>
void Use(const Result& result) {
  asm volatile("" : : "g"(&result) : "memory");  // NOLINT(hicpp-no-assembler)
}

/// Calls a body so many times. The loop is compiled together with the body.
using Calls = std::function<void(int)>;

template <class Body>
Calls Repeat(Body body) {
  return [body](int count) mutable {
    for (int i = 0; i < count; ++i) body();
  };
}

/// A function of the module with a workload, to compare with other libraries.
class Row {
 public:
  /// The process holds `memory` bytes more while the row is timed.
  template <class Body>
  Row(std::string name, Body body, std::size_t memory = 0)
      : name_(std::move(name)), calls_(Repeat(body)), memory_(memory) {}

  template <class Body>
  const Row& Against(const std::string& peer, Body body) const {
    Add(peer, Repeat(body));
    return *this;
  }

 private:
  void Add(const std::string& peer, Calls calls) const;

  std::string name_;
  Calls calls_;
  std::size_t memory_;
};

/// Each program defines it: constructs its rows.
void AddRows();

void AddCodecRows();
void AddEncodingRows();
void AddTextRows();

}  // namespace bench
