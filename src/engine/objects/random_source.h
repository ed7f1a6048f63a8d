#pragma once

namespace nimbrel::engine {

/// The stream of numbers behind RiskAnalysis.Rnd.
class RandomStream {
 public:
  virtual ~RandomStream() = default;

  /// The next number, from 0 up to but not including 1. Raises nothing and allocates nothing.
  virtual double Next() = 0;
};

}  // namespace nimbrel::engine
