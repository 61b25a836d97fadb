// Random numbers that are the same on every machine.
#pragma once

#include <cstddef>
#include <random>

namespace support {

/// std::mt19937 is fixed to the bit by the language, but the distributions of <random> are not:
/// two standard libraries draw different tracks from the same seed. Hence ranges of our own. Their
/// slight bias does not matter here.
class RandomSource {
  public:
    explicit RandomSource(unsigned seed) : m_engine(seed) {}

    /// From first to last, both included.
    unsigned between(unsigned first, unsigned last) {
        return first + static_cast<unsigned>(m_engine() % (last - first + 1));
    }

    /// True once in so many times.
    bool one_in(unsigned times) { return between(1, times) == 1; }

    template <typename Value, std::size_t Count>
    const Value& pick(const Value (&values)[Count]) {
        return values[between(0, static_cast<unsigned>(Count) - 1)];
    }

  private:
    std::mt19937 m_engine;
};

}  // namespace support
