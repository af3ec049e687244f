// A page that shows points in space, to be turned and measured between.
#ifndef ZELM_TOOL_CLOUD_PAGE_H
#define ZELM_TOOL_CLOUD_PAGE_H

#include <string>
#include <vector>

#include "provenance.h"
#include "rigFile.h"

namespace zelm::tool {

// A number that each point has; one that is not finite is not known.
struct CloudValue {
    std::string name;     // "gray level"
    std::string unit;     // empty: none
    bool isGray = false;  // drawn in shades of gray, 0 to 255
    std::vector<double> values;
};

struct Cloud {
    std::string title;
    std::string note;                // what it was made of
    std::string units;               // of positions
    std::vector<Point3d> points;     // in the frame of the plate of view 0
    std::vector<CloudValue> values;  // a number a point each; depths come of themselves
};

// Points are seen as the left camera of the rig sees them, and depths are along its axis. Of more than 200 000 points
// that many are drawn at random, and the page says so: evenly over the cloud, the same ones every time.
std::string cloudPage(const Cloud& cloud, const Rig& rig, const Provenance& provenance);

// Throws Failure unless the name, when one is given, ends in .html.
void requirePageName(const std::string& name);

}  // namespace zelm::tool

#endif
