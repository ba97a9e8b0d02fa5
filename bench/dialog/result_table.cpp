#include "result_table.h"

namespace access_arbiter::bench {

namespace {

double Value(const SampleSeries& samples, ResultTable::Statistic statistic) {
    return statistic == ResultTable::Statistic::Median ? samples.Median() : samples.Max();
}

std::string TargetText(const ResultTable::Row& row) {
    if (!row.target) {
        return "";
    }
    char text[64];
    std::snprintf(text, sizeof text, "%s ≤ %g %s",
                  row.target->statistic == ResultTable::Statistic::Median ? "p50" : "max", row.target->limit,
                  row.unit.c_str());
    return text;
}

bool Met(const ResultTable::Row& row) {
    return row.target && Value(row.samples, row.target->statistic) <= row.target->limit;
}

std::string JsonText(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '\n') {
            quoted += "\\n";
            continue;
        }
        if (c == '"' || c == '\\') {
            quoted += '\\';
        }
        quoted += c;
    }
    return quoted + "\"";
}

}  // namespace

void ResultTable::PrintMarkdown(std::FILE* out) const {
    if (!m_context.empty()) {
        std::fprintf(out, "%s\n\n", m_context.c_str());
    }
    std::fprintf(out, "| Quantity | Subject | n | p50 | p95 | max | Target | Met |\n");
    std::fprintf(out, "|---|---|---|---|---|---|---|---|\n");
    for (const Row& row : m_rows) {
        const char* met = !row.target ? "" : (Met(row) ? "yes" : "**no**");
        std::fprintf(out, "| %s | %s | %zu | %.3f %s | %.3f %s | %.3f %s | %s | %s |\n", row.quantity.c_str(),
                     row.subject.c_str(), row.samples.Size(), row.samples.Median(), row.unit.c_str(),
                     row.samples.Percentile(95), row.unit.c_str(), row.samples.Max(), row.unit.c_str(),
                     TargetText(row).c_str(), met);
    }
}

void ResultTable::PrintJson(std::FILE* out) const {
    std::fprintf(out, "{\"context\": %s, \"rows\": [", JsonText(m_context).c_str());
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const Row& row = m_rows[i];
        std::fprintf(out,
                     "%s\n  {\"quantity\": %s, \"subject\": %s, \"unit\": %s, \"n\": %zu, \"p50\": %.6g, "
                     "\"p95\": %.6g, \"max\": %.6g",
                     i == 0 ? "" : ",", JsonText(row.quantity).c_str(), JsonText(row.subject).c_str(),
                     JsonText(row.unit).c_str(), row.samples.Size(), row.samples.Median(),
                     row.samples.Percentile(95), row.samples.Max());
        if (row.target) {
            std::fprintf(out, ", \"target\": %s, \"met\": %s", JsonText(TargetText(row)).c_str(),
                         Met(row) ? "true" : "false");
        }
        std::fprintf(out, "}");
    }
    std::fprintf(out, "\n]}\n");
}

}  // namespace access_arbiter::bench
