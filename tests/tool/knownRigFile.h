// A calibration file of exact parameters with the covariance of a simulated calibration beside it.
#ifndef ZELM_TEST_KNOWN_RIG_FILE_H
#define ZELM_TEST_KNOWN_RIG_FILE_H

#include <string>
#include <utility>
#include <vector>

#include "knownRig.h"
#include "measureFixtures.h"

namespace zelmtest {

struct KnownRigFile {
    TemporaryFolder folder;
    KnownRig known;
    std::string path;

    explicit KnownRigFile(double freedom = 0.0, std::int32_t leftModel = 0)
        : KnownRigFile(makePair(leftModel, 0), freedom) {}
    KnownRigFile(const TruePair& pair, double freedom)
        : known(pair, 0.05), path(writePair(known.pair, folder / "rig.zcal")) {
        known.covariance.freedom = freedom;
        known.give(known.covariance);
        std::string bytes(2856, '\0');
        EXPECT_EQ(zelmMeasureCovarianceSave(known.rig.get(), 2856, bytes.data()), ZELM_OK);
        writeFile(folder / "rig.zcov", bytes);
    }
    [[nodiscard]] std::string file(const std::string& name) const { return (folder / name).string(); }
    // A CSV of pixel pairs with ids.
    std::string writePairs(const std::vector<std::pair<std::string, Point3d>>& points) const {
        std::ostringstream csv;
        csv.precision(17);
        csv << "id,xL,yL,xR,yR\n";
        for (const auto& [id, X] : points) {
            const Point2d l = known.pair.project('L', X);
            const Point2d r = known.pair.project('R', X);
            csv << id << ',' << l.x << ',' << l.y << ',' << r.x << ',' << r.y << '\n';
        }
        writeFile(folder / "pairs.csv", csv.str());
        return file("pairs.csv");
    }
};

// The lines of a CSV file without quotes, split at commas; the header first.
inline std::vector<std::vector<std::string>> readCsv(const fs::path& path) {
    std::vector<std::vector<std::string>> rows;
    for (const std::string& line : splitLines(readFile(path))) {
        std::vector<std::string> fields(1);
        for (const char c : line) {
            if (c == ',') {
                fields.emplace_back();
            } else {
                fields.back() += c;
            }
        }
        rows.push_back(fields);
    }
    return rows;
}

}  // namespace zelmtest

#endif
