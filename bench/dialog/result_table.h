// The benchmark's report: one row per measured quantity and subject, with its median, 95th
// percentile and maximum, and the target it is held against. Printed as a Markdown table (for
// people and for docs/performance.md) or as JSON (for machines).
//
// Thread: not shared; filled and printed by the driver's main thread.
#pragma once

#include "sample_series.h"

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace access_arbiter::bench {

class ResultTable {
public:
    enum class Statistic { Median, Max };
    struct Target {
        Statistic statistic = Statistic::Median;
        double limit = 0;  // in the row's unit; the row meets it when the statistic is at most this
    };
    struct Row {
        std::string quantity;  // "request → mapped"
        std::string subject;   // "AccessArbiter (software)", "zenity"
        std::string unit;      // "ms", "MiB"
        SampleSeries samples;
        std::optional<Target> target;
    };

    void Add(Row row) { m_rows.push_back(std::move(row)); }
    void SetContext(std::string context) { m_context = std::move(context); }
    void PrintMarkdown(std::FILE* out) const;
    void PrintJson(std::FILE* out) const;

private:
    std::vector<Row> m_rows;
    std::string m_context;
};

}  // namespace access_arbiter::bench
