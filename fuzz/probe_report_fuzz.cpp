// Any bytes as the report of the probe that somebody sends in: its rows are the same when it is written and read again.
#include <cstddef>
#include <cstdint>

#include "fuzz/check.h"
#include "tools/probe/report.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto report = probe::readReport({reinterpret_cast<const char*>(data), size});
    if (!report) return 0;
    const auto again = probe::readReport(probe::textOf(*report));
    check(again && again->rows.size() == report->rows.size());
    for (std::size_t i = 0; i < again->rows.size(); ++i) {
        check(again->rows[i].id == report->rows[i].id && again->rows[i].outcome == report->rows[i].outcome);
    }
    return 0;
}
