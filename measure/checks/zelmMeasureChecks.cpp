// The exported function of the checks.
#include <zelmMeasure.h>

#include <algorithm>

#include "adjustmentChecks.h"
#include "adjustmentHandle.h"
#include "checkWords.h"
#include "records.h"

using namespace zelm::measure;

namespace {

ZelmMeasureCheck recordOfCheck(const Check& check) {
    ZelmMeasureCheck r{};
    r.kind = static_cast<std::int32_t>(check.kind);
    r.verdict = static_cast<std::int32_t>(check.verdict);
    r.view = check.view;
    r.side = check.side < 0 ? 0 : check.side == kLeft ? 'L' : 'R';
    r.p = check.p;
    r.value = check.value;
    r.deviation = check.deviation;
    r.limit = check.limit;
    r.turnDegrees = check.turnDegrees;
    r.shift = check.shift;
    const std::string words = wordsOf(check);
    words.copy(r.text, sizeof r.text - 1);
    return r;
}

// Records stand as far from one another as the caller's are large.
void give(const std::vector<ZelmMeasureCheck>& records, ZelmMeasureCheck* to, std::size_t capacity) {
    const std::int32_t size = to->size;
    auto* at = reinterpret_cast<unsigned char*>(to);
    for (std::size_t i = 0; i < std::min(records.size(), capacity); ++i) {
        ZelmMeasureCheck record = records[i];
        record.size = size;
        std::memcpy(at, &record, std::min(sizeof record, static_cast<std::size_t>(size)));
        at += size;
    }
}

}  // namespace

std::int32_t zelmMeasureAdjustChecks(ZelmMeasureAdjustment* handle, ZelmMeasureCheck* checks, std::int64_t capacity,
                                     std::int64_t* count) {
    return withAdjustment(handle, [&](const Adjustment& adjustment) {
        require(count != nullptr, "the number's place is NULL");
        require(capacity >= 0, "the capacity is negative");
        const bool isGiven = checks != nullptr && capacity > 0;
        if (isGiven) {
            recordOf(checks);
            require(checks->size % 8 == 0, "a record's size is not a multiple of 8");
        }
        adjustment.requireCurrent();
        std::vector<ZelmMeasureCheck> records;
        for (const Check& check :
             checksOf({&adjustment.state(), &adjustment.views(), &adjustment.solvedOptions(), &adjustment.summary(),
                       &adjustment.measuredScales(), adjustment.isPair(), adjustment.hasPlate()})) {
            records.push_back(recordOfCheck(check));
        }
        if (isGiven) {
            give(records, checks, static_cast<std::size_t>(capacity));
        }
        *count = static_cast<std::int64_t>(records.size());
    });
}
