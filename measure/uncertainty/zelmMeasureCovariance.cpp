// The exported functions of a rig's covariance.
#include <algorithm>

#include "covarianceBlock.h"
#include "covarianceCheck.h"
#include "records.h"

using namespace zelm::measure;

namespace {

static_assert(sizeof(ZelmMeasureCovariance::matrix) == sizeof(CalibrationCovariance::matrix));
constexpr bool isAt(std::size_t place, int inTheInterface) {
    return static_cast<std::size_t>(inTheInterface) == place;
}
static_assert(isAt(kFx, ZELM_MEASURE_LEFT_FX) && isAt(kSkew, ZELM_MEASURE_LEFT_SKEW) &&
              isAt(kFy, ZELM_MEASURE_LEFT_FY) && isAt(kCx, ZELM_MEASURE_LEFT_CX) && isAt(kCy, ZELM_MEASURE_LEFT_CY) &&
              isAt(kK1, ZELM_MEASURE_LEFT_K1) && isAt(kK2, ZELM_MEASURE_LEFT_K2));
static_assert(kLeftCamera == 0 && isAt(kRightCamera, ZELM_MEASURE_RIGHT_FX) &&
              isAt(kRelativeRotation, ZELM_MEASURE_RELATIVE_ROTATION) &&
              isAt(kRelativeTranslation, ZELM_MEASURE_RELATIVE_TRANSLATION) &&
              isAt(kFrameRotation, ZELM_MEASURE_FRAME_ROTATION) &&
              isAt(kFrameTranslation, ZELM_MEASURE_FRAME_TRANSLATION) && isAt(kRigParameters, ZELM_MEASURE_PARAMETERS));

CalibrationCovariance covarianceFrom(const ZelmMeasureCovariance* given) {
    const ZelmMeasureCovariance record = recordOf(given);
    require(record.size >= static_cast<std::int32_t>(sizeof record), "a covariance's record is not whole");
    CalibrationCovariance covariance;
    std::copy(std::begin(record.matrix), std::end(record.matrix), covariance.matrix.begin());
    covariance.noise = record.noise;
    covariance.freedom = record.freedom;
    return soundCovariance(covariance);
}

// As withRig(), for work that gives the rig another covariance.
template <class Work>
std::int32_t withChangedRig(ZelmMeasureRig* handle, Work work) {
    return withRig(handle, [&](const Rig&) { handle->rig.covariance = work(); });
}

}  // namespace

std::int32_t zelmMeasureRigCovariance(ZelmMeasureRig* handle, ZelmMeasureCovariance* covariance) {
    return withRig(handle, [&](const Rig& rig) {
        recordOf(covariance);
        const CalibrationCovariance& own = covarianceOf(rig);
        ZelmMeasureCovariance filled{};
        filled.noise = own.noise;
        filled.freedom = own.freedom;
        std::copy(own.matrix.begin(), own.matrix.end(), filled.matrix);
        giveRecord(filled, covariance);
    });
}

std::int32_t zelmMeasureRigSetCovariance(ZelmMeasureRig* handle, const ZelmMeasureCovariance* covariance) {
    return withChangedRig(handle, [&]() -> std::optional<CalibrationCovariance> {
        return covariance == nullptr ? std::nullopt : std::optional(covarianceFrom(covariance));
    });
}

std::int32_t zelmMeasureCovarianceSize(ZelmMeasureRig* handle, std::int64_t* size) {
    return withRig(handle, [&](const Rig& rig) {
        require(size != nullptr, "the size's place is NULL");
        static_cast<void>(covarianceOf(rig));
        *size = static_cast<std::int64_t>(kCovarianceBytes);
    });
}

std::int32_t zelmMeasureCovarianceSave(ZelmMeasureRig* handle, std::int64_t capacity, void* bytes) {
    return withRig(handle, [&](const Rig& rig) {
        require(bytes != nullptr, "the bytes are NULL");
        require(capacity >= static_cast<std::int64_t>(kCovarianceBytes), "there is no room for all bytes");
        const CovarianceBlock block = covarianceBlock(rig);
        std::copy(block.begin(), block.end(), static_cast<unsigned char*>(bytes));
    });
}

std::int32_t zelmMeasureCovarianceLoad(ZelmMeasureRig* handle, const void* bytes, std::int64_t size) {
    return withChangedRig(handle, [&] {
        require(bytes != nullptr && size >= 0, "the bytes are NULL, or their number is negative");
        return readCovariance(handle->rig, {static_cast<const unsigned char*>(bytes), static_cast<std::size_t>(size)});
    });
}
