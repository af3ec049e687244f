#include "planCandidates.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

#include "adjustStart.h"
#include "fault.h"

namespace zelm::measure {
namespace {

constexpr double kDegree = std::numbers::pi / 180.0;
constexpr std::array kTilts{15.0 * kDegree, 30.0 * kDegree, 45.0 * kDegree};
constexpr int kAzimuths = 8;
constexpr std::array kRolls{0.0, 90.0 * kDegree};
constexpr std::array kLevels{-1.0, 0.0, 1.0};        // of the volume, along each axis
constexpr std::array kShares{1.0, 0.75, 0.5, 0.25};  // of the way to the volume's sides

Matrix3 rotationOf(const PlateHold& hold) {
    const double s = std::sin(hold.azimuth);
    const double c = std::cos(hold.azimuth);
    const Matrix3 tilt = measure::rotationOf({hold.tilt * s, -hold.tilt * c, 0.0});
    return product(tilt, measure::rotationOf({0.0, 0.0, hold.roll}));
}

bool isReadable(const PlanPlate& plate, const PlateSight& sight, double maxTilt) {
    return sight.markers && std::min(sight.dots[kLeft], sight.dots[kRight]) >= plate.minDots &&
           std::max(sight.tilts[kLeft], sight.tilts[kRight]) <= maxTilt && sight.dotArea >= plate.minDotArea;
}

// Why a plate that is held straight in the middle of the volume cannot be read.
[[noreturn]] void refusePlate(const PlanPlate& plate, const PlateSight& sight, double maxTilt) {
    const std::string begin = "nowhere in the volume can both cameras read the plate; straight in its middle ";
    const double least = std::min(sight.dots[kLeft], sight.dots[kRight]);
    if (std::max(sight.tilts[kLeft], sight.tilts[kRight]) > maxTilt) {
        refuse(begin + "it is tilted too much against a camera: give the cameras a smaller angle");
    }
    if (sight.dotArea < plate.minDotArea) {
        refuse(begin + "its dots have " + std::to_string(std::lround(sight.dotArea)) +
               " pixels: take a plate of larger dots, or a longer focal length");
    }
    refuse(begin + "a camera sees sharply " + std::to_string(std::lround(least)) + " dots of " +
           std::to_string(std::lround(plate.minDots)) + " it has to" + (sight.markers ? "" : ", and not every marker") +
           ": take a smaller plate, or more distance");
}

class Candidates {
public:
    Candidates(const PlanPair& p, const PlanPlate& l, double most) : pair(p), plate(l), maxTilt(most) {
        poses.reserve(kLevels.size() * kLevels.size() * kLevels.size() * kRolls.size() *
                      (1 + kTilts.size() * kAzimuths));
    }

    void addLevels(const PlanVolume& volume) {
        for (const double z : kLevels) {
            for (const double y : kLevels) {
                for (const double x : kLevels) {
                    addPlace(volume, x, y, z);
                }
            }
            if (!(volume.extent[2] > 0.0)) {
                return;
            }
        }
    }

    std::vector<MotionParameters> poses;

private:
    // As far to the sides as the plate is still read when it is held straight.
    void addPlace(const PlanVolume& volume, double x, double y, double z) {
        for (const double share : kShares) {
            const Vector3 position = volume.at(x * share, y * share, z);
            if (isReadable(plate, sightOf(pair, plate, poseOf(pair, {position})), maxTilt)) {
                addHolds(position);
                return;
            }
        }
    }

    void addHolds(const Vector3& position) {
        for (const double roll : kRolls) {
            add({position, 0.0, 0.0, roll});
            for (const double tilt : kTilts) {
                for (int i = 0; i < kAzimuths; ++i) {
                    add({position, tilt, 2.0 * std::numbers::pi * i / kAzimuths, roll});
                }
            }
        }
    }

    void add(const PlateHold& hold) {
        const MotionParameters pose = poseOf(pair, hold);
        if (isReadable(plate, sightOf(pair, plate, pose), maxTilt)) {
            poses.push_back(pose);
        }
    }

    const PlanPair& pair;
    const PlanPlate& plate;
    double maxTilt;
};

}  // namespace

MotionParameters poseOf(const PlanPair& pair, const PlateHold& hold) {
    return motionParameters(product(pair.frame.R, rotationOf(hold)), pair.fromFrame(hold.position));
}

PlateHold holdOf(const PlanPair& pair, const MotionParameters& pose) {
    const Motion motion = motionOf(pose);
    const Matrix3& F = pair.frame.R;
    const Matrix3 R = product({F[0], F[3], F[6], F[1], F[4], F[7], F[2], F[5], F[8]}, motion.R);
    PlateHold hold;
    hold.position = pair.toFrame(motion.t);
    const double across = std::hypot(R[2], R[5]);
    hold.tilt = std::atan2(across, R[8]);
    hold.azimuth = across > 1e-9 ? std::atan2(-R[5], -R[2]) : 0.0;
    PlateHold straight = hold;
    straight.roll = 0.0;
    const Vector3 x = timesTransposed(rotationOf(straight), {R[0], R[3], R[6]});
    hold.roll = std::atan2(x[1], x[0]);
    return hold;
}

std::vector<PlanCandidate> planCandidates(const PlanPair& pair, const PlanPlate& plate, const PlanVolume& volume,
                                          const PlanBasis& basis, double noise, double maxTilt) {
    Candidates found(pair, plate, maxTilt);
    found.addLevels(volume);
    if (found.poses.empty()) {
        refusePlate(plate, sightOf(pair, plate, poseOf(pair, {volume.centre})), maxTilt);
    }
    std::vector<PlanCandidate> candidates;
    candidates.reserve(found.poses.size());
    for (const MotionParameters& pose : found.poses) {
        candidates.push_back({pose, informationOf(pair, plate, basis, pose, noise)});
    }
    return candidates;
}

}  // namespace zelm::measure
