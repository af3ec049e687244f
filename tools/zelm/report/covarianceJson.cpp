#include "covarianceJson.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace zelm::tool {
namespace {

using Json = nlohmann::ordered_json;

struct Parameters {
    std::vector<std::string> names;
    std::vector<std::string> units;

    void add(const std::string& name, const std::string& unit) {
        names.push_back(name);
        units.push_back(unit);
    }
    void addCamera(const std::string& side, bool isParallel) {
        for (const char* name : {"fx", "skew", "fy"}) {
            add(side + "." + name, isParallel ? "pixel/length" : "pixel");
        }
        add(side + ".cx", "pixel");
        add(side + ".cy", "pixel");
        add(side + ".k1", isParallel ? "1/length^2" : "1");
        add(side + ".k2", isParallel ? "1/length^4" : "1");
    }
    void addMotion(const std::string& motion) {
        for (const char* axis : {"x", "y", "z"}) {
            add(motion + ".rotation." + axis, "radian");
        }
        for (const char* axis : {"x", "y", "z"}) {
            add(motion + ".translation." + axis, "length");
        }
    }
};

}  // namespace

Json covarianceJson(const Rig& rig) {
    if (!rig.covariance) {
        return nullptr;
    }
    Parameters parameters;
    parameters.addCamera("left", rig.left.isParallel());
    parameters.addCamera("right", rig.right.isParallel());
    parameters.addMotion("relative");
    parameters.addMotion("frame");
    const ZelmMeasureCovariance& c = *rig.covariance;
    std::vector<double> triangle;
    for (std::size_t row = 0; row < ZELM_MEASURE_PARAMETERS; ++row) {
        const double* const first = &c.matrix[ZELM_MEASURE_PARAMETERS * row];
        triangle.insert(triangle.end(), first, first + row + 1);
    }
    return {{"parameters", parameters.names},
            {"units", parameters.units},
            {"noise", c.noise},
            {"freedom", c.freedom},
            {"lowerTriangle", triangle}};
}

}  // namespace zelm::tool
