// Accumulates the blurred areas of outlines into an image.
#ifndef ZELM_RENDER_COVERAGE_H
#define ZELM_RENDER_COVERAGE_H

#include <vector>

#include "outline.h"

namespace zelm::render {

// The sum of level * (area inside the outline, blurred and integrated over each pixel) over the outlines added.
//
// With k the pixel's box blurred by the Gaussian and K its integral, a pixel at (px, py) receives the closed integral
// of K(x - px) k(y - py) dy along the outline. K falls from 1 to 0 as px passes x, so a row is kept as differences
// between neighbouring pixels and summed up once at the end: only pixels near the outline are touched.
class Coverage {
public:
    // sigma: of the blur in pixels, 0 for none.
    Coverage(int width, int height, double sigma);

    // Adds an outline to a blurred image (sigma > 0). `level` counts as it is for outlines that run from x towards y.
    void add(const std::vector<OutlineNode>& outline, double level);

    // Adds a polygon to a sharp image (sigma = 0), exactly.
    void addSharp(const std::vector<Pixel>& polygon, double level);

    // The pixel values: the sum of what was added, on a uniform ground.
    std::vector<double> finish(double ground) &&;

private:
    void addNode(const OutlineNode& node, double level);
    void addSharpEdge(Pixel from, Pixel to, double level);
    void addSharpPiece(int row, Pixel from, Pixel to, double level);
    double* rowAt(int row);

    int width, height;
    double sigma;
    double reach;                    // from a node to the farthest pixel that it changes, pixels
    std::vector<double> changes;     // height rows of width differences
    std::vector<double> columnStep;  // scratch of one node: differences of K for the columns in reach
};

}  // namespace zelm::render

#endif
