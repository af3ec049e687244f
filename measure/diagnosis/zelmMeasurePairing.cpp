// The exported functions that judge a set of images.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "pairingCauses.h"
#include "readPlaces.h"
#include "records.h"
#include "rig.h"

using namespace zelm::measure;

namespace {

constexpr std::int64_t kMaxDots = 1 << 24;  // of an image; no image has more

void checkSet(const ZelmMeasureImageSet& set) {
    require(set.pattern != nullptr && set.cameras != nullptr, "the plate or the cameras are NULL");
    const Pattern& p = *set.pattern;
    require(
        p.d0 > 0.0 && p.d1 > 0.0 && p.d2 > 0.0 && p.d3 > 0.0 && p.d4 > 0.0 && p.d5 > 0.0 && p.d6 > 0.0 && p.d7 > 0.0,
        "a length of the plate is not greater than 0");
    const Zelm2ViewCameraDesc& c = *set.cameras;
    require(c.leftWidth > 0 && c.leftHeight > 0 && c.rightWidth > 0 && c.rightHeight > 0,
            "an image size is not greater than 0");
    const auto isPerspective = [](std::int32_t model) {
        return model == ZELM_CAMERA_PERSPECTIVE || model == ZELM_CAMERA_TILTED;
    };
    require(isPerspective(c.leftModel) && isPerspective(c.rightModel), "a camera is not perspective");
    require(set.views >= 0, "the number of views is negative");
}

std::vector<ImageDots> imagesOf(const ZelmMeasureImageSet& set, const std::int64_t* counts, const double* plane,
                                const double* pixels) {
    std::vector<ImageDots> images(static_cast<std::size_t>(set.views));
    require(counts != nullptr || images.empty(), "the numbers of dots are NULL");
    std::size_t at = 0;
    for (std::size_t i = 0; i < images.size(); ++i) {
        require(counts[i] >= 0 && counts[i] <= kMaxDots, "a number of dots is negative or too large");
        require(counts[i] == 0 || (plane != nullptr && pixels != nullptr), "the dots are NULL");
        images[i].resize(static_cast<std::size_t>(counts[i]));
        for (Dot& dot : images[i]) {
            const double column = plane[at] / set.pattern->d4;
            const double row = plane[at + 1] / set.pattern->d5;
            require(std::fabs(column) < 1e6 && std::fabs(row) < 1e6 && std::isfinite(pixels[at] + pixels[at + 1]),
                    "a dot is nowhere near the plate, or not finite");
            dot = {{static_cast<int>(std::lround(column)), static_cast<int>(std::lround(row))},
                   {plane[at], plane[at + 1]},
                   {pixels[at], pixels[at + 1]}};
            at += 2;
        }
    }
    return images;
}

std::int32_t imageNumber(std::size_t image) {
    return image == kNoImage ? -1 : static_cast<std::int32_t>(image);
}

std::int32_t sideLetter(const std::array<bool, kSides>& sides) {
    return sides[kLeft] == sides[kRight] ? 0 : sides[kLeft] ? 'L' : 'R';
}

ZelmMeasurePairedView viewRecord(const ViewJudgement& view) {
    ZelmMeasurePairedView r{};
    r.fate = static_cast<std::int32_t>(view.fate);
    const bool hasSide = view.fate == ViewFate::copy || view.fate == ViewFate::stored;
    r.side = hasSide ? (view.side == kLeft ? 'L' : 'R') : 0;
    r.quarterTurns = view.storing.quarterTurns;
    r.isMirrored = view.storing.isMirrored ? 1 : 0;
    r.leftFits = imageNumber(view.fitsImage[kLeft]);
    r.rightFits = imageNumber(view.fitsImage[kRight]);
    r.copyOf = imageNumber(view.copyOf);
    r.sameView = imageNumber(view.sameView);
    r.cause = -1;
    r.misfit = std::isfinite(view.misfit) ? view.misfit : -1.0;
    r.leftTilt = view.tilts[kLeft];
    r.rightTilt = view.tilts[kRight];
    return r;
}

ZelmMeasureSetCause causeRecord(const SetCause& cause) {
    ZelmMeasureSetCause r{};
    r.kind = static_cast<std::int32_t>(cause.kind);
    r.side = sideLetter(cause.sides);
    r.offset = cause.offset;
    r.isCyclic = cause.isCyclic ? 1 : 0;
    r.quarterTurns = cause.quarterTurns;
    r.views = static_cast<std::int32_t>(cause.views.size());
    r.turn = cause.difference.turn;
    r.shift = cause.difference.shift;
    return r;
}

// Records stand as far from one another as the caller's are large.
template <class Record>
void giveList(const std::vector<Record>& records, Record* to, std::size_t capacity) {
    if (to == nullptr || capacity == 0) {
        return;
    }
    const std::int32_t size = to->size;
    auto* at = reinterpret_cast<unsigned char*>(to);
    for (std::size_t i = 0; i < std::min(records.size(), capacity); ++i) {
        Record record = records[i];
        record.size = size;
        std::memcpy(at, &record, std::min(sizeof record, static_cast<std::size_t>(size)));
        at += size;
    }
}

template <class Record>
void checkList(const Record* records, std::int64_t capacity) {
    require(capacity >= 0, "a capacity is negative");
    if (records != nullptr && capacity > 0) {
        recordOf(records);
        require(records->size % 8 == 0, "a record's size is not a multiple of 8");
    }
}

}  // namespace

std::int32_t zelmMeasureReadDots(const Zelm2ViewCalib* calib, std::int32_t side, std::int32_t view,
                                 const ZelmMeasureDots* dots, std::int64_t* count) {
    return guarded(nullptr, [&] {
        require(count != nullptr, "the number's place is NULL");
        const std::vector<ReadDot> list = readPlaces(calib, sideOf(side), view);
        if (dots != nullptr) {
            const ZelmMeasureDots out = recordOf(dots);
            require(out.capacity >= 0, "the capacity is negative");
            const auto put = [](auto* array, std::size_t i, auto x, auto y) {
                if (array != nullptr) {
                    array[2 * i] = x;
                    array[2 * i + 1] = y;
                }
            };
            for (std::size_t i = 0; i < std::min(list.size(), static_cast<std::size_t>(out.capacity)); ++i) {
                put(out.grid, i, list[i].column, list[i].row);
                put(out.plane, i, list[i].plane.x, list[i].plane.y);
                put(out.pixels, i, list[i].pixel.x, list[i].pixel.y);
            }
        }
        *count = static_cast<std::int64_t>(list.size());
    });
}

std::int32_t zelmMeasurePairImages(const ZelmMeasureImageSet* images, ZelmMeasurePairedView* views,
                                   ZelmMeasureSetCause* causes, std::int64_t capacity, ZelmMeasurePairing* pairing) {
    return guarded(nullptr, [&] {
        const ZelmMeasureImageSet given = recordOf(images);
        checkSet(given);
        checkList(views, given.views);
        checkList(causes, capacity);
        recordOf(pairing);
        SetOfImages set;
        set.plate = *given.pattern;
        set.models = {given.cameras->leftModel, given.cameras->rightModel};
        set.sizes = {ImageSize{given.cameras->leftWidth, given.cameras->leftHeight},
                     ImageSize{given.cameras->rightWidth, given.cameras->rightHeight}};
        set.images = {imagesOf(given, given.leftCounts, given.leftPlane, given.leftPixels),
                      imagesOf(given, given.rightCounts, given.rightPlane, given.rightPixels)};
        const SetJudgement judgement = judgeSet(set);
        const std::vector<SetCause> list = causesOf(judgement);
        std::vector<ZelmMeasurePairedView> viewRecords;
        viewRecords.reserve(judgement.views.size());
        for (const ViewJudgement& view : judgement.views) {
            viewRecords.push_back(viewRecord(view));
        }
        std::vector<ZelmMeasureSetCause> causeRecords;
        causeRecords.reserve(list.size());
        for (const SetCause& cause : list) {
            for (const std::size_t view : cause.views) {
                if (cause.kind != SetCauseKind::sideMirrored && viewRecords[view].cause < 0) {
                    viewRecords[view].cause = static_cast<std::int32_t>(causeRecords.size());
                }
            }
            causeRecords.push_back(causeRecord(cause));
        }
        giveList(viewRecords, views, viewRecords.size());
        giveList(causeRecords, causes, static_cast<std::size_t>(capacity));
        ZelmMeasurePairing summary{};
        summary.causes = static_cast<std::int32_t>(causeRecords.size());
        summary.agreeing = static_cast<std::int32_t>(judgement.agreeing);
        summary.isDetermined = judgement.isDetermined ? 1 : 0;
        summary.noise = judgement.noise;
        summary.limit = judgement.limit;
        giveRecord(summary, pairing);
    });
}
