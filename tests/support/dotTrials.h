// Seeded trials of fitting dots where there is none like them, and dots that something disturbs.
#ifndef ZELM_TEST_DOT_TRIALS_H
#define ZELM_TEST_DOT_TRIALS_H

#include <array>
#include <cstdint>

namespace zelm::accuracy {

// What is predicted.
enum class WrongPlace {
    beside,         // a dot farther aside than is promised
    anywhere,       // among other dots, the plate's edge, or off the plate
    otherPolarity,  // on dots or beside them
    otherSize,      // a dot half or double the size, as of a marker
    otherShape,     // an ellipse 1.5 to 3 times as long
    speckles,       // in an image of spots of many sizes
};
constexpr std::size_t kWrongPlaces = 6;

struct WrongPlaceFigures {
    std::array<int, kWrongPlaces> trials{};
    std::array<int, kWrongPlaces> accepted{};  // as it should be: the prediction came near a dot after all
    std::array<int, kWrongPlaces> wrong{};     // accepted, and no dot of that size is there
};

WrongPlaceFigures tryWrongPlaces(int trials, std::uint64_t seed);

// What disturbs a dot.
enum class Disturbance { nothing, halfPlane, bar, highlight, saturation, nearDisc };
constexpr std::size_t kDisturbances = 6;

struct DisturbanceFigures {
    int trials = 0;
    int accepted = 0;
    int flagged = 0;     // of the accepted, with the flag that says so
    double rms = 0.0;    // error of a coordinate of accepted ones, pixels
    double pull = 0.0;   // root mean square of that over its standard deviation
    double worst = 0.0;  // distance
    int astray = 0;      // accepted, and farther off than 0.05 pixels and five standard deviations
};

// `least` and `most`: share of the outline that a half plane hides.
DisturbanceFigures tryDisturbed(Disturbance kind, int trials, std::uint64_t seed, double least = 0.05,
                                double most = 0.35);

}  // namespace zelm::accuracy

#endif
