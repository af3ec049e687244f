#include "sectorSteps.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <optional>

#include "blurredStep.h"
#include "cholesky.h"
#include "ellipseFoot.h"
#include "sectorBand.h"

namespace zelm::measure {
namespace {

constexpr double kOwnLevels = 6.0;      // pixels of the semi-minor axis from which sectors have levels of their own
constexpr double kStartBlur = 0.6;      // pixels, standard deviation of the step's slope
constexpr double kMinBlur = 0.28;       // of the integration over a pixel alone
constexpr double kMaxBlur = 3.0;        //
constexpr double kMaxBlurStep = 0.3;    // a round
constexpr double kMaxOffsetStep = 0.5;  // pixels a round
constexpr double kMaxOffset = 2.0;      // pixels from the ellipse; farther is another edge
constexpr double kMinContrast = 6.0;    // gray levels
constexpr int kMaxRounds = 15;          // of the least-squares steps
constexpr int kMinRounds = 4;           //
constexpr double kSettled = 1e-4;       // pixels of the blur
constexpr double kMisfit = 4.0;         // a sector's mean square over the usual one that is not remarkable,
constexpr double kMisfitOfFew = 12.0;   // with this over its degrees of freedom added
constexpr double kPixelVariance = 1.0 / 12.0;  // square pixels, of a pixel across any direction
constexpr double kShapeError = 0.02;           // of the contrast: what no step but a bent one would follow
constexpr double kRounding = 1.0 / 12.0;       // square gray levels

// What a step has: gray level inside and outside, its offset and its blur.
enum Unknown : std::size_t { kInside, kOutside, kOffset, kBlur, kUnknowns };

// Which unknowns each sector has for itself, and which all have together.
template <std::size_t local>
constexpr std::array<std::size_t, kUnknowns> kOrder = {};
template <>
constexpr std::array<std::size_t, kUnknowns> kOrder<1> = {kOffset, kInside, kOutside, kBlur};
template <>
constexpr std::array<std::size_t, kUnknowns> kOrder<3> = {kInside, kOutside, kOffset, kBlur};

struct Sector {
    std::vector<BandPixel> pixels;
    Vector<kUnknowns> step{};
    Matrix<kUnknowns> normal{};  // upper triangle, in kOrder
    Vector<kUnknowns> right{};   //
    double squares = 0.0;        // of what the step leaves
    bool sound = true;

    double contrast() const { return step[kOutside] - step[kInside]; }
};

// Variances of gray levels on both sides and, beside them, on the edge: pixels that an edge crosses vary more, with
// whatever shakes it or, in rendered images, with how coarsely they are sampled.
struct Noise {
    double inside = 1.0;
    double outside = 1.0;
    double edge = 0.0;

    double at(double share) const {
        return (1.0 - share) * inside + share * outside + 4.0 * share * (1.0 - share) * edge;
    }
};

template <std::size_t local>
void form(Sector& sector, const Noise& noise) {
    sector.normal = {};
    sector.right = {};
    sector.squares = 0.0;
    const double blur = sector.step[kBlur];
    for (const BandPixel& p : sector.pixels) {
        const BlurredStep seen = blurredStep(p.distance - sector.step[kOffset], blur, p.cosine, p.sine);
        const double contrast = sector.contrast();
        const Vector<kUnknowns> row{1.0 - seen.share, seen.share, -contrast * seen.byDistance, contrast * seen.byBlur};
        const double residual = p.gray - (sector.step[kInside] + contrast * seen.share);
        const double weight = 1.0 / noise.at(seen.share);
        for (std::size_t i = 0; i < kUnknowns; ++i) {
            const double element = weight * row[kOrder<local>[i]];
            for (std::size_t j = i; j < kUnknowns; ++j) {
                sector.normal[i][j] += element * row[kOrder<local>[j]];
            }
            sector.right[i] += element * residual;
        }
        sector.squares += residual * residual;
    }
}

// Factors of a sector's own block, and that block's solutions for the columns of the unknowns that all share.
template <std::size_t local>
struct Eliminated {
    static constexpr std::size_t kShared = kUnknowns - local;
    Matrix<local> factors{};
    std::array<Vector<local>, kShared> columns{};
    Vector<local> own{};
    bool regular = false;

    explicit Eliminated(const Sector& sector) {
        for (std::size_t i = 0; i < local; ++i) {
            for (std::size_t j = i; j < local; ++j) {
                factors[i][j] = sector.normal[i][j];
            }
        }
        regular = factor(factors);
        if (!regular) {
            return;
        }
        Vector<local> right{};
        std::copy_n(sector.right.begin(), local, right.begin());
        own = solve(factors, right);
        for (std::size_t k = 0; k < kShared; ++k) {
            for (std::size_t i = 0; i < local; ++i) {
                right[i] = sector.normal[i][local + k];
            }
            columns[k] = solve(factors, right);
        }
    }
};

// One least-squares step of all sectors together; the change of the blur.
template <std::size_t local>
double improve(std::vector<Sector>& sectors, const Noise& noise, double sign) {
    constexpr std::size_t kShared = kUnknowns - local;
    Matrix<kShared> normal{};
    Vector<kShared> right{};
    std::vector<std::optional<Eliminated<local>>> eliminated(sectors.size());
    for (std::size_t s = 0; s < sectors.size(); ++s) {
        Sector& sector = sectors[s];
        if (!sector.sound) {
            continue;
        }
        form<local>(sector, noise);
        eliminated[s].emplace(sector);
        sector.sound = eliminated[s]->regular;
        for (std::size_t j = 0; j < kShared && sector.sound; ++j) {
            for (std::size_t k = j; k < kShared; ++k) {
                normal[j][k] += sector.normal[local + j][local + k];
            }
            right[j] += sector.right[local + j];
            for (std::size_t i = 0; i < local; ++i) {
                for (std::size_t k = j; k < kShared; ++k) {
                    normal[j][k] -= sector.normal[i][local + j] * eliminated[s]->columns[k][i];
                }
                right[j] -= sector.normal[i][local + j] * eliminated[s]->own[i];
            }
        }
    }
    Vector<kShared> shared{};
    if (factor(normal)) {
        shared = solve(normal, right);
    }
    double& blur = shared[kShared - 1];
    blur = std::clamp(blur, -kMaxBlurStep, kMaxBlurStep);
    for (std::size_t s = 0; s < sectors.size(); ++s) {
        Sector& sector = sectors[s];
        if (!sector.sound) {
            continue;
        }
        for (std::size_t i = 0; i < local; ++i) {
            double change = eliminated[s]->own[i];
            for (std::size_t k = 0; k < kShared; ++k) {
                change -= eliminated[s]->columns[k][i] * shared[k];
            }
            const std::size_t which = kOrder<local>[i];
            sector.step[which] += which == kOffset ? std::clamp(change, -kMaxOffsetStep, kMaxOffsetStep) : change;
        }
        for (std::size_t k = 0; k < kShared; ++k) {
            sector.step[kOrder<local>[local + k]] += shared[k];
        }
        sector.step[kBlur] = std::clamp(sector.step[kBlur], kMinBlur, kMaxBlur);
        sector.sound = std::fabs(sector.step[kOffset]) <= kMaxOffset && sign * sector.contrast() >= kMinContrast;
    }
    return blur;
}

template <std::size_t local>
double freedom(const Sector& sector) {
    return static_cast<double>(sector.pixels.size()) - static_cast<double>(local);
}

// The mean square that a step leaves in the usual sector; none where no sector is sound.
template <std::size_t local>
std::optional<double> usualSquare(const std::vector<Sector>& sectors) {
    std::vector<double> squares;
    for (const Sector& sector : sectors) {
        if (sector.sound) {
            squares.push_back(sector.squares / freedom<local>(sector));
        }
    }
    if (squares.empty()) {
        return std::nullopt;
    }
    const auto middle = squares.begin() + static_cast<std::ptrdiff_t>(squares.size() / 2);
    std::nth_element(squares.begin(), middle, squares.end());
    return *middle;
}

// Levels from the pixels clearly inside and outside; without them a sector is of no use.
bool startLevels(std::vector<Sector>& sectors, bool own) {
    const auto mean = [](const std::vector<const Sector*>& list, double side, double& level) {
        double sum = 0.0;
        int count = 0;
        for (const Sector* sector : list) {
            for (const BandPixel& p : sector->pixels) {
                if (side * p.distance > 1.0) {
                    sum += p.gray;
                    ++count;
                }
            }
        }
        level = sum / count;
        return count > 0;
    };
    std::vector<const Sector*> all;
    all.reserve(sectors.size());
    for (const Sector& sector : sectors) {
        all.push_back(&sector);
    }
    bool any = false;
    for (Sector& sector : sectors) {
        const std::vector<const Sector*> from = own ? std::vector<const Sector*>{&sector} : all;
        sector.sound = mean(from, -1.0, sector.step[kInside]) && mean(from, 1.0, sector.step[kOutside]);
        sector.step[kBlur] = kStartBlur;
        any = any || sector.sound;
    }
    return any;
}

// Steps of all sectors under a noise, and without those that no step explains.
template <std::size_t local>
void settle(std::vector<Sector>& sectors, const Noise& noise, double sign) {
    for (int round = 0; round < kMaxRounds; ++round) {
        if (std::fabs(improve<local>(sectors, noise, sign)) < kSettled && round >= kMinRounds) {
            break;
        }
    }
    for (Sector& sector : sectors) {
        if (sector.sound) {
            form<local>(sector, noise);
        }
    }
    const std::optional<double> usual = usualSquare<local>(sectors);
    for (Sector& sector : sectors) {
        const double shape = kShapeError * sector.contrast();
        const double limit = kMisfit * freedom<local>(sector) + kMisfitOfFew;
        sector.sound = sector.sound && usual && sector.squares <= limit * std::max(*usual, shape * shape);
    }
}

// What the steps leave, by least squares over the squared residuals.
template <std::size_t local>
Noise noiseOf(const std::vector<Sector>& sectors) {
    Matrix<3> normal{};
    Vector<3> right{};
    for (const Sector& sector : sectors) {
        if (!sector.sound) {
            continue;
        }
        // The step has taken some of the noise for itself.
        const double taken = static_cast<double>(sector.pixels.size()) / freedom<local>(sector);
        for (const BandPixel& p : sector.pixels) {
            const double share =
                blurredStep(p.distance - sector.step[kOffset], sector.step[kBlur], p.cosine, p.sine).share;
            const double residual = p.gray - (sector.step[kInside] + sector.contrast() * share);
            const Vector<3> row{1.0 - share, share, 4.0 * share * (1.0 - share)};
            for (std::size_t i = 0; i < 3; ++i) {
                for (std::size_t j = i; j < 3; ++j) {
                    normal[i][j] += row[i] * row[j];
                }
                right[i] += row[i] * taken * residual * residual;
            }
        }
    }
    if (!factor(normal)) {
        return {};
    }
    const Vector<3> variances = solve(normal, right);
    return {std::max(variances[0], kRounding), std::max(variances[1], kRounding), std::max(variances[2], 0.0)};
}

template <std::size_t local>
void lay(std::vector<Sector>& sectors, const Ellipse2d& ellipse, double sign, std::vector<SectorStep>& steps) {
    for (Sector& sector : sectors) {
        sector.sound = sector.sound && freedom<local>(sector) >= 1.0;
    }
    settle<local>(sectors, {}, sign);
    settle<local>(sectors, noiseOf<local>(sectors), sign);
    for (std::size_t i = 0; i < sectors.size(); ++i) {
        const Sector& sector = sectors[i];
        if (!sector.sound) {
            continue;
        }
        const Eliminated<local> eliminated(sector);
        if (!eliminated.regular) {
            continue;
        }
        // The offset is the last of a sector's own unknowns: its variance is that of the last factor.
        steps[i].sound = true;
        steps[i].deviation = 1.0 / eliminated.factors[local - 1][local - 1];
        // The half height of a blurred convex edge lies nearer to the centre by half the curvature times the variance.
        const double blur = sector.step[kBlur];
        steps[i].offset =
            sector.step[kOffset] + 0.5 * placeOn(ellipse, steps[i].angle).curvature * (blur * blur + kPixelVariance);
    }
}

}  // namespace

std::vector<SectorStep> sectorSteps(const DenseImage& image, const Ellipse2d& ellipse, DotPolarity polarity) {
    std::vector<Sector> sectors;
    for (std::vector<BandPixel>& band : sectorBands(image, ellipse)) {
        sectors.push_back({});
        sectors.back().pixels = std::move(band);
    }
    std::vector<SectorStep> steps(sectors.size());
    for (std::size_t i = 0; i < steps.size(); ++i) {
        steps[i].angle = 2.0 * std::numbers::pi * (static_cast<double>(i) + 0.5) / static_cast<double>(steps.size());
    }
    const bool own = ellipse.b >= kOwnLevels;
    const double sign = polarity == DotPolarity::dark ? 1.0 : -1.0;
    if (startLevels(sectors, own)) {
        own ? lay<3>(sectors, ellipse, sign, steps) : lay<1>(sectors, ellipse, sign, steps);
    }
    return steps;
}

}  // namespace zelm::measure
