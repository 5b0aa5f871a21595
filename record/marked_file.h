#pragma once

// MarkedFile: a file with a watched position, the mark (record/basic_file.h has the rules of the
// family).
//
// While watching is on, a write that would cover the byte at the mark calls OnMark before anything
// is written.

#include "record/limited_file.h"

namespace marvolen {

class MarkedFile : public LimitedFile {
public:
    // Switches the watch off, then as LimitedFile.
    void Close() override;

    // A write that starts at the mark covers it, one that ends there doesn't. The length counts as
    // asked for, before any clipping. OnMark is called once more for each further position within
    // the write that it moves the mark forward to.
    bool Write(const void* buf, std::uint32_t n, std::uint32_t* put) override;

    // Whether writes that cover the mark call OnMark.
    void SetWatch(bool flag) { watchOn = flag; }
    // The mark, a position; setting it neither reads nor writes.
    void SetMark(std::uint64_t pos) { mark = pos; }
    std::uint64_t GetMark() const { return mark; }

protected:
    // Called before a write that would cover the mark; leaves the position where it found it. May
    // move the mark, or refuse the write. Does nothing here.
    virtual void OnMark();
    // For OnMark: the write that is about to cover the mark fails instead, with nothing moved.
    void RefuseWrite() { writeRefused = true; }

private:
    bool watchOn = false;
    bool writeRefused = false;
    std::uint64_t mark = 0;  // meaningful once set
};

}  // namespace marvolen
