// OpenCV FileStorage, YAML.
#include <span>

#include "arraysPair.h"
#include "digitText.h"
#include "pairFigures.h"
#include "readers.h"
#include "yamlText.h"

namespace zelm::measure {
namespace {

std::string matrixText(const std::string& indent, const std::string& name, std::size_t rows,
                       std::span<const double> values) {
    const std::string inner = indent + "   ";
    const std::size_t columns = values.size() / rows;
    return indent + name + ": !!opencv-matrix\n" + inner + "rows: " + std::to_string(rows) + "\n" + inner +
           "cols: " + std::to_string(columns) + "\n" + inner + "dt: d\n" + inner + "data: [ " +
           numberList(values, columns, inner + "    ") + " ]\n";
}

std::string cameraText(const char* side, const CameraFigures& c) {
    const std::string indent = "   ";
    return std::string(side) + ":\n" + indent + "image_width: " + std::to_string(c.width) + "\n" + indent +
           "image_height: " + std::to_string(c.height) + "\n" + matrixText(indent, "camera_matrix", 3, c.matrix()) +
           matrixText(indent, "distortion_coefficients", 1, c.lens()) +
           matrixText(indent, "plate_rotation", 3, c.pose.R) + matrixText(indent, "plate_translation", 3, c.pose.t);
}

std::string rowsText(const RowAlignment& rows) {
    return "# Row-aligned images; X_aligned = R1 X_left\nrectified_width: " + std::to_string(rows.width) +
           "\nrectified_height: " + std::to_string(rows.height) + "\n" + matrixText("", "R1", 3, rows.leftRotation) +
           matrixText("", "R2", 3, rows.rightRotation) + matrixText("", "P1", 3, rows.projection('L')) +
           matrixText("", "P2", 3, rows.projection('R')) + matrixText("", "Q", 4, rows.reprojection());
}

// A matrix of a FileStorage is a map; a list of numbers is a vector.
void addNode(const YAML::Node& node, const std::string& name, NamedArrays& arrays) {
    if (node.IsMap() && node["data"] && node["rows"] && node["cols"]) {
        NamedArray array;
        array.shape = {static_cast<std::size_t>(yamlCount(node["rows"], name)),
                       static_cast<std::size_t>(yamlCount(node["cols"], name))};
        array.values = yamlNumbers(node["data"], name);
        if (array.values.size() != array.shape[0] * array.shape[1]) {
            refuse(name + " has " + std::to_string(array.values.size()) + " numbers, not rows times columns");
        }
        arrays.add(name, std::move(array));
    } else if (node.IsSequence() && node.size() > 0 && node[0].IsScalar()) {
        // Lists of words are none of the calibration's.
        try {
            arrays.add(name, {{node.size()}, yamlNumbers(node, name)});
        } catch (const Fault&) {
            return;
        }
    } else if (node.IsScalar() && (name.ends_with("width") || name.ends_with("height"))) {
        arrays.add(name, {{}, {static_cast<double>(yamlCount(node, name))}});
    }
}

}  // namespace

std::string openCvText(const PairFigures& f) {
    return "%YAML:1.0\n---\n# Pixel centres at whole numbers. X_left = plate_rotation X + plate_translation, of the "
           "plate of view 0\n" +
           cameraText("left", f.left) + cameraText("right", f.right) +
           "# X_right = R X_left + T; x_right' E x_left = 0, x_right' F x_left = 0\n" +
           matrixText("", "R", 3, f.motion.R) + matrixText("", "T", 3, f.motion.t) + matrixText("", "E", 3, f.E) +
           matrixText("", "F", 3, f.F) + (f.rows ? rowsText(*f.rows) : "");
}

ForeignPair openCvPair(std::span<const std::string_view> files) {
    NamedArrays arrays;
    for (const std::string_view file : files) {
        if (file.starts_with("<?xml")) {
            refuse("a FileStorage in XML: write it as YAML");
        }
        NamedArrays found;
        for (const auto& member : yamlMap(file)) {
            const std::string name = yamlWord(member.first, "a field's name");
            if ((name == "left" || name == "right") && member.second.IsMap()) {
                for (const auto& inner : member.second) {
                    std::string path = name;
                    path += '.';
                    path += yamlWord(inner.first, "a field's name");
                    addNode(inner.second, path, found);
                }
            } else {
                addNode(member.second, name, found);
            }
        }
        arrays.merge(found);
    }
    return pairOfArrays(arrays);
}

}  // namespace zelm::measure
