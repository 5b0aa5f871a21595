#include "record/ring_file.h"

namespace marvolen {

bool RingFile::Create(const std::string& path) {
    if (!MarkedFile::Create(path)) return false;
    if (StartRing()) return true;
    Close();
    return false;
}

bool RingFile::StartRing() {
    InitHeader();
    return WriteHeader() && SetHead(header.head);
}

bool RingFile::Open(const std::string& path) {
    if (!MarkedFile::Open(path)) return false;
    if (TakeUpRing()) return true;
    Close();
    return false;
}

bool RingFile::TakeUpRing() {
    if (!ReadHeader() || !SetMaxSize(header.maxSize)) return false;
    MoveMark(header.head);
    return true;
}

void RingFile::Close() {
    if (headerDirty && IsOpen()) WriteHeader();
    headerDirty = false;
    // Not MarkedFile's, which ends the watch: whoever opens a ring says whether to watch it.
    LimitedFile::Close();  // NOLINT(bugprone-parent-virtual-call)
}

bool RingFile::Seek(std::uint64_t pos) {
    if (limitOn && pos > maxSize) pos -= maxSize - kRingDataStart;
    return MarkedFile::Seek(pos);
}

bool RingFile::Read(void* buf, std::uint32_t n, std::uint32_t* got) {
    std::uint32_t moved = 0;
    if (!MarkedFile::Read(buf, n, &moved)) return false;
    if (moved > 0) {
        if (got != nullptr) *got = moved;
        return true;
    }
    return MarkedFile::Seek(kRingDataStart) && MarkedFile::Read(buf, n, got);
}

bool RingFile::SetMaxSize(std::uint64_t size) {
    return size >= kRingDataStart && MarkedFile::SetMaxSize(size);
}

bool RingFile::SetLimited(bool flag) {
    SetLimit(flag);
    SetWatch(flag);
    return true;
}

bool RingFile::SetHead(std::uint64_t pos) {
    if (pos != header.head) {
        header.head = pos;
        headerDirty = true;
    }
    MoveMark(pos);
    return true;
}

bool RingFile::SetHeaderMaxSize(std::uint64_t size) {
    if (!SetMaxSize(size)) return false;
    if (size != header.maxSize) {
        header.maxSize = size;
        headerDirty = true;
    }
    return true;
}

void RingFile::OnLimit() {
    // After a failed write the position may be anywhere: cut at the maximum, not here.
    if (GetSize() > maxSize && MarkedFile::Seek(maxSize)) SetEndOfFile();
    MarkedFile::Seek(kRingDataStart);
}

void RingFile::OnMark() {
    OnHeadReached();
}

void RingFile::MoveMark(std::uint64_t pos) {
    SetMark(pos);
}

void RingFile::OnHeadReached() {}

void RingFile::InitHeader() {
    header.magic = kRingMagic;
    header.reserved = 0;
    header.head = kRingDataStart;
    headerDirty = true;
}

bool RingFile::ReadHeader() {
    RingHeader stored{};
    std::uint32_t got = 0;
    if (!Seek(0) || !Read(&stored, sizeof stored, &got)) {
        transferFailed = true;
        return false;
    }
    if (got != sizeof stored || stored.magic != kRingMagic) return false;
    header = stored;
    headerDirty = false;
    return true;
}

bool RingFile::WriteHeader() {
    if (!headerDirty) return true;
    std::uint32_t put = 0;
    if (!Seek(0) || !Write(&header, sizeof header, &put) || put != sizeof header) {
        transferFailed = true;
        return false;
    }
    headerDirty = false;
    return true;
}

}  // namespace marvolen
