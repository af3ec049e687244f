#include "imageSetFaults.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>

#include "imageNames.h"
#include "numberText.h"
#include "plateTilts.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

// Degrees. Up to here the views tell focal lengths so badly that a result is worth a warning (docs/diagnosis.md).
constexpr double kMinMaxTilt = 10.0;
constexpr std::size_t kMaxListed = 6;    // names in a line
constexpr std::size_t kMinMajority = 2;  // times as many views as of another session, that count for the set

std::string nameOf(const fs::path& path) {
    return path.filename().string();
}

class FaultWriter {
public:
    FaultWriter(const ImageSetFindings& given, const std::vector<ViewFiles>& files,
                const std::vector<ViewSharpness>& sharpnessOfViews, const std::string& unitsOfPlate)
        : findings(given), views(files), sharpness(sharpnessOfViews), units(unitsOfPlate) {}

    ImageSetFaults run() {
        faults.setAside.resize(views.size());
        for (const ZelmMeasurePairedView& view : findings.views) {
            good += view.fate == ZELM_MEASURE_VIEW_FITS ? 1U : 0U;
        }
        // What is left must be most of the set, and determine a pair.
        isEnoughLeft = good >= kMinViews && 2 * good >= views.size();
        for (std::size_t i = 0; i < findings.causes.size(); ++i) {
            tell(findings.causes[i], viewsOf(i));
        }
        tellTilts();
        return std::move(faults);
    }

private:
    std::vector<std::size_t> viewsOf(std::size_t cause) const {
        std::vector<std::size_t> list;
        for (std::size_t i = 0; i < findings.views.size(); ++i) {
            if (findings.views[i].cause == static_cast<std::int32_t>(cause)) {
                list.push_back(i);
            }
        }
        return list;
    }

    const fs::path& left(std::int32_t view) const { return views[static_cast<std::size_t>(view)].left; }
    const fs::path& right(std::int32_t view) const { return views[static_cast<std::size_t>(view)].right; }
    const fs::path& image(std::int32_t side, std::size_t view) const {
        return side == 'L' ? views[view].left : views[view].right;
    }
    std::string both(std::size_t view) const {
        return fmt::format("{} and {}", views[view].left.string(), views[view].right.string());
    }

    void tell(const ZelmMeasureSetCause& cause, const std::vector<std::size_t>& list) {
        switch (cause.kind) {
            case ZELM_MEASURE_SET_NO_AGREEMENT:
                return add("no-agreement", list, true, false,
                           fmt::format("{} to {}: no two views agree on one pair of cameras: are both images of a view "
                                       "taken at once, the cameras fixed, and the two lists of the same views?{}",
                                       views.front().left.string(), views.back().right.string(), numbersHint(list)));
            case ZELM_MEASURE_SET_SHIFTED:
                return add("list-shifted", list, true, false, shiftText(cause, list));
            case ZELM_MEASURE_SET_EXCHANGED_VIEWS:
                return add("views-exchanged", list, !isEnoughLeft, true, exchangeText(list));
            case ZELM_MEASURE_SET_OTHER_IMAGES:
                return add("other-order", list, !isEnoughLeft, true, otherText(list));
            case ZELM_MEASURE_SET_COPIES:
                return tellCopies(cause, list);
            case ZELM_MEASURE_SET_TURNED:
                return addImages("turned", cause.side, list,
                                 fmt::format("turned by {} degrees against the other images of this camera: turn {} "
                                             "back, or leave the {} out",
                                             90 * (cause.quarterTurns == 3 ? 1 : cause.quarterTurns),
                                             list.size() > 1 ? "them" : "it", list.size() > 1 ? "views" : "view"));
            case ZELM_MEASURE_SET_MIRRORED:
                return addImages("mirrored", cause.side, list,
                                 fmt::format("mirrored against the other images of this camera: mirror {} back, or "
                                             "leave the {} out",
                                             list.size() > 1 ? "them" : "it", list.size() > 1 ? "views" : "view"));
            case ZELM_MEASURE_SET_SIDE_MIRRORED:
                return tellMirroredSide(cause);
            case ZELM_MEASURE_SET_EXCHANGED_IMAGES:
                return add("left-right-exchanged", list, !isEnoughLeft, true,
                           fmt::format("{}: left and right image are exchanged{}: exchange them", both(list.front()),
                                       moreViews(list)));
            case ZELM_MEASURE_SET_OTHER_SESSION:
                return tellSession(cause, list);
            case ZELM_MEASURE_SET_NOTHING_FITS:
                return tellNothing(list);
            case ZELM_MEASURE_SET_SAME_IMAGES:
                return add("same-images", list, !isEnoughLeft, list.size() < views.size(), sameText(list));
            case ZELM_MEASURE_SET_SAME_VIEWS:
                return tellSameViews();
            default:
                return;
        }
    }

    // A cause of views, with both images of each.
    void add(const char* cause, const std::vector<std::size_t>& list, bool isFatal, bool isSetAside,
             const std::string& text) {
        Doubt doubt{cause, text, {}, isFatal};
        for (const std::size_t view : list) {
            doubt.images.push_back(views[view].left);
            doubt.images.push_back(views[view].right);
        }
        finish(std::move(doubt), list, isSetAside);
    }

    void addImages(const char* cause, std::int32_t side, const std::vector<std::size_t>& list,
                   const std::string& what) {
        Doubt doubt{cause, {}, {}, !isEnoughLeft};
        for (const std::size_t view : list) {
            doubt.images.push_back(image(side, view));
        }
        doubt.text = fmt::format("{}: {} {}", doubt.images.front().string(),
                                 list.size() > 1 ? fmt::format("{} are", names(doubt.images)) : "is", what);
        finish(std::move(doubt), list, true);
    }

    void finish(Doubt doubt, const std::vector<std::size_t>& list, bool isSetAside) {
        if (isSetAside) {
            for (const std::size_t view : list) {
                faults.setAside[view] = doubt.text;
            }
            doubt.text += doubt.isFatal     ? "; too few views are left without"
                          : list.size() > 1 ? "; these views take no part"
                                            : "; this view takes no part";
        }
        faults.doubts.push_back(std::move(doubt));
    }

    static std::string names(const std::vector<fs::path>& images) {
        std::vector<std::string> list;
        for (std::size_t i = 0; i < std::min(images.size(), kMaxListed); ++i) {
            list.push_back(nameOf(images[i]));
        }
        return fmt::format("{}{}", fmt::join(list, ", "),
                           images.size() > kMaxListed ? fmt::format(" and {} more", images.size() - kMaxListed) : "");
    }

    std::string viewWords(const std::vector<std::size_t>& list) const {
        std::vector<fs::path> images;
        for (const std::size_t view : list) {
            images.push_back(views[view].left);
        }
        return fmt::format("the {} views of {}", list.size(), names(images));
    }

    std::string moreViews(const std::vector<std::size_t>& list) const {
        return list.size() > 1 ? fmt::format(", so in {}", viewWords({list.begin() + 1, list.end()})) : std::string();
    }

    // "right_03.png fits left_04.png", of images that have a partner.
    std::vector<std::string> fitting(const std::vector<std::size_t>& list) const {
        std::vector<std::string> words;
        for (const std::size_t i : list) {
            const ZelmMeasurePairedView& view = findings.views[i];
            if (view.rightFits >= 0) {
                words.push_back(fmt::format("{} fits {}", nameOf(views[i].right), nameOf(left(view.rightFits))));
            }
            if (view.leftFits >= 0 &&
                findings.views[static_cast<std::size_t>(view.leftFits)].rightFits != static_cast<std::int32_t>(i)) {
                words.push_back(fmt::format("{} fits {}", nameOf(views[i].left), nameOf(right(view.leftFits))));
            }
        }
        return words;
    }

    static std::string listed(const std::vector<std::string>& words) {
        if (words.size() <= kMaxListed) {
            return fmt::format("{}", fmt::join(words, ", "));
        }
        return fmt::format("{} and so on, {} in all", fmt::join(words.begin(), words.begin() + 3, ", "), words.size());
    }

    std::string shiftText(const ZelmMeasureSetCause& cause, const std::vector<std::size_t>& list) const {
        const int by = std::abs(cause.offset);
        const std::string amount = by == 1 ? "one" : std::to_string(by);
        const std::size_t first = list.front();
        const bool isWhole = first == 0;
        return fmt::format(
            "{}: the images of a pair show different poses; {}: is a list shifted by {}{}? Give --left "
            "and --right the same views in the same order{}",
            both(first), listed(fitting(list)), amount, isWhole ? "" : ", an image missing or too many before this one",
            numbersHint(list));
    }

    std::string exchangeText(const std::vector<std::size_t>& list) const {
        const ViewFiles& a = views[list.front()];
        const ViewFiles& b = views[list.back()];
        const int side = sideOutOfOrder(views, list.front(), list.back());
        const std::string remedy =
            side == 'L'   ? fmt::format("exchange {} and {} in --left", nameOf(a.left), nameOf(b.left))
            : side == 'R' ? fmt::format("exchange {} and {} in --right", nameOf(a.right), nameOf(b.right))
                          : fmt::format("exchange {} and {} in --right, or {} and {} in --left", nameOf(a.right),
                                        nameOf(b.right), nameOf(a.left), nameOf(b.left));
        return fmt::format("{}: the images of a pair show different poses; {}: were two views exchanged? Then {}",
                           both(list.front()), listed(fitting(list)), remedy);
    }

    std::string otherText(const std::vector<std::size_t>& list) const {
        return fmt::format(
            "{}: the images of a pair show different poses; {}: give --left and --right the same views "
            "in the same order{}",
            both(list.front()), listed(fitting(list)), numbersHint(list));
    }

    std::string sameText(const std::vector<std::size_t>& list) const {
        return fmt::format(
            "{}: the same picture twice{}: every dot lies in the same place in both, which no two cameras see: give "
            "--left the images of one camera and --right those of the other one",
            both(list.front()),
            list.size() == views.size() ? ", and so are all other views"
            : list.size() > 1           ? fmt::format(" (so in {} of {} views)", list.size(), views.size())
                                        : "");
    }

    // Either session may be the one that shows the cameras as they stand now, unless it is far the larger one.
    void tellSession(const ZelmMeasureSetCause& cause, const std::vector<std::size_t>& list) {
        const bool isClear = isEnoughLeft && good >= kMinMajority * list.size();
        add("other-session", list, !isClear, isClear,
            fmt::format("{}: {} agree with each other, but not with the other {}: in them the right camera stands "
                        "otherwise to the left one, by about {:.2g} {} and {:.2f} degrees, so that a camera was moved "
                        "in between. Calibrate each session by itself, and measure with that of the cameras as they "
                        "stand now",
                        both(list.front()), viewWords(list), good, cause.shift, units, kDegreesPerRadian * cause.turn));
    }

    // A smear, or a blur, moves dots by no more than its width: then it is the cause.
    const BlurredImage* blurThatExplains(std::size_t view) const {
        for (const BlurredImage& image : blurred) {
            if (image.view == view && findings.views[view].misfit >= 0.0) {
                const ZelmMeasureSharpness& s = *sharpness[view][image.side];
                if (findings.views[view].misfit <= (image.isSmeared ? s.smear : s.largest)) {
                    return &image;
                }
            }
        }
        return nullptr;
    }

    void tellNothing(const std::vector<std::size_t>& list) {
        std::vector<std::size_t> others;
        for (const std::size_t view : list) {
            const BlurredImage* const image = blurThatExplains(view);
            if (image == nullptr) {
                others.push_back(view);
                continue;
            }
            const fs::path& file = image->side == 0 ? views[view].left : views[view].right;
            finish({"blurred-view", blurText(*image, *sharpness[view][image->side], file), {file}, !isEnoughLeft},
                   {view}, true);
        }
        if (!others.empty()) {
            add("nothing-fits", others, !isEnoughLeft, true, nothingText(others));
        }
    }

    std::string nothingText(const std::vector<std::size_t>& list) const {
        const double misfit = findings.views[list.front()].misfit;
        const bool isTold = misfit > findings.pairing.limit && misfit < 1e4;  // less is no reason
        const std::string apart = isTold ? fmt::format(", {:.1f} px apart", misfit) : "";
        return fmt::format(
            "{}: the images of this pair show different poses{}, and fit no other image either{}: did "
            "the plate or a camera move between the two exposures, or is an image from another session? "
            "Take the view anew, or leave it out{}",
            both(list.front()), apart,
            list.size() > 1 ? fmt::format(" (so do {})", viewWords({list.begin() + 1, list.end()})) : "",
            numbersHint(list));
    }

    // That the numbers in the names of some pairs are not the same.
    std::string numbersHint(const std::vector<std::size_t>& list) const {
        const std::vector<std::size_t> odd = pairsOfOtherNumbers(views);
        for (const std::size_t view : odd) {
            if (std::find(list.begin(), list.end(), view) != list.end()) {
                return fmt::format(" (by their numbers, too, {} and {} are no pair)", nameOf(views[view].left),
                                   nameOf(views[view].right));
            }
        }
        return {};
    }

    void tellCopies(const ZelmMeasureSetCause& cause, const std::vector<std::size_t>& list) {
        for (const std::size_t view : list) {
            const auto other = static_cast<std::size_t>(findings.views[view].copyOf);
            const fs::path& copy = image(cause.side, view);
            const fs::path& original = image(cause.side, other);
            const std::int32_t opposite = cause.side == 'L' ? 'R' : 'L';
            const std::string what = areSameFile(copy, original)     ? "the same file as"
                                     : haveSameBytes(copy, original) ? "a copy of"
                                                                     : "another image of the very same pose as";
            Doubt doubt{"copy",
                        fmt::format("{}: as view {} this is {} {} of view {}, but {} shows another pose than {}: give "
                                    "the image that was taken together with {}",
                                    copy.string(), view, what, nameOf(original), other, nameOf(image(opposite, view)),
                                    nameOf(image(opposite, other)), nameOf(image(opposite, view))),
                        {copy, original},
                        !isEnoughLeft};
            finish(std::move(doubt), {view}, true);
        }
    }

    void tellMirroredSide(const ZelmMeasureSetCause& cause) {
        Doubt doubt{"side-mirrored", {}, {}, true};
        for (const ViewFiles& view : views) {
            if (cause.side != 'R') {
                doubt.images.push_back(view.left);
            }
            if (cause.side != 'L') {
                doubt.images.push_back(view.right);
            }
        }
        const std::string which = cause.side == 'L'   ? "all left images are mirrored"
                                  : cause.side == 'R' ? "all right images are mirrored"
                                                      : "either all left or all right images are mirrored";
        doubt.text = fmt::format("{} to {}: {}: switch mirroring off in that camera, or mirror its images back",
                                 doubt.images.front().string(), doubt.images.back().string(), which);
        faults.doubts.push_back(std::move(doubt));
    }

    void tellSameViews() {
        Doubt doubt{"same-view", {}, {}, false};
        std::vector<std::string> words;
        for (std::size_t i = 0; i < findings.views.size(); ++i) {
            const std::int32_t same = findings.views[i].sameView;
            if (same < 0 || findings.views[i].fate == ZELM_MEASURE_VIEW_COPY) {
                continue;
            }
            doubt.images.push_back(views[i].left);
            doubt.images.push_back(views[i].right);
            words.push_back(
                fmt::format("{} (view {}) as {} (view {})", nameOf(views[i].left), i, nameOf(left(same)), same));
        }
        doubt.text = fmt::format(
            "{} and {}: the plate stands where it stood before ({}): such a view adds nothing; "
            "move and tilt the plate from view to view",
            doubt.images[0].string(), doubt.images[1].string(), listed(words));
        faults.doubts.push_back(std::move(doubt));
    }

    void tellTilts() {
        if (findings.pairing.isDetermined == 0 || good < kMinViews || maxTilt(findings) >= kMinMaxTilt) {
            return;
        }
        faults.doubts.push_back(
            {"small-tilts",
             fmt::format("{} to {}: the plate is hardly tilted in any view ({}): focal lengths and distances are badly "
                         "determined; tilt it by 20 degrees and more, in each view to another side",
                         views.front().left.string(), views.back().right.string(), tiltList(findings)),
             {},
             false});
    }

    const ImageSetFindings& findings;
    const std::vector<ViewFiles>& views;
    const std::vector<ViewSharpness>& sharpness;
    const std::string& units;
    std::vector<BlurredImage> blurred = blurredImages(sharpness);
    std::size_t good = 0;  // views that fit
    bool isEnoughLeft = true;
    ImageSetFaults faults;
};

}  // namespace

ImageSetFaults faultsOf(const ImageSetFindings& findings, const std::vector<ViewFiles>& views,
                        const std::vector<ViewSharpness>& sharpness, const std::string& units) {
    return FaultWriter(findings, views, sharpness, units).run();
}

}  // namespace zelm::tool
