// Parameters of one camera from views of the plate: closed-form start values, then a joint refinement.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "cameraData.h"
#include "cameraModel.h"
#include "cameraNormalEq.h"
#include "cameraRefine.h"
#include "telecentricClosedForm.h"
#include "viewPose.h"
#include "workBuffer.h"
#include "zelm/calib.h"
#include "zelm/mat.h"
#include "zelm/math.h"
#include "zhangClosedForm.h"

namespace zelm {
namespace {

constexpr std::int32_t kMinViews = 3;  // of a perspective camera
constexpr std::int32_t kMinDots = 4;   // of a view
constexpr int kMaxTiltRounds = 5;
constexpr double kNoShear = 1e-9;          // gamma over beta; moves no dot of a normalised image noticeably
constexpr double kPlaceholderDepth = 1.0;  // plane units; parallel projection does not depend on it

std::int32_t memoryOr(std::int32_t status, std::int32_t other) {
    return status == ZELM_ERR_MEMORY ? status : other;
}

// The count of all dots; 0 when a view has too few for its homography.
std::uint64_t countDots(std::int32_t views, const Zelm2ViewPtnEntry* entries) {
    std::uint64_t total = 0;
    for (std::int32_t v = 0; v < views; ++v) {
        const Zelm2ViewPtnEntry& entry = entries[v];
        if (entry.count < kMinDots || entry.plane == nullptr || entry.image == nullptr) {
            return 0;
        }
        total += static_cast<std::uint64_t>(entry.count);
    }
    return total;
}

Normalisation normalise(WorkBuffer<Point2d>* points) {
    double T[9];
    double Tinv[9];
    zelmCalibNormalizeData(2, static_cast<std::int32_t>(points->size()), &points->data()->x, &points->data()->x, T,
                           Tinv);
    return {T[0], Tinv[2], Tinv[5]};
}

std::int32_t gather(std::int32_t views, const Zelm2ViewPtnEntry* entries, std::int32_t model, CameraData* data) {
    const std::uint64_t total = countDots(views, entries);
    if (total == 0) {
        return ZELM_ERR_CALIB_HOMOGRAPHY;
    }
    if (total > INT32_MAX || views > INT32_MAX / 2) {
        return ZELM_ERR_MEMORY;  // cannot be counted by the matrix toolkit
    }
    data->first = WorkBuffer<std::size_t>(static_cast<std::size_t>(views) + 1);
    data->plane = WorkBuffer<Point2d>(static_cast<std::size_t>(total));
    data->image = WorkBuffer<Point2d>(static_cast<std::size_t>(total));
    if (!data->first.ok() || !data->plane.ok() || !data->image.ok()) {
        return ZELM_ERR_MEMORY;
    }
    data->first[0] = 0;
    for (std::size_t v = 0; v < data->views(); ++v) {
        const std::size_t begin = data->first[v];
        const auto count = static_cast<std::size_t>(entries[v].count);
        std::copy_n(entries[v].plane, count, data->plane.data() + begin);
        std::copy_n(entries[v].image, count, data->image.data() + begin);
        data->first[v + 1] = begin + count;
    }
    data->planeUnits = normalise(&data->plane);
    data->imageUnits = normalise(&data->image);
    data->parallel = model == ZELM_CAMERA_PARALLEL;
    return ZELM_OK;
}

// H maps the normalised plate to the normalised image.
std::int32_t estimateHomographies(const CameraData& data, double* homographies) {
    for (std::size_t v = 0; v < data.views(); ++v) {
        const std::size_t begin = data.first[v];
        const auto count = static_cast<std::int32_t>(data.first[v + 1] - begin);
        const std::int32_t status = zelmCalibCalcHomography(count, data.plane.data() + begin, data.image.data() + begin,
                                                            -1.0, homographies + 9 * v);
        if (status < 0) {
            return memoryOr(status, ZELM_ERR_CALIB_HOMOGRAPHY);
        }
    }
    return ZELM_OK;
}

std::int32_t startPerspective(const CameraData& data, const double* homographies, CameraUnknowns* unknowns) {
    if (const std::int32_t status = zhangIntrinsics(data.views(), homographies, unknowns->intrinsics); status < 0) {
        return status;
    }
    double A[9];
    double Ainv[9];
    writeCameraMatrix(unknowns->intrinsics, A);
    if (const std::int32_t status = zelmMatInvert(3, A, Ainv); status < 0) {
        return memoryOr(status, ZELM_ERR_CALIB_ESTIMATE);
    }
    for (std::size_t v = 0; v < data.views(); ++v) {
        const std::int32_t status = poseFromHomography(Ainv, homographies + 9 * v, unknowns->poses + v * kPose);
        if (status < 0) {
            return status;
        }
    }
    return ZELM_OK;
}

// preset: the reference distances in alpha and beta, the image centre in cx and cy.
std::int32_t startParallel(const CameraData& data, const Zelm2ViewPtnEntry& view, const ZelmCameraIntrinsics& preset,
                           const double* homography, CameraUnknowns* unknowns) {
    ReferenceDots dots{};
    if (!findReferenceDots(data.dots(), view.plane, preset.alpha, preset.beta, &dots)) {
        return ZELM_ERR_CALIB_ESTIMATE;
    }
    const auto offset = [&](std::size_t to) {
        return Point2d{data.image[to].x - data.image[dots.origin].x, data.image[to].y - data.image[dots.origin].y};
    };
    const ImageScales scales = scalesFromBaselines(offset(dots.onX), data.planeUnits.s * preset.alpha, offset(dots.onY),
                                                   data.planeUnits.s * preset.beta);
    unknowns->intrinsics[kAlpha] = scales.x;
    unknowns->intrinsics[kBeta] = scales.y;
    unknowns->intrinsics[kCx] = data.imageUnits.s * (preset.cx - data.imageUnits.mx);
    unknowns->intrinsics[kCy] = data.imageUnits.s * (preset.cy - data.imageUnits.my);
    return headOnPose(homography, unknowns->intrinsics, unknowns->poses);
}

// The intrinsics in pixels and plane units; what is reserved stays.
void writeIntrinsics(const CameraData& data, const double* k, std::int32_t model, ZelmCameraIntrinsics* out) {
    // Under parallel projection normalised coordinates are lengths on the plate, else they are without a unit.
    const double length = data.parallel ? data.planeUnits.s : 1.0;
    const double scale = length / data.imageUnits.s;
    const double pixels[kIntrinsics] = {k[kAlpha] * scale,
                                        k[kBeta] * scale,
                                        k[kGamma] * scale,
                                        k[kCx] / data.imageUnits.s + data.imageUnits.mx,
                                        k[kCy] / data.imageUnits.s + data.imageUnits.my,
                                        k[kK1] * (length * length),
                                        k[kK2] * (length * length) * (length * length)};
    writeCameraMatrix(pixels, out->A);
    out->theta = model == ZELM_CAMERA_TILTED ? std::atan2(out->A[1], out->A[4]) : 0.0;
    const double cosTheta = std::cos(out->theta);
    out->alpha = pixels[kAlpha];
    out->beta = pixels[kBeta] * cosTheta;
    out->gamma = pixels[kGamma] * cosTheta;
    out->cx = pixels[kCx];
    out->cy = pixels[kCy];
    out->k1 = pixels[kK1];
    out->k2 = pixels[kK2];
}

void writeExtrinsics(const CameraData& data, const double* pose, ZelmCameraExtrinsics* out) {
    const Normalisation& plane = data.planeUnits;
    std::copy_n(pose + kRotation, 3, out->r);
    zelmCalibRodrigues(0, out->r, out->R);
    for (std::size_t i = 0; i < 3; ++i) {
        out->t[i] = pose[kTranslation + i] / plane.s - (out->R[3 * i] * plane.mx + out->R[3 * i + 1] * plane.my);
    }
    if (data.parallel) {
        out->t[2] = kPlaceholderDepth;
    }
}

// The refinement holds the tilt of a parallel view and lets the shear take up what of it the image shows; the shear is
// then read as a tilt. The two meet at once when there is no lens distortion, else within a few rounds, because the
// distortion's radius is measured in the camera's coordinates.
std::int32_t refineParallel(const CameraData& data, double robustThreshold, CameraUnknowns* unknowns) {
    for (int round = 0;; ++round) {
        if (const std::int32_t status = refineCamera(data, robustThreshold, unknowns); status < 0) {
            return status;
        }
        double* const k = unknowns->intrinsics;
        if (round == kMaxTiltRounds || (round > 0 && std::fabs(k[kGamma]) <= kNoShear * std::fabs(k[kBeta]))) {
            return ZELM_OK;
        }
        if (const std::int32_t status = shearToTilt(k, unknowns->poses); status < 0) {
            return status;
        }
    }
}

bool isUsable(const CameraUnknowns& unknowns, std::size_t views) {
    const auto finite = [](double value) { return std::isfinite(value); };
    return std::all_of(unknowns.intrinsics, unknowns.intrinsics + kIntrinsics, finite) &&
           std::all_of(unknowns.poses, unknowns.poses + views * kPose, finite);
}

std::int32_t calibrateCamera(std::int32_t views, const Zelm2ViewPtnEntry* entries, double robustThreshold,
                             ZelmCameraIntrinsics* intrinsics, ZelmCameraExtrinsics* extrinsics, double* error,
                             std::int32_t model) {
    CameraData data;
    if (const std::int32_t status = gather(views, entries, model, &data); status < 0) {
        return status;
    }
    WorkBuffer<double> homographies(data.views(), 9);
    WorkBuffer<double> poses(data.views(), kPose);
    if (!homographies.ok() || !poses.ok()) {
        return ZELM_ERR_MEMORY;
    }
    if (const std::int32_t status = estimateHomographies(data, homographies.data()); status < 0) {
        return status;
    }
    CameraUnknowns unknowns;
    unknowns.poses = poses.data();
    std::int32_t status = data.parallel ? startParallel(data, entries[0], *intrinsics, homographies.data(), &unknowns)
                                        : startPerspective(data, homographies.data(), &unknowns);
    if (status < 0) {
        return status;
    }
    if (!isUsable(unknowns, data.views())) {
        return ZELM_ERR_CALIB_ESTIMATE;
    }
    status = data.parallel ? refineParallel(data, robustThreshold, &unknowns)
                           : refineCamera(data, robustThreshold, &unknowns);
    if (status < 0) {
        return status;
    }
    writeIntrinsics(data, unknowns.intrinsics, model, intrinsics);
    for (std::size_t v = 0; v < data.views(); ++v) {
        writeExtrinsics(data, unknowns.poses + v * kPose, &extrinsics[v]);
    }
    if (error != nullptr) {
        *error = meanReprojectionDistance(data, unknowns) / data.imageUnits.s;
    }
    return ZELM_OK;
}

}  // namespace
}  // namespace zelm

int32_t zelmCalibCameraParam(int32_t iViews, const Zelm2ViewPtnEntry* taViews, double dRobustThreshold,
                             ZelmCameraIntrinsics* tIntrinsics, ZelmCameraExtrinsics* taExtrinsics, double* dError,
                             int32_t iModel) {
    if (!zelm::isCameraModel(iModel)) {
        return ZELM_ERR_PARAM;
    }
    if (iViews < zelm::kMinViews && iModel < ZELM_CAMERA_PARALLEL) {
        return ZELM_ERR_PARAM;
    }
    if (iViews != 1 && iModel == ZELM_CAMERA_PARALLEL) {
        return ZELM_ERR_PARAM;
    }
    if (taViews == nullptr || tIntrinsics == nullptr || taExtrinsics == nullptr) {
        return ZELM_ERR_PARAM;
    }
    return zelm::calibrateCamera(iViews, taViews, dRobustThreshold, tIntrinsics, taExtrinsics, dError, iModel);
}
