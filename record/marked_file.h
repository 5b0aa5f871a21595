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

    void SetWatch(bool flag) { watchOn = flag; }
    void SetMark(std::uint64_t pos) { mark = pos; }
    std::uint64_t GetMark() const { return mark; }

protected:
    virtual void OnMark();
    // For OnMark: the write that is about to cover the mark fails instead, with nothing moved.
    void RefuseWrite() { writeRefused = true; }

private:
    bool watchOn = false;
    bool writeRefused = false;
    std::uint64_t mark = 0;  // meaningful once set
};

}  // namespace marvolen
