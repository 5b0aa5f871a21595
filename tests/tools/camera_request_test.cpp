#include "tools/camera_server/camera_request.h"

#include "config/channel_options.h"
#include "tools/camera_server/base64_decode.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace marvolen {
namespace {

CameraRequest ParseQuery(const std::string& query) {
    return ParseCameraRequest("GET /getimage?" + query + " HTTP/1.0\r\n\r\n");
}

TEST(CameraRequestTest, EveryCombinationOfTheProgramsOptionsIsUnderstood) {
    for (std::size_t camera = 0; camera < g_cameraOptions.size(); ++camera) {
        for (std::size_t size = 0; size < g_sizeOptions.size(); ++size) {
            for (const RateOption& rate : g_rateOptions) {
                const std::string query = std::string(g_cameraOptions[camera].query) +
                                          std::string(g_sizeOptions[size].query) +
                                          std::string(rate.query);
                const CameraRequest request = ParseQuery(query);
                EXPECT_EQ(request.status, 200) << query;
                EXPECT_EQ(request.camera, static_cast<int>(camera)) << query;
                EXPECT_EQ(request.size, static_cast<PictureSize>(size)) << query;
                // What the label promises is what the delay gives.
                const double wanted = std::strtod(rate.label.data(), nullptr);
                const double period =
                    std::chrono::duration<double>(
                        PicturePeriod(std::chrono::nanoseconds(33'333'333), request.delay))
                        .count();
                EXPECT_NEAR(1 / period, wanted, wanted * 0.06) << query;
            }
        }
    }
}

TEST(CameraRequestTest, OptionsThatAreMissingUnknownOrWrong) {
    const CameraRequest bare = ParseCameraRequest("GET /getimage HTTP/1.1\r\n\r\n");
    EXPECT_EQ(bare.status, 200);
    EXPECT_EQ(bare.camera, 0);
    EXPECT_EQ(bare.size, PictureSize::Sif);
    EXPECT_EQ(bare.delay, 0U);
    EXPECT_EQ(ParseQuery("camera=2&colour=red&fmt=qsif").camera, 1);
    for (const char* wrong : {"camera=0", "camera=5", "camera=", "camera=1x", "fmt=huge",
                              "fmt=", "delay=-1", "delay=100001", "delay=99999999999999"}) {
        EXPECT_EQ(ParseQuery(wrong).status, 400) << wrong;
    }
}

TEST(CameraRequestTest, OtherMethodsPathsAndNonsenseAreRefused) {
    EXPECT_EQ(ParseCameraRequest("POST /getimage HTTP/1.0\r\n\r\n").status, 405);
    EXPECT_EQ(ParseCameraRequest("GET / HTTP/1.0\r\n\r\n").status, 404);
    EXPECT_EQ(ParseCameraRequest("GET /getimages?camera=1 HTTP/1.0\r\n\r\n").status, 404);
    EXPECT_EQ(ParseCameraRequest("GET /getimage\r\n\r\n").status, 400);
    EXPECT_EQ(ParseCameraRequest("").status, 400);
    EXPECT_EQ(ParseCameraRequest(std::string("\0\xFF\r\n\r\n", 6)).status, 400);
}

TEST(CameraRequestTest, CredentialsAreReadFromTheBasicHeaderOnly) {
    const auto withHeader = [](const std::string& header) {
        return ParseCameraRequest("GET /getimage HTTP/1.0\r\nUser-Agent: x\r\n" + header +
                                  "\r\n\r\n");
    };
    const CameraRequest good = withHeader("Authorization: Basic cm9vdDp0dXZr");
    EXPECT_TRUE(good.hasCredentials);
    EXPECT_EQ(good.userName, "root");
    EXPECT_EQ(good.password, "tuvk");
    const CameraRequest colons = withHeader("authorization:basic YTpiOmM=");  // a:b:c
    EXPECT_EQ(colons.userName, "a");
    EXPECT_EQ(colons.password, "b:c");
    const CameraRequest empty = withHeader("Authorization: Basic Og==");
    EXPECT_TRUE(empty.hasCredentials);
    EXPECT_EQ(empty.userName + empty.password, "");
    for (const char* header : {"Authorization: Digest cm9vdDp0dXZr",
                               "Authorization: Basic cm9vdA==", "Authorization: Basic ?",
                               "Authorization:", "X-Other: Basic Og=="}) {
        EXPECT_FALSE(withHeader(header).hasCredentials) << header;
    }
}

TEST(CameraRequestTest, HeadersAreLoggedWithoutTheirSecret) {
    const std::string head =
        "GET /getimage HTTP/1.0\r\nUser-Agent: x y\r\nAUTHORIZATION : Basic c2VjcmV0\r\n"
        "\tc2VjcmV0\r\nProxy-Authorization:c2VjcmV0\r\n folded\r\nHost: h\r\n z\r\nA: "
        "b\nauthorization: c2VjcmV0\r\n\r\n";
    EXPECT_EQ(LoggableHeaders(head, "refused"),
              (std::vector<std::string>{"User-Agent: x y", "Authorization: (refused)",
                                        "Proxy-Authorization: (refused)", "Host: h", " z",
                                        "A: b\nAuthorization: (refused)"}));
    EXPECT_TRUE(LoggableHeaders("GET / HTTP/1.0\r\n\r\n", "accepted").empty());
    EXPECT_TRUE(LoggableHeaders("", "accepted").empty());
}

TEST(CameraRequestTest, TheHeadEndsAtItsEmptyLine) {
    EXPECT_EQ(RequestEnd("GET / HTTP/1.0\r\nA: b\r\n"), 0U);
    EXPECT_EQ(RequestEnd("GET / HTTP/1.0\r\n\r\nmore"), 18U);
}

TEST(Base64DecodeTest, DecodesEveryByteAndRefusesTheRest) {
    EXPECT_EQ(DecodeBase64("").value(), "");
    EXPECT_EQ(DecodeBase64("AA==").value(), std::string(1, '\0'));
    EXPECT_EQ(DecodeBase64("+/8=").value(), "\xFB\xFF");
    EXPECT_EQ(DecodeBase64("gICA").value(), "\x80\x80\x80");
    for (const char* wrong : {"A", "AAA", "A===", "A=AA", "AA=A", "AA!A", "AAAA\n"}) {
        EXPECT_FALSE(DecodeBase64(wrong).has_value()) << wrong;
    }
}

}  // namespace
}  // namespace marvolen
