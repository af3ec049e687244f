#include "imageSetTrials.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>
#include <stdexcept>

#include "predictedDot.h"
#include "random.h"

namespace zelmtest {
namespace {

using namespace zelm::measure;
using Camera2 = std::array<ProjectionCamera, kSides>;

constexpr double kRadians = std::numbers::pi / 180.0;

struct TrialRig {
    Pattern plate{};
    std::array<ImageSize, kSides> sizes{};
    Camera2 cameras;
    PlatePose relative;   // X_right = R X_left + t
    Vector3 middle{};     // of the volume, in the left camera
    Vector3 facing{};     // where plates look on average, in the left camera
    double distance = 0;  // of the volume from the cameras
    double noise = 0;     // pixels
    bool isRolled = false;
    std::string words;
};

// What one camera sees of a view.
struct TrialView {
    PlatePose left;
    PlatePose right;
};

Vector3 plus(const Vector3& a, const Vector3& b, double factor = 1.0) {
    return {a[0] + factor * b[0], a[1] + factor * b[1], a[2] + factor * b[2]};
}

PlatePose after(const PlatePose& second, const PlatePose& first) {
    return {product(second.R, first.R), plus(times(second.R, first.t), second.t)};
}

Matrix3 turnAbout(const Vector3& axis, double degrees) {
    const Vector3 u = unit(axis);
    const double a = degrees * kRadians;
    return rotationOf({a * u[0], a * u[1], a * u[2]});
}

class Maker {
public:
    explicit Maker(std::uint64_t seed) : random(seed * 7919 + 13) {}

    TrialRig rig(SetFault fault) {
        TrialRig r;
        plate(fault, r);
        cameras(fault, r);
        stand(r);
        r.noise = random.uniform(0.02, 0.15);
        return r;
    }

    std::vector<TrialView> views(const TrialRig& r, int count) {
        const bool isUpright = random.uniform() < 0.5;  // people hold a plate upright, or not
        std::vector<TrialView> list;
        for (int tries = 0; static_cast<int>(list.size()) < count; ++tries) {
            if (tries > 3000 * count) {
                throw std::runtime_error("no poses");
            }
            const double tilt = random.uniform(list.size() < 6 ? 12.0 : 0.0, 32.0);
            const double towards = random.uniform(0.0, 360.0);
            const double roll = isUpright ? random.uniform(-8.0, 8.0) : random.uniform(-180.0, 180.0);
            const double spread = r.distance / r.cameras[kLeft].p[kFx] * r.sizes[kLeft].width;
            const Vector3 at = plus(r.middle, {random.uniform(-0.15, 0.15) * spread, random.uniform(-0.1, 0.1) * spread,
                                               random.uniform(-0.12, 0.12) * r.distance});
            const TrialView view = viewOf(r, at, tilt, towards, roll);
            if (isSeen(r, view)) {
                list.push_back(view);
            }
        }
        return list;
    }

    TrialView movedView(const TrialRig& r, const TrialView& view, double pixels) {
        const double length = pixels * r.distance / r.cameras[kRight].p[kFx];
        const double direction = random.uniform(0.0, 2.0 * std::numbers::pi);
        TrialView other = view;
        other.right.t = plus(view.right.t, {std::cos(direction), std::sin(direction), 0.0}, length);
        other.right.R = product(turnAbout({random.normal(), random.normal(), random.normal()}, 0.3), view.right.R);
        return other;
    }

    TrialView shaken(const TrialRig& r, const TrialView& view, double pixels) {
        const double length = pixels * r.distance / r.cameras[kLeft].p[kFx];
        const double direction = random.uniform(0.0, 2.0 * std::numbers::pi);
        TrialView other;
        other.left = {view.left.R,
                      plus(view.left.t, {length * std::cos(direction), length * std::sin(direction), 0.0})};
        other.right = after(r.relative, other.left);
        return other;
    }

    ImageDots dots(const TrialRig& r, Side camera, const PlatePose& pose, double noise) {
        ImageDots list;
        const auto at = parametersOf(pose);
        const ImageSize size = r.sizes[camera];
        const PlateBow flat;
        const ImageParameters image{r.cameras[camera], nullptr, at.data(), 1.0, flat.b.data(), flat.extent};
        const int columns = static_cast<int>(std::lround(0.5 * r.plate.d0 / r.plate.d4));
        const int rows = static_cast<int>(std::lround(0.5 * r.plate.d1 / r.plate.d5));
        for (int row = -rows; row <= rows; ++row) {
            for (int column = -columns; column <= columns; ++column) {
                const DotObservation dot = plateDot(r.plate, {column, row}, {});
                Point2d pixel = dotOutline(image.camera, circleOf(image, dot.place, dot.radius)).centre;
                pixel.x += noise * random.normal();
                pixel.y += noise * random.normal();
                const bool isInside =
                    pixel.x > 8.0 && pixel.y > 8.0 && pixel.x < size.width - 9.0 && pixel.y < size.height - 9.0;
                if (isInside && (dot.kind == kMarkerDot || random.uniform() > 0.03)) {
                    list.push_back({dot.index, {dot.place[0], dot.place[1]}, pixel});
                }
            }
        }
        return list;
    }

    Random random;

private:
    void plate(SetFault fault, TrialRig& r) {
        const int columns = random.integer(3, 7);
        const int rows = random.uniform() < 0.25 ? columns : random.integer(3, 6);
        const int least = std::min(columns, rows);
        const bool mustTwin = fault == SetFault::mirrored || fault == SetFault::sideMirrored;
        const int markerX = random.integer(2, least);
        const int markerY = mustTwin || random.uniform() < 0.8 ? markerX : random.integer(2, least);
        const double pitchX = random.uniform(2.0, 20.0);
        const double pitchY = random.uniform() < 0.9 ? pitchX : pitchX * random.uniform(0.8, 1.25);
        r.plate.d0 = 2.0 * columns * pitchX;
        r.plate.d1 = 2.0 * rows * pitchY;
        r.plate.d2 = 0.4 * std::min(pitchX, pitchY);
        r.plate.d3 = 0.65 * std::min(pitchX, pitchY);
        r.plate.d4 = pitchX;
        r.plate.d5 = pitchY;
        r.plate.d6 = markerX * pitchX;
        r.plate.d7 = markerY * pitchY;
        r.plate.markers = 3;
    }

    ProjectionCamera camera(ImageSize size, double focal) {
        ProjectionCamera c;
        const double f = focal * random.uniform(0.97, 1.03);
        const double wide = 0.5 * size.width / f;
        c.p[kFx] = f;
        c.p[kFy] = f * random.uniform(0.998, 1.002);
        c.p[kCx] = 0.5 * (size.width - 1) + random.uniform(-0.03, 0.03) * size.width;
        c.p[kCy] = 0.5 * (size.height - 1) + random.uniform(-0.03, 0.03) * size.width;
        c.p[kK1] = random.uniform(-0.04, 0.02) / (wide * wide);  // moves the edge by a fiftieth or so
        c.p[kK2] = random.uniform(-0.005, 0.005) / (wide * wide * wide * wide);
        return c;
    }

    void cameras(SetFault fault, TrialRig& r) {
        const std::array<int, 4> widths{640, 1280, 1936, 2448};
        const auto size = [&] {
            const int width = widths[static_cast<std::size_t>(random.integer(0, 3))];
            const bool isSquare = fault == SetFault::turnedQuarter || random.uniform() < 0.15;
            return ImageSize{width, isSquare ? width : width * 3 / 4};
        };
        r.sizes[kLeft] = size();
        const bool mustBeAlike = fault == SetFault::exchangedImages;
        r.sizes[kRight] = mustBeAlike || random.uniform() < 0.85 ? r.sizes[kLeft] : size();
        const double angle = random.uniform(0.9, 2.6);  // focal length over the image's width
        for (const Side side : {kLeft, kRight}) {
            r.cameras[side] = camera(r.sizes[side], angle * r.sizes[side].width);
        }
    }

    // Both cameras about as far from the volume, so that the plate fills a part of the images.
    void stand(TrialRig& r) {
        const double fill = random.uniform(0.4, 0.65);
        const double extent = std::max(r.plate.d0, r.plate.d1 * 4.0 / 3.0);
        r.distance = r.cameras[kLeft].p[kFx] / r.sizes[kLeft].width * extent / fill;
        r.middle = {0.0, 0.0, r.distance};
        const double kind = random.uniform();
        const bool isVertical = random.uniform() < 0.15;
        const Vector3 across = isVertical ? Vector3{0.0, 1.0, 0.0} : Vector3{1.0, 0.0, 0.0};
        Vector3 centre{};
        Matrix3 R = turnAbout({random.normal(), random.normal(), random.normal()}, random.uniform(0.0, 1.5));
        double angle = 0.0;
        if (kind < 0.25) {
            r.words = "parallel axes";
            centre = plus({}, across, random.uniform(0.05, 0.18) * extent / fill);
            angle = std::atan2(centre[0] + centre[1], r.distance) / kRadians;
            r.middle = plus(r.middle, centre, 0.5);
        } else {
            angle = kind < 0.85 ? random.uniform(5.0, 45.0) : 90.0;
            r.words = kind < 0.85 ? "converging" : "at 90 degrees";
            const double a = angle * kRadians;
            const double far = r.distance * random.uniform(0.9, 1.1);
            centre = {0.0, 0.0, r.distance - far * std::cos(a)};
            centre = plus(centre, across, far * std::sin(a));
            const Vector3 axis = isVertical ? Vector3{1.0, 0.0, 0.0} : Vector3{0.0, -1.0, 0.0};
            // From the left frame to the right one.
            R = product(R, turnAbout(axis, isVertical ? -angle : -angle));
            // The optical axis must meet the volume.
            const Vector3 seen = times(R, plus(r.middle, centre, -1.0));
            if (!(seen[2] > 0.8 * far)) {
                R = product(turnAbout({0.0, 0.0, 1.0}, 0.0), turnAbout(axis, angle));
            }
        }
        if (random.uniform() < 0.15) {
            r.isRolled = true;
            r.words += ", one camera upside down";
            R = product(turnAbout({0.0, 0.0, 1.0}, 180.0 + random.uniform(-3.0, 3.0)), R);
        }
        const Vector3 t = times(R, centre);
        r.relative = {R, {-t[0], -t[1], -t[2]}};
        // Half-way between both cameras.
        const Vector3 toLeft = unit({-r.middle[0], -r.middle[1], -r.middle[2]});
        const Vector3 toRight = unit(plus(centre, r.middle, -1.0));
        r.facing = unit(plus(toLeft, toRight));
    }

    TrialView viewOf(const TrialRig& r, const Vector3& at, double tilt, double towards, double roll) {
        // The printed side looks along -z of the plate: z is away from the cameras.
        const Vector3 z = unit({-r.facing[0], -r.facing[1], -r.facing[2]});
        const Vector3 helper = std::fabs(z[0]) < 0.9 ? Vector3{1.0, 0.0, 0.0} : Vector3{0.0, 1.0, 0.0};
        const Vector3 y = unit(cross(z, helper));
        const Vector3 x = cross(y, z);
        Matrix3 R{x[0], y[0], z[0], x[1], y[1], z[1], x[2], y[2], z[2]};
        R = product(R, turnAbout({0.0, 0.0, 1.0}, roll));
        const double a = towards * kRadians;
        R = product(R, turnAbout({std::cos(a), std::sin(a), 0.0}, tilt));
        TrialView view;
        view.left = {R, at};
        view.right = after(r.relative, view.left);
        return view;
    }

    static bool isSeen(const TrialRig& r, const TrialView& view) {
        constexpr double kLeast = 0.6;  // of the plate's corners and edges
        for (const Side side : {kLeft, kRight}) {
            const PlatePose& pose = side == kLeft ? view.left : view.right;
            int seen = 0;
            int asked = 0;
            for (const double u : {-0.5, -0.25, 0.0, 0.25, 0.5}) {
                for (const double v : {-0.5, -0.25, 0.0, 0.25, 0.5}) {
                    const Vector3 X = plus(times(pose.R, {u * r.plate.d0, v * r.plate.d1, 0.0}), pose.t);
                    const Point2d p = pixelOf(r.cameras[side], X);
                    const ImageSize size = r.sizes[side];
                    const double wide = std::hypot(X[0] / X[2], X[1] / X[2]) * r.cameras[side].p[kFx];
                    asked += 1;
                    seen += X[2] > 0.0 && wide < 0.75 * size.width && p.x > 8.0 && p.y > 8.0 &&
                                    p.x < size.width - 9.0 && p.y < size.height - 9.0
                                ? 1
                                : 0;
                    if (u == 0.0 && v == 0.0) {
                        const Vector3 line = unit(X);
                        const Vector3 normal{pose.R[2], pose.R[5], pose.R[8]};
                        if (!(dot(line, normal) > 0.42)) {
                            return false;  // seen from behind, or beyond 65 degrees
                        }
                    }
                }
            }
            if (seen < kLeast * asked) {
                return false;
            }
        }
        return true;
    }
};

PoseDifference differenceOf(const PlatePose& a, const PlatePose& b) {
    double trace = 0.0;
    for (std::size_t i = 0; i < a.R.size(); ++i) {
        trace += a.R[i] * b.R[i];
    }
    const Vector3 between = plus(timesTransposed(a.R, a.t), timesTransposed(b.R, b.t), -1.0);
    return {std::acos(0.5 * (trace - 1.0)), std::hypot(between[0], between[1], between[2])};
}

// A fault needs so many views.
int minViews(SetFault fault) {
    switch (fault) {
        case SetFault::missing:
            return 5;
        case SetFault::otherSession:
            return 6;
        default:
            return 3;
    }
}

ImageDots stored(const TrialRig& r, Side side, const ImageDots& dots, Storing storing) {
    // Turning on by what is left of a full turn undoes it; a mirror undoes itself.
    SetOfImages set;
    set.plate = r.plate;
    set.sizes = r.sizes;
    if (storing.isMirrored) {
        return restored(set, side, dots, {0, true});
    }
    return restored(set, side, dots, {(4 - storing.quarterTurns) % 4, false});
}

// In a mirror the reader counts columns as rows, and keeps what lies within the field.
ImageDots withinField(const Pattern& plate, ImageDots dots) {
    std::erase_if(dots, [&](const Dot& dot) {
        return std::fabs(dot.plane.x) > 0.501 * plate.d0 || std::fabs(dot.plane.y) > 0.501 * plate.d1;
    });
    return dots;
}

}  // namespace

const char* nameOf(SetFault fault) {
    constexpr std::array<const char*, static_cast<std::size_t>(SetFault::count)> kNames{
        "none",
        "a list shifted",
        "a list shifted, cyclic",
        "an image missing in the middle",
        "two views exchanged on one side",
        "an image copied over another",
        "an image turned by 180 degrees",
        "an image turned by 90 degrees",
        "an image mirrored",
        "all images of one side mirrored",
        "left and right exchanged in a view",
        "moved between the exposures",
        "views of another session",
        "a view taken twice"};
    return kNames[static_cast<std::size_t>(fault)];
}

SetTrial makeSetTrial(SetFault fault, std::uint64_t seed, int viewCount) {
    Maker maker(seed);
    for (;;) {
        try {
            SetTrial trial;
            trial.fault = fault;
            const TrialRig rig = maker.rig(fault);
            Random& random = maker.random;
            const int count = std::max(
                viewCount > 0 ? viewCount : (random.uniform() < 0.4 ? random.integer(3, 6) : random.integer(7, 30)),
                minViews(fault));
            const auto n = static_cast<std::size_t>(count);
            trial.words = rig.words + ", " + std::to_string(count) + " views";
            const int by = count < 6 ? 1 : random.integer(1, 3);
            const auto extra =
                static_cast<std::size_t>(fault == SetFault::shifted || fault == SetFault::missing ? by : 0);
            std::vector<TrialView> views = maker.views(rig, count + static_cast<int>(extra));
            if (fault == SetFault::none && random.uniform() < 0.2) {
                views[1] = maker.shaken(rig, views[0], random.uniform(1.5, 6.0));
            }
            const auto a = static_cast<std::size_t>(random.integer(0, count - 1));
            const auto b = (a + static_cast<std::size_t>(random.integer(1, count - 1))) % n;
            const Side side = random.uniform() < 0.5 ? kLeft : kRight;
            std::array<std::vector<std::size_t>, kSides> order;
            for (std::size_t i = 0; i < n; ++i) {
                order[kLeft].push_back(i);
                order[kRight].push_back(i);
            }
            std::array<std::vector<PlatePose>, kSides> poses;
            if (fault == SetFault::otherSession) {
                const auto others = static_cast<std::size_t>(random.integer(2, std::max(2, count / 3)));
                PlatePose moved = rig.relative;
                moved.R = product(
                    turnAbout({random.normal(), random.normal(), random.normal()}, random.uniform(0.5, 3.0)), moved.R);
                trial.session = differenceOf(rig.relative, moved);
                for (std::size_t i = n - others; i < n; ++i) {
                    views[i].right = after(moved, views[i].left);
                    trial.views.push_back(i);
                }
                trial.kind = SetCauseKind::otherSession;
            }
            if (fault == SetFault::moved) {
                views[a] = maker.movedView(rig, views[a], random.uniform(5.0, 40.0));
                trial.kind = SetCauseKind::nothingFits;
                trial.views = {a};
            }
            if (fault == SetFault::sameView) {
                views[std::max(a, b)] = views[std::min(a, b)];
                trial.kind = SetCauseKind::sameViews;
                trial.views = {std::max(a, b)};
            }
            if (fault == SetFault::shifted || fault == SetFault::cyclic || fault == SetFault::missing) {
                trial.kind = SetCauseKind::shifted;
                const std::size_t from =
                    fault == SetFault::missing ? static_cast<std::size_t>(random.integer(1, count - 1 - by - 1)) : 0;
                const auto k = static_cast<std::size_t>(by);
                trial.offset = by;
                for (std::size_t i = from; i < n; ++i) {
                    order[kRight][i] = fault == SetFault::cyclic ? (i + k) % n : i + k;
                    if (order[kRight][i] < n) {
                        trial.views.push_back(i);
                        trial.partners.push_back(order[kRight][i]);
                    }
                }
                if (fault == SetFault::cyclic && 2 * by > count) {
                    trial.offset = by - count;
                }
            }
            if (fault == SetFault::exchangedViews) {
                std::swap(order[side][a], order[side][b]);
                trial.kind = SetCauseKind::exchangedViews;
                trial.views = {std::min(a, b), std::max(a, b)};
                trial.partners = {trial.views[1], trial.views[0]};
            }
            for (const Side s : {kLeft, kRight}) {
                for (const std::size_t view : order[s]) {
                    const PlatePose& pose = s == kLeft ? views[view].left : views[view].right;
                    trial.set.images[s].push_back(maker.dots(rig, s, pose, rig.noise));
                }
            }
            trial.set.plate = rig.plate;
            trial.set.sizes = rig.sizes;
            auto& images = trial.set.images;
            trial.side = side;
            if (fault == SetFault::copied) {
                images[side][a] = images[side][b];
                if (random.uniform() < 0.5) {  // another exposure of the same
                    images[side][a] = maker.dots(rig, side, side == kLeft ? views[b].left : views[b].right, rig.noise);
                }
                trial.kind = SetCauseKind::copies;
                trial.views = {a};
                trial.partners = {b};
                trial.isSideTold = true;
            }
            if (fault == SetFault::turned || fault == SetFault::turnedQuarter) {
                const int turns = fault == SetFault::turned ? 2 : random.uniform() < 0.5 ? 1 : 3;
                images[side][a] = stored(rig, side, images[side][a], {turns, false});
                trial.kind = SetCauseKind::turned;
                trial.views = {a};
                trial.isSideTold = true;
            }
            if (fault == SetFault::mirrored) {
                images[side][a] = withinField(rig.plate, stored(rig, side, images[side][a], {0, true}));
                trial.kind = SetCauseKind::mirrored;
                trial.views = {a};
                trial.isSideTold = true;
            }
            if (fault == SetFault::sideMirrored) {
                for (std::size_t i = 0; i < n; ++i) {
                    images[side][i] = withinField(rig.plate, stored(rig, side, images[side][i], {0, true}));
                    trial.views.push_back(i);
                }
                trial.kind = SetCauseKind::sideMirrored;
            }
            if (fault == SetFault::exchangedImages) {
                std::swap(images[kLeft][a], images[kRight][a]);
                trial.kind = SetCauseKind::exchangedImages;
                trial.views = {a};
            }
            return trial;
        } catch (const std::runtime_error&) {
            continue;  // a rig whose cameras hardly see the same; another one is drawn
        }
    }
}

SetVerdict judgeTrial(const SetTrial& trial) {
    SetVerdict verdict;
    verdict.judgement = judgeSet(trial.set);
    verdict.causes = causesOf(verdict.judgement);
    for (const SetCause& cause : verdict.causes) {
        verdict.words += " kind " + std::to_string(static_cast<int>(cause.kind)) + " offset " +
                         std::to_string(cause.offset) + " views";
        for (const std::size_t view : cause.views) {
            verdict.words += " " + std::to_string(view);
        }
        verdict.words += ";";
    }
    if (trial.fault == SetFault::none) {
        // Images that do not determine their cameras are not judged, and refused for that.
        verdict.isRight = verdict.causes.empty() || !verdict.judgement.isDetermined;
        return verdict;
    }
    // Three views of which two are alike determine no camera, which is told as well.
    std::vector<SetCause> told = verdict.causes;
    std::erase_if(told, [](const SetCause& cause) { return cause.kind == SetCauseKind::undetermined; });
    if (told.size() != 1 || told.front().kind != trial.kind) {
        return verdict;
    }
    const SetCause& cause = told.front();
    if (trial.kind == SetCauseKind::copies && !verdict.judgement.isDetermined) {  // either may be the copy
        const std::size_t a = std::min(trial.views[0], trial.partners[0]);
        const std::size_t b = std::max(trial.views[0], trial.partners[0]);
        verdict.isRight = cause.sides[trial.side] && cause.views == std::vector<std::size_t>{b} &&
                          verdict.judgement.views[b].copyOf == a;
        return verdict;
    }
    const auto& views = verdict.judgement.views;
    bool isRight = true;
    if (trial.kind == SetCauseKind::shifted) {
        isRight = cause.offset == trial.offset;
        for (std::size_t k = 0; k < trial.views.size(); ++k) {
            isRight = isRight && views[trial.views[k]].fitsImage[kRight] == trial.partners[k];
        }
    } else {
        isRight = cause.views == trial.views;
        for (std::size_t k = 0; isRight && k < trial.partners.size(); ++k) {
            const ViewJudgement& view = views[trial.views[k]];
            isRight = trial.kind == SetCauseKind::copies ? view.copyOf == trial.partners[k]
                                                         : view.fitsImage[kRight] == trial.partners[k];
        }
        if (trial.kind == SetCauseKind::sideMirrored) {
            isRight = isRight && cause.sides[trial.side];
        }
        isRight =
            isRight && (!trial.isSideTold || (cause.sides[trial.side] && cause.sides[kLeft] != cause.sides[kRight]));
    }
    verdict.isRight = isRight;
    return verdict;
}

}  // namespace zelmtest
