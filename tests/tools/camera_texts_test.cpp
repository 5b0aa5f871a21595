// What the camera server reads: requests, its command line.

#include "net/stream_url.h"
#include "platform/text_field.h"
#include "tools/camera_server/camera_request.h"
#include "tools/camera_server/settings_writer.h"

#include <gtest/gtest.h>

namespace marvolen {
namespace {

TEST(CameraRequestTest, IsWhatTheProgramMeant) {
    constexpr std::uint32_t kDelays[]{0, 3, 7, 10, 17, 30, 97, 197, 497, 997};
    constexpr const char* kPasswords[]{"", "x", "tuvk", "a:b\x80\xFF", "tu"};
    for (int row = 0; row < 10; ++row) {
        ChannelInfo info = FactoryChannelTable()[0];
        SetFieldText(info.host, "localhost");
        SetFieldText(info.password, kPasswords[row % 5]);
        info.cameraIndex = row % 4;
        info.sizeIndex = row % 3;
        info.rateIndex = row;
        std::string head;
        ASSERT_TRUE(FormRequest(FormStreamUrl(info), head));
        EXPECT_EQ(RequestEnd(head + "more"), head.size());
        const CameraRequest request = ParseCameraRequest(head);
        EXPECT_EQ(request.camera, info.cameraIndex) << head;
        EXPECT_EQ(static_cast<int>(request.size), info.sizeIndex);
        EXPECT_EQ(request.delay, kDelays[info.rateIndex]);
        EXPECT_EQ(request.userName + request.password, std::string("root") + kPasswords[row % 5]);
    }
}

TEST(CameraRequestTest, WhatIsWrongIsRefusedAndSecretsAreNotLogged) {
    const std::pair<int, std::string> lines[]{
        {200, "GET /getimage?colour=red HTTP/1.1"}, {405, "POST /getimage HTTP/1.0"},
        {404, "GET /getimages?fmt=sif HTTP/1.0"},   {400, "GET /getimage"},
        {400, "GET /getimage?camera=5 HTTP/1.0"},   {400, "GET /getimage?camera=1x HTTP/1.0"},
        {400, "GET /getimage?fmt= HTTP/1.0"},       {400, "GET /getimage?delay=100001 HTTP/1.0"}};
    for (const auto& [status, line] : lines) {
        const CameraRequest request =
            ParseCameraRequest(line + "\r\nAuthorization: Basic Og\r\n\r\n");
        EXPECT_EQ(request.status, status) << line;
        EXPECT_FALSE(request.hasCredentials) << "no base64";
    }
    EXPECT_EQ(LoggableHeaders("GET / HTTP/1.0\r\nAUTHORIZATION : Basic c2Vj\r\n\tc2Vj\r\nA: b\n"
                              "proxy-authorization: c2Vj\r\n\r\n",
                              "no"),
              (std::vector<std::string>{"Authorization: (no)", "A: b\nproxy-Authorization: (no)"}));
}

TEST(CommandLineTest, IsServedAndWrittenToTheSettingsOrItsMistakesAreNamed) {
    CommandLine line;
    std::string error;
    EXPECT_TRUE(
        ParseCommandLine({"--fault", "all=garbage", "--fault", "2=close-after:5", "--single=1",
                          "--channels", "2", "--port=7001", "--names", "A,Hall"},
                         line, error));
    EXPECT_EQ(line.server.faults,
              (std::vector{MakeFault(FaultKind::Garbage), {FaultKind::CloseAfter, 5}}));
    EXPECT_EQ(line.server.singlePictures, (std::vector{true, false}));
    const ChannelInfo hall = MakeChannelTable(line)[1];
    EXPECT_EQ(std::string(FieldText(hall.netName)).append(FieldText(hall.port)), "Hall7002");
    EXPECT_EQ(FieldText(hall.recordPath), "c:\\chl02.dbt");
    const std::pair<std::vector<std::string>, std::string> mistakes[]{
        {{"--colour", "red"}, "unknown option --colour"},
        {{"--port"}, "--port needs a value"},
        {{"--channels", "17"}, "--channels can't be \"17\""},
        {{"--fault", "5=refuse", "--channels=4"}, "--fault can't be \"5=refuse\""},
        {{"--fault=1=trickle:0"}, "--fault can't be \"1=trickle:0\""},
        {{"--port=65530"}, "the last channel's port lies beyond 65535"}};
    for (const auto& [arguments, wanted] : mistakes) {
        EXPECT_FALSE(ParseCommandLine(arguments, line, error));
        EXPECT_EQ(error, wanted);
    }
}

}  // namespace
}  // namespace marvolen
