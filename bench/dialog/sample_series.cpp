#include "sample_series.h"

#include <algorithm>
#include <cmath>

namespace access_arbiter::bench {

double SampleSeries::Percentile(double p) const {
    if (m_values.empty()) {
        return 0;
    }
    std::vector<double> sorted = m_values;
    std::sort(sorted.begin(), sorted.end());
    const auto rank = static_cast<std::size_t>(std::ceil(p / 100.0 * static_cast<double>(sorted.size())));
    return sorted[std::clamp<std::size_t>(rank, 1, sorted.size()) - 1];
}

}  // namespace access_arbiter::bench
