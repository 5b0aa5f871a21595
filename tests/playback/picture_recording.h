#pragma once

// Record files of real pictures, each with a time of its own.

#include "tests/playback/checked_avi.h"
#include "tests/record/record_fixture.h"

namespace marvolen::test {

// The decoder's corpus: pictures of all kinds, and what only looks like one.
inline std::vector<std::string> Corpus() {
    std::vector<std::string> pictures;
    for (const auto& entry : std::filesystem::directory_iterator(JPEG_CORPUS)) {
        if (entry.path().extension() == ".jpg") pictures.push_back(ReadWholeFile(entry.path()));
    }
    std::sort(pictures.begin(), pictures.end());
    EXPECT_GT(pictures.size(), 100U);
    return pictures;
}

class PictureRecording : public RecordFixture {
protected:
    // The first record is stamped 08:15:00, the others so many milliseconds after each other.
    SYSTEMTIME TimeOf(std::size_t k) const {
        const auto seconds = static_cast<unsigned>(15 * 60 + k * apart / 1000);
        SYSTEMTIME time{2026, 11, 1, 23, 8, 0, 0, 0};
        time.hour = static_cast<std::uint16_t>(8 + seconds / 3600);
        time.minute = static_cast<std::uint16_t>(seconds / 60 % 60);
        time.second = static_cast<std::uint16_t>(seconds % 60);
        time.milliseconds = static_cast<std::uint16_t>(k * apart % 1000);
        return time;
    }
    bool AppendPicture(const std::string& bytes) {
        const FramePtr frame = pool.Acquire();
        std::copy(bytes.begin(), bytes.end(), frame->Data());
        frame->SetLength(static_cast<std::uint32_t>(bytes.size()));
        frame->SetTime(TimeOf(pictures.size()));
        pictures.push_back(bytes);
        return file->WriteFrame(*frame);
    }
    // Records pictures of the corpus, each with its number in a comment.
    void Record(const char* name, int count) {
        const std::string plain = ReadWholeFile(std::string(JPEG_CORPUS "/") + name + ".jpg");
        for (; count > 0; --count) {
            std::string picture = plain;
            ASSERT_TRUE(AppendPicture(picture.insert(2, Words({0x0600FEFF, pictures.size()}))));
        }
    }

    std::size_t apart = 400;
    std::vector<std::string> pictures;  // appended so far
};

}  // namespace marvolen::test
