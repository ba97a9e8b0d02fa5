// The samples of one measured quantity and their order statistics.
//
// Thread: not shared; a plain value type.
#pragma once

#include <cstddef>
#include <vector>

namespace access_arbiter::bench {

class SampleSeries {
public:
    void Add(double value) { m_values.push_back(value); }
    std::size_t Size() const { return m_values.size(); }
    bool Empty() const { return m_values.empty(); }
    // The nearest-rank percentile (0 < p <= 100) of the samples: the smallest sample with at least p %
    // of all samples at or below it. 0 when there are none.
    double Percentile(double p) const;
    double Median() const { return Percentile(50); }
    double Max() const { return Percentile(100); }

private:
    std::vector<double> m_values;
};

}  // namespace access_arbiter::bench
