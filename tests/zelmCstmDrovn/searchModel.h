// The whole search once more, plainly: from pixels to matches in doubles and 64-bit integers, with standard containers
// and closed forms. Only the walk over the line's pixels is the library's own, by its exported function.
#ifndef ZELM_TEST_SEARCH_MODEL_H
#define ZELM_TEST_SEARCH_MODEL_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "correlation.h"
#include "searchScene.h"
#include "zelm/cstmGeometry.h"

namespace zelmtest {

// Vector tiers take every pixel for the checker pattern.
inline bool checkerTakesAllPixels() {
    const std::uint8_t tmpl[4] = {10, 20, 30, 90};
    const std::uint8_t img[4] = {10, 90, 0, 50};
    return zelm::nccChecker(tmpl, 2, 2, 2, 4, 14800, 150, img, 2) ==
           zelm::nccFull(tmpl, 2, 2, 2, 4, 14800, 150, img, 2);
}

class SearchModel {
public:
    struct Coverage {
        int climbs[3] = {};
        int dropped = 0;
        int low = 0;
        int raised = 0;
        int thinned = 0;
        int stopped = 0;
    };
    Coverage coverage;

    explicit SearchModel(bool checkerIsFull) : checkerTakesAll(checkerIsFull) {}

    std::vector<ZelmCstmMatch> run(const SearchScene& scene) {
        s = &scene;
        walk();
        std::vector<double> score(lattice.size());
        for (std::size_t k = 0; k < lattice.size(); ++k) {
            score[k] = scoreAt(scene.prm.mode, static_cast<int>(k));
        }
        std::vector<ZelmCstmMatch> list;
        for (const int peak : select(score)) {
            refine(peak, &list);
            if (static_cast<int>(list.size()) == scene.prm.maxResults) {
                coverage.stopped += 1;
                break;
            }
        }
        return list;
    }

private:
    void walk() {
        const ZelmCstmSearchPrm& prm = s->prm;
        const ZelmRect roi{prm.roiX, prm.roiY, prm.roiWidth, prm.roiHeight};
        lattice.resize(static_cast<std::size_t>(std::max(prm.roiWidth, prm.roiHeight)));
        std::int32_t count = 0;
        zelmCstmDrovnGetPixelOnEpiLine(&roi, &prm.epiLine, &count, lattice.data());
        lattice.resize(static_cast<std::size_t>(count));
        const double length = std::hypot(prm.epiLine.a, prm.epiLine.b);
        normal = {prm.epiLine.a / length, prm.epiLine.b / length, prm.epiLine.c / length};
        direction = {-normal.b, normal.a};
        const double forward =
            direction.x * (lattice.back().x - lattice.front().x) + direction.y * (lattice.back().y - lattice.front().y);
        if (forward < 0.0) {
            direction = {normal.b, -normal.a};
        }
    }

    [[nodiscard]] bool visits(int mode, int c, int r) const {
        if (mode == ZELM_CSTM_QUARTER) {
            return c % 2 == 0 && r % 2 == 0;
        }
        return mode == ZELM_CSTM_FULL || checkerTakesAll || (c + r) % 2 == 0;
    }

    // The documented formula, rounded where it is: products of the score in single precision.
    [[nodiscard]] double scoreAt(int mode, int k) const {
        const Point2i at = lattice[static_cast<std::size_t>(k)];
        const int x0 = at.x - static_cast<int>(s->ref.anchorX + 0.5);
        const int y0 = at.y - static_cast<int>(s->ref.anchorY + 0.5);
        const int w = s->tmplWidth;
        const int h = s->tmplHeight;
        if (x0 < 0 || y0 < 0 || x0 + w > s->width || y0 + h > s->height) {
            return -2.0;
        }
        std::int64_t n = 0, sumI = 0, sumII = 0, sumIT = 0, sumT = 0, sumTT = 0, set = 0;
        for (int r = 0; r < h; ++r) {
            for (int c = 0; c < w; ++c) {
                const auto t = static_cast<std::size_t>(r * w + c);
                const auto i = static_cast<std::size_t>((y0 + r) * s->width + x0 + c);
                const bool inTemplate = s->tmplMask.empty() || s->tmplMask[t] != 0;
                set += inTemplate ? 1 : 0;
                if (visits(mode, c, r) && inTemplate && (s->mask.empty() || s->mask[i] != 0)) {
                    const std::int64_t T = s->tmplPixels[t];
                    const std::int64_t I = s->pixels[i];
                    n += 1;
                    sumI += I;
                    sumII += I * I;
                    sumIT += I * T;
                    sumT += T;
                    sumTT += T * T;
                }
            }
        }
        std::int64_t N = n;
        std::int64_t V = n * sumTT - sumT * sumT;
        if (s->mask.empty()) {  // the template's statistics, scaled for the full window
            N = set;
            const double deviation = s->ref.sigma[mode] * static_cast<double>(N);
            V = static_cast<std::int64_t>(deviation * deviation);
            sumT = static_cast<std::int64_t>(s->ref.mean[mode] * static_cast<double>(N));
        } else if (n == 0) {
            return -2.0;
        }
        const float D = static_cast<float>(V) * static_cast<float>(N * sumII - sumI * sumI);
        const auto covariance = static_cast<float>(N * sumIT - sumI * sumT);
        const float score =
            D < 1e-9F ? 0.0F : static_cast<float>(static_cast<double>(covariance) / std::sqrt(static_cast<double>(D)));
        return s->mask.empty() || score > 0.0F ? static_cast<double>(score) : -2.0;
    }

    std::vector<int> select(const std::vector<double>& score) {
        std::vector<int> peaks;
        for (int i = 1; i + 1 < static_cast<int>(score.size()); ++i) {
            const double* const at = &score[static_cast<std::size_t>(i)];
            if (at[-1] != -2.0 && at[0] != -2.0 && at[1] != -2.0 && at[0] >= at[-1] && at[0] >= at[1]) {
                peaks.push_back(i);
            }
        }
        if (peaks.size() < 2) {
            return peaks;
        }
        const auto scoreOf = [&](int i) { return score[static_cast<std::size_t>(i)]; };
        std::stable_sort(peaks.begin(), peaks.end(), [&](int a, int b) { return scoreOf(a) > scoreOf(b); });
        const bool full = s->prm.mode == ZELM_CSTM_FULL;
        const double t = std::max(0.0, s->prm.minScore) - (full ? 0.0 : 0.2);
        while (!peaks.empty() && !(scoreOf(peaks.back()) >= t)) {
            peaks.pop_back();
        }
        const int r = s->prm.minDistance - (full ? 2 : 4);
        if (r < 2 || peaks.size() < 2) {
            return peaks;
        }
        std::vector<int> kept;
        for (const int peak : peaks) {
            const bool isNear = std::any_of(kept.begin(), kept.end(), [&](int other) {
                const Point2i& p = lattice[static_cast<std::size_t>(peak)];
                const Point2i& q = lattice[static_cast<std::size_t>(other)];
                return (p.x - q.x) * (p.x - q.x) + (p.y - q.y) * (p.y - q.y) < r * r;
            });
            if (!isNear) {
                kept.push_back(peak);
            }
        }
        coverage.thinned += kept.size() < peaks.size() ? 1 : 0;
        return kept;
    }

    // The local maximum that a coarse peak leads to, -1 for none.
    int climb(int k) {
        for (int step = 0; step <= 2; ++step) {
            const auto full = [&](int i) {
                return i < 0 || i >= static_cast<int>(lattice.size()) ? -2.0 : scoreAt(ZELM_CSTM_FULL, i);
            };
            const double before = full(k - 1), here = full(k), behind = full(k + 1);
            if (before == -2.0 || here == -2.0 || behind == -2.0) {
                break;
            }
            if (here >= before && here >= behind) {
                coverage.climbs[step] += 1;
                return k;
            }
            k += behind > before ? 1 : -1;
        }
        coverage.dropped += 1;
        return -1;
    }

    [[nodiscard]] double along(int k) const {
        const Point2i& p = lattice[static_cast<std::size_t>(k)];
        return p.x * direction.x + p.y * direction.y;
    }

    void refine(int k, std::vector<ZelmCstmMatch>* list) {
        const bool full = s->prm.mode == ZELM_CSTM_FULL;
        if (!full) {
            k = climb(k);
            if (k < 0) {
                return;
            }
        }
        const double score[3] = {scoreAt(ZELM_CSTM_FULL, k - 1), scoreAt(ZELM_CSTM_FULL, k),
                                 scoreAt(ZELM_CSTM_FULL, k + 1)};
        if (score[1] < std::max(0.0, s->prm.minScore)) {
            coverage.low += 1;
            return;
        }
        const double least = *std::min_element(score, score + 3);
        const double raise = least < 0.1 ? std::max(0.0, -least) + 0.1 : 0.0;
        coverage.raised += raise > 0.0 ? 1 : 0;
        const double before = -std::fabs(along(k - 1) - along(k));
        const double behind = std::fabs(along(k + 1) - along(k));
        // Through three points, by slopes: left and right of the centre, whose abscissa is 0.
        const double centre = std::log(score[1] + raise);
        const double left = (centre - std::log(score[0] + raise)) / -before;
        const double right = (std::log(score[2] + raise) - centre) / behind;
        const double a = (right - left) / (behind - before);
        const double b = left - a * before;
        const double peak = std::fabs(a) <= 1e-9 ? 0.5 * (before + behind) : -b / (2.0 * a);
        if (a > 1e-9 || peak < before || peak > behind) {
            return;
        }
        const Point2i& p = lattice[static_cast<std::size_t>(k)];
        const double off = normal.a * p.x + normal.b * p.y + normal.c;
        append({score[1], p.x - off * normal.a + peak * direction.x, p.y - off * normal.b + peak * direction.y}, list);
    }

    void append(const ZelmCstmMatch& match, std::vector<ZelmCstmMatch>* list) const {
        list->push_back(match);
        if (s->prm.mode != ZELM_CSTM_FULL) {
            std::stable_sort(list->begin(), list->end(),
                             [](const ZelmCstmMatch& a, const ZelmCstmMatch& b) { return a.score > b.score; });
        }
        const double least = s->prm.minDistance <= 0 ? 1e-12 : s->prm.minDistance;
        std::vector<ZelmCstmMatch> kept;
        for (const ZelmCstmMatch& m : *list) {
            const bool isNear = std::any_of(kept.begin(), kept.end(), [&](const ZelmCstmMatch& other) {
                return std::hypot(m.x - other.x, m.y - other.y) < least;
            });
            if (!isNear) {
                kept.push_back(m);
            }
        }
        *list = kept;
    }

    bool checkerTakesAll;
    const SearchScene* s = nullptr;
    std::vector<Point2i> lattice;
    Line2d normal{};
    Point2d direction{};
};

}  // namespace zelmtest

#endif
