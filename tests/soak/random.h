// SPDX-License-Identifier: MIT
//
// The random numbers that choose what a user does.
#pragma once

#include <iterator>
#include <random>
#include <vector>

namespace gw::soak {

class Random {
  public:
    explicit Random(int seed) : numbers_(static_cast<unsigned>(seed)) {}
    /// From 0 to `count` - 1.
    int below(int count) { return static_cast<int>(numbers_() % static_cast<unsigned>(count)); }
    bool one_in(int count) { return below(count) == 0; }
    template <class Container>
    auto& any_of(Container& all) {
        return *std::next(std::begin(all), below(static_cast<int>(std::size(all))));
    }
    /// Each of the numbers from 1 to `count` with the same chance; at least one.
    std::vector<int> some_of(int count) {
        std::vector<int> chosen;
        for (int i = 1; i <= count; ++i) {
            if (one_in(3)) chosen.push_back(i);
        }
        if (chosen.empty()) chosen.push_back(1 + below(count));
        return chosen;
    }

  private:
    std::mt19937 numbers_;
};

}  // namespace gw::soak
