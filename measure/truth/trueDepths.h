// The true depths of a rendered scene, as the cameras of a rig see them.
#ifndef ZELM_MEASURE_TRUE_DEPTHS_H
#define ZELM_MEASURE_TRUE_DEPTHS_H

#include <cstdint>
#include <optional>
#include <vector>

#include "rig.h"

namespace zelm::measure {

class TrueDepths {
public:
    // A depth along the left camera's axis for each pixel of its image, in `unit`s; 0: nothing there. The rig and the
    // map outlive the object. Throws for a rig with a parallel camera.
    TrueDepths(const Rig& rig, const std::uint16_t* map, double unit);

    // The depth at a pixel; nothing where there is no surface, or an edge.
    std::optional<double> at(Point2d p) const;

    // Whether the right camera sees the point of a pixel.
    bool isSeenByBoth(Point2d p) const;

private:
    struct Seen {
        int x = 0;
        int y = 0;
        double depth = 0.0;
    };

    double pixelDepth(int x, int y) const;
    std::size_t indexOf(int x, int y) const;
    std::optional<Seen> inRightImage(Point2d p) const;
    void splat(const Seen& seen);

    const Rig& rig;
    const std::uint16_t* map;
    double unit;
    std::vector<float> nearest;  // depths that the right camera sees, a pixel each
};

}  // namespace zelm::measure

#endif
