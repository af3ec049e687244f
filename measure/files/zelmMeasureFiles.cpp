// The exported functions of files of other programs.
#include <cmath>
#include <cstring>

#include "importedRig.h"
#include "openRig.h"
#include "pairFigures.h"
#include "readers.h"
#include "records.h"

using namespace zelm::measure;

namespace {

constexpr double kMillimetre = 0.001;       // metres: the plate unit unless another is told
constexpr double kDefaultTolerance = 0.05;  // pixels: a dot's centre is not read better in common images
constexpr int kMaxSide = 1 << 20;           // pixels

bool hasFileOfEach(std::int32_t format) {
    return format == ZELM_MEASURE_FILE_ROS || format == ZELM_MEASURE_FILE_MRCAL;
}

void requireFormat(std::int32_t format) {
    require(format >= ZELM_MEASURE_FILE_OPENCV && format <= ZELM_MEASURE_FILE_NUMPY, "no such format");
}

double metresOfUnit(double metres) {
    require(metres >= 0.0 && std::isfinite(metres), "the metres of a plate unit are no length");
    return metres == 0.0 ? kMillimetre : metres;
}

std::string fileOf(const Rig& rig, const ZelmMeasureExportOptions& o, std::int32_t side) {
    requireFormat(o.format);
    const double metres = metresOfUnit(o.metres);
    const char camera = hasFileOfEach(o.format) ? sideOf(side) : 'L';
    require(hasFileOfEach(o.format) || side == 0, "this format has one file: the side is 0");
    const PairFigures figures = figuresOf(rig);
    switch (o.format) {
        case ZELM_MEASURE_FILE_OPENCV:
            return openCvText(figures);
        case ZELM_MEASURE_FILE_ROS:
            return rosText(figures, camera, metres);
        case ZELM_MEASURE_FILE_KALIBR:
            return kalibrText(figures, metres);
        case ZELM_MEASURE_FILE_MATLAB:
            return matlabBytes(figures);
        case ZELM_MEASURE_FILE_MRCAL:
            return mrcalText(figures, camera, metres);
        default:
            return numpyBytes(figures);
    }
}

ZelmMeasureExportLoss lossOf(const Rig& rig, const ZelmMeasureExportOptions& o) {
    requireFormat(o.format);
    const PairFigures figures = figuresOf(rig);
    const bool knowsSkew = o.format == ZELM_MEASURE_FILE_MATLAB || o.format == ZELM_MEASURE_FILE_NUMPY;
    const bool hasFrame = o.format != ZELM_MEASURE_FILE_ROS && o.format != ZELM_MEASURE_FILE_KALIBR;
    ZelmMeasureExportLoss loss{};
    loss.frame = hasFrame || isNoMotion(figures.left.pose) ? 0 : 1;
    loss.covariance = rig.covariance ? 1 : 0;
    loss.views = static_cast<std::int32_t>(rig.views()) - 1;
    loss.skewLeft = knowsSkew ? 0.0 : figures.left.skewEffect();
    loss.skewRight = knowsSkew ? 0.0 : figures.right.skewEffect();
    return loss;
}

std::vector<std::string_view> filesOf(std::int32_t count, const void* const* files, const std::int64_t* sizes,
                                      std::int32_t format) {
    const std::int32_t least = hasFileOfEach(format) ? 2 : 1;
    const std::int32_t most = least == 2 || format == ZELM_MEASURE_FILE_OPENCV ? 2 : 1;
    require(count >= least && count <= most, "this format takes another number of files");
    std::vector<std::string_view> views;
    views.reserve(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i) {
        require(files[i] != nullptr && sizes[i] >= 0, "a file is NULL");
        views.emplace_back(static_cast<const char*>(files[i]), static_cast<std::size_t>(sizes[i]));
    }
    return views;
}

ForeignPair pairOf(std::span<const std::string_view> files, std::int32_t format, double metres) {
    switch (format) {
        case ZELM_MEASURE_FILE_OPENCV:
            return openCvPair(files);
        case ZELM_MEASURE_FILE_ROS:
            return rosPair(files[0], files[1], metres);
        case ZELM_MEASURE_FILE_KALIBR:
            return kalibrPair(files[0], metres);
        case ZELM_MEASURE_FILE_MATLAB:
            return matlabPair(files[0]);
        case ZELM_MEASURE_FILE_MRCAL:
            return mrcalPair(files[0], files[1], metres);
        default:
            return numpyPair(files[0]);
    }
}

// The caller's sizes serve where the files have none.
void completeSizes(ForeignPair& pair, const ZelmMeasureImportOptions& o) {
    const auto isSize = [](std::int32_t side) { return side >= 0 && side <= kMaxSide; };
    require(isSize(o.leftWidth) && isSize(o.leftHeight) && isSize(o.rightWidth) && isSize(o.rightHeight),
            "an image size cannot be meant");
    if (pair.left.width == 0 || pair.left.height == 0) {
        pair.left.width = o.leftWidth;
        pair.left.height = o.leftHeight;
    }
    if (pair.right.width == 0 || pair.right.height == 0) {
        pair.right.width = o.rightWidth > 0 ? o.rightWidth : o.leftWidth;
        pair.right.height = o.rightHeight > 0 ? o.rightHeight : o.leftHeight;
    }
}

double toleranceOf(const ZelmMeasureImportOptions& o) {
    require(o.tolerance >= 0.0, "the tolerance is negative");
    return o.tolerance == 0.0 ? kDefaultTolerance : o.tolerance;
}

}  // namespace

std::int32_t zelmMeasureExport(ZelmMeasureRig* handle, const ZelmMeasureExportOptions* options, std::int32_t side,
                               std::int64_t capacity, void* bytes, std::int64_t* length) {
    return withRig(handle, [&](const Rig& rig) {
        require(length != nullptr, "the length's place is NULL");
        const std::string file = fileOf(rig, recordOf(options), side);
        const auto size = static_cast<std::int64_t>(file.size());
        require(bytes == nullptr || capacity >= size, "the file is longer than its place");
        if (bytes != nullptr) {
            std::memcpy(bytes, file.data(), file.size());
        }
        *length = size;
    });
}

std::int32_t zelmMeasureExportLoss(ZelmMeasureRig* handle, const ZelmMeasureExportOptions* options,
                                   ZelmMeasureExportLoss* loss) {
    return withRig(handle, [&](const Rig& rig) { giveRecord(lossOf(rig, recordOf(options)), loss); });
}

std::int32_t zelmMeasureImport(const ZelmMeasureImportOptions* options, std::int32_t count, const void* const* files,
                               const std::int64_t* sizes, ZelmMeasureRig** rig, ZelmMeasureImported* imported) {
    if (options == nullptr || files == nullptr || sizes == nullptr || rig == nullptr || *rig != nullptr) {
        return ZELM_ERR_PARAM;
    }
    return openRig(rig, [&] {
        const ZelmMeasureImportOptions o = recordOf(options);
        requireFormat(o.format);
        const double metres = metresOfUnit(o.metres);
        ForeignPair pair = pairOf(filesOf(count, files, sizes, o.format), o.format, metres);
        completeSizes(pair, o);
        ImportedRig made = importedRig(pair, toleranceOf(o));
        if (imported != nullptr) {
            giveRecord(ZelmMeasureImported{0, pair.isCameraFrame ? 1 : 0, made.left.worst, made.left.rms,
                                           made.right.worst, made.right.rms},
                       imported);
        }
        return std::move(made.rig);
    });
}
