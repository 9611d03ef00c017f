#include "tools/doctor/finding.h"

#include <algorithm>
#include <utility>

namespace doctor {

void Findings::ok(CheckId id, std::string found) { mAll.push_back({id.check().id, Status::ok, std::move(found), {}}); }

void Findings::fail(CheckId id, std::string found) {
    const Check& check = id.check();
    mAll.push_back({check.id, check.failure, std::move(found), check.remedy});
}

void Findings::tell(CheckId id, bool isOk, std::string found) {
    if (isOk) {
        ok(id, std::move(found));
    } else {
        fail(id, std::move(found));
    }
}

Status Findings::worst() const {
    const auto worst = std::ranges::max_element(mAll, {}, &Finding::status);
    return worst == mAll.end() ? Status::ok : worst->status;
}

bool Findings::hasFailed(CheckId id) const {
    return std::ranges::any_of(
        mAll, [&](const Finding& finding) { return finding.id == id.check().id && finding.status != Status::ok; });
}

const char* statusName(Status status) {
    switch (status) {
        case Status::ok:
            return "ok";
        case Status::warning:
            return "warning";
        default:
            return "error";
    }
}

}  // namespace doctor
