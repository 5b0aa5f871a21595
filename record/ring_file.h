#pragma once

// RingFile: a file as a ring of bytes (record/basic_file.h has the rules of the family).
//
// A RingHeader lies at 0, data from kRingDataStart up to the maximum size. With the limit on
// (SetLimited), writes that reach the maximum go on at kRingDataStart; reads that reach the end of
// the file always do. The mark is the head, the start of the oldest data still wanted: before a
// write covers it, OnHeadReached lets a subclass move it on.
//
// A changed header is written by Close, not by the destructor.

#include "record/marked_file.h"
#include "record/record_format.h"

namespace marvolen {

class RingFile : public MarkedFile {
public:
    // Create writes a fresh header with the head at kRingDataStart; its maximum is whatever was set
    // before. Open reads the header and takes over its maximum and head; it fails when the file
    // doesn't start with "RING" or its maximum is smaller than the header. In both cases the limit
    // and the watch stay off until SetLimited(true).
    bool Create(const std::string& path) override;
    bool Open(const std::string& path) override;
    // Writes a changed header, then closes as LimitedFile; the watch stays as it is.
    void Close() override;

    // With the limit on, a position beyond the maximum is folded back, once. The maximum itself is
    // left as it is.
    bool Seek(std::uint64_t pos) override;

    // Goes on at kRingDataStart when nothing is left to read at the position.
    bool Read(void* buf, std::uint32_t n, std::uint32_t* got) override;

    // Also refuses a size below kRingDataStart.
    bool SetMaxSize(std::uint64_t size) override;

    // Limit and watch together; always true.
    bool SetLimited(bool flag);

    // The position of the oldest data still wanted, as the header has it.
    std::uint64_t GetHead() const { return header.head; }
    // Moves the head and with it the mark, and notes it for the header; always true.
    bool SetHead(std::uint64_t pos);
    // The maximum that the header tells, in bytes.
    std::uint64_t GetHeaderMaxSize() const { return header.maxSize; }
    // Sets the maximum and notes it for the header. False, with nothing changed, where SetMaxSize
    // refuses.
    bool SetHeaderMaxSize(std::uint64_t size);

protected:
    // Cuts a file that has outgrown a lowered maximum, and goes to kRingDataStart.
    void OnLimit() override;
    void OnMark() override;
    // The head is now at pos.
    virtual void MoveMark(std::uint64_t pos);
    // The next write would cover the head. Leaves the position where it found it. May refuse the
    // write, see RefuseWrite.
    virtual void OnHeadReached();

    // The steps of Create and Open that follow once the file is open.
    bool StartRing();
    bool TakeUpRing();

    // Writes the header if it has changed. Leaves the position behind it.
    bool WriteHeader();

    // A read or write has failed: what could be read tells nothing about what the file holds. Only
    // subclasses reset it.
    bool transferFailed = false;

private:
    void InitHeader();
    bool ReadHeader();

    bool headerDirty = false;
    RingHeader header{};
};

}  // namespace marvolen
