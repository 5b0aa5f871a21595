// Whole pictures: the fast path bit for bit against the model, both paths against libjpeg-turbo.

#include "tests/jpeg/decoding.h"
#include "tests/jpeg/reference_model.h"

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace marvolen::test {
namespace {

struct Case {
    std::string name;
    EncodeOptions options;
};

void PrintTo(const Case& testCase, std::ostream* out) {
    *out << testCase.name;
}

std::vector<Case> AllCases() {
    std::vector<Case> cases;
    const auto addSamplings = [&](const std::string& name, const EncodeOptions& options) {
        EncodeOptions gray = options;
        gray.gray = true;
        cases.push_back({name + "Gray", gray});
        for (const auto& [horizontal, vertical] : {std::pair{1, 1}, {2, 1}, {1, 2}, {2, 2}}) {
            EncodeOptions colour = options;
            colour.horizontal = horizontal;
            colour.vertical = vertical;
            cases.push_back(
                {name + std::to_string(horizontal) + "x" + std::to_string(vertical), colour});
        }
    };
    addSamplings("Standard", {});
    addSamplings("Fine", {.quantPercent = 3});
    addSamplings("Optimised", {.quantPercent = 20, .optimise = true});
    addSamplings("Wide", {.quantPercent = 400});
    addSamplings("Restarts", {.restartInterval = 1});
    addSamplings("RareRestarts", {.optimise = true, .restartInterval = 13});
    addSamplings("Progressive", {.progressive = true});
    addSamplings("ProgressiveRestarts", {.restartInterval = 7, .progressive = true});
    addSamplings("ProgressiveFine", {.quantPercent = 5, .progressive = true});
    // Spectral selection and successive approximation each on their own, and the whole AC band in
    // one scan with one refinement.
    cases.push_back({"Spectral",
                     {.scans = {{{0, 1, 2}, 0, 0, 0, 0},
                                {{0}, 1, 5, 0, 0},
                                {{2}, 1, 63, 0, 0},
                                {{0}, 6, 63, 0, 0},
                                {{1}, 1, 63, 0, 0}}}});
    cases.push_back({"Successive",
                     {.quantPercent = 10,
                      .scans = {{{0, 1, 2}, 0, 0, 0, 1},
                                {{0}, 1, 63, 0, 1},
                                {{1}, 1, 63, 0, 1},
                                {{2}, 1, 63, 0, 1},
                                {{0, 1, 2}, 0, 0, 1, 0},
                                {{0}, 1, 63, 1, 0},
                                {{1}, 1, 63, 1, 0},
                                {{2}, 1, 63, 1, 0}}}});
    cases.push_back({"SeparateDc",
                     {.quantPercent = 10,
                      .scans = {{{0}, 0, 0, 0, 2},
                                {{1}, 0, 0, 0, 2},
                                {{2}, 0, 0, 0, 2},
                                {{0}, 0, 0, 2, 1},
                                {{1}, 0, 0, 2, 1},
                                {{2}, 0, 0, 2, 1},
                                {{0, 1, 2}, 0, 0, 1, 0},
                                {{0}, 1, 63, 0, 3},
                                {{0}, 1, 63, 3, 2},
                                {{0}, 1, 63, 2, 1},
                                {{0}, 1, 63, 1, 0}}}});
    return cases;
}

// MakePhotograph, once for each size.
const Picture& Photograph(int width, int height) {
    static std::map<std::pair<int, int>, Picture> made;
    Picture& picture = made[{width, height}];
    if (picture.rgb.empty()) picture = MakePhotograph(width, height);
    return picture;
}

class PictureTest : public testing::TestWithParam<Case> {};

TEST_P(PictureTest, FastPathIsTheModelBitForBit) {
    for (const auto& [width, height] :
         {std::pair{1, 1}, {7, 9}, {17, 33}, {353, 241}, {8192, 8}, {704, 480}}) {
        SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height));
        const Bytes jpeg = EncodeJpeg(Photograph(width, height), GetParam().options);
        const Decoded decoded = Decode(jpeg);
        ASSERT_EQ(decoded.result, 1) << decoded.error;
        EXPECT_EQ(decoded.error, 0);
        const Picture model = ModelFastPicture(ReadCoefficients(jpeg), width, height);
        ASSERT_TRUE(decoded.picture.rgb == model.rgb);
    }
}

TEST_P(PictureTest, DiffersFromLibjpegByRoundingOnly) {
    const Bytes jpeg = EncodeJpeg(Photograph(353, 241), GetParam().options);
    const Decoded fast = Decode(jpeg, JpegPath::Fast);
    const Decoded plain = Decode(jpeg, JpegPath::Plain);
    EXPECT_LT(MeanDifference(fast.picture, DecodeWithLibjpeg(jpeg, JpegPath::Fast)), 0.5);
    EXPECT_LT(MeanDifference(plain.picture, DecodeWithLibjpeg(jpeg, JpegPath::Plain)), 0.2);
    EXPECT_EQ(plain.error, 0);
}

INSTANTIATE_TEST_SUITE_P(Pictures, PictureTest, testing::ValuesIn(AllCases()),
                         [](const auto& testCase) { return testCase.param.name; });

TEST(CameraPictureTest, DiffersFromLibjpegByRoundingOnly) {
    for (const int quantPercent : {30, 50, 80}) {
        SCOPED_TRACE(quantPercent);
        const Bytes jpeg = EncodeJpeg(Photograph(704, 480), {.quantPercent = quantPercent});
        EXPECT_GT(jpeg.size(), 30000U);
        for (const auto& [path, limit] : {std::pair{JpegPath::Fast, 0.5}, {JpegPath::Plain, 0.2}}) {
            EXPECT_LT(MeanDifference(Decode(jpeg, path).picture, DecodeWithLibjpeg(jpeg, path)),
                      limit);
        }
    }
}

// At quality 100 the table entry of the highest frequency rounds to 0 on the fast path.
TEST(ChequerboardTest, IsExactOnThePlainPathOnly) {
    Picture picture{32, 32, {}};
    for (int i = 0; i < 32 * 32; ++i) {
        const bool white = (i + i / 32) % 2 == 0;
        picture.rgb.insert(picture.rgb.end(), 3, white ? 255 : 0);
    }
    const Bytes jpeg = EncodeJpeg(picture, {.gray = true, .quantPercent = 1});
    EXPECT_LT(MeanDifference(Decode(jpeg, JpegPath::Plain).picture, picture), 1);
    const Picture fast = Decode(jpeg, JpegPath::Fast).picture;
    EXPECT_TRUE(fast.rgb == ModelFastPicture(ReadCoefficients(jpeg), 32, 32).rgb);
    EXPECT_GT(MeanDifference(fast, picture), 20);
    const Bytes coarser = EncodeJpeg(picture, {.gray = true, .quantPercent = 20});
    EXPECT_LT(MeanDifference(Decode(coarser, JpegPath::Fast).picture, picture), 20);
}

}  // namespace
}  // namespace marvolen::test
