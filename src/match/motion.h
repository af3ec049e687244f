// Motions of the plane and the point pairs they are estimated from.
#ifndef ZELM_MOTION_H
#define ZELM_MOTION_H

#include <cmath>
#include <cstddef>

#include "zelm/match.h"

namespace zelm {

// Model points count relative to the origin of the model pose.
struct PointPairs {
    std::size_t n;
    const Point2d* ref;
    const Point2d* models;
    Point2d origin;

    [[nodiscard]] Point2d model(std::size_t i) const { return {models[i].x - origin.x, models[i].y - origin.y}; }
};

// p goes to scale * R(angle) * p + shift.
struct Motion {
    double angle;
    double scale;
    Point2d shift;
};

// A motion with its sine and cosine, to be applied to many points.
class MotionOfPoints {
public:
    explicit MotionOfPoints(const Motion& motion)
        : cosine(std::cos(motion.angle)), sine(std::sin(motion.angle)), scale(motion.scale), shift(motion.shift) {}

    [[nodiscard]] Point2d operator()(const Point2d& p) const {
        return {scale * (cosine * p.x - sine * p.y) + shift.x, scale * (sine * p.x + cosine * p.y) + shift.y};
    }

private:
    double cosine;
    double sine;
    double scale;
    Point2d shift;
};

// Where motion takes model i, less the reference point.
inline Point2d deviation(const PointPairs& pairs, const MotionOfPoints& motion, std::size_t i) {
    const Point2d moved = motion(pairs.model(i));
    return {moved.x - pairs.ref[i].x, moved.y - pairs.ref[i].y};
}

}  // namespace zelm

#endif
