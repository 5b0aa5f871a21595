#pragma once

// LimitedFile: a file with a maximum size (record/basic_file.h has the rules of the family).
//
// While the limit is on, a write that would go beyond the maximum is clipped at it and OnLimit is
// called afterwards. The caller learns of the clip from the short count.

#include "record/basic_file.h"

namespace marvolen {

class LimitedFile : public BasicFile {
public:
    // Switches the limit off and closes.
    void Close() override;

    // A write that ends exactly at the maximum is whole. One that starts at it, or beyond it, is
    // clipped to nothing.
    bool Write(const void* buf, std::uint32_t n, std::uint32_t* put) override;

    // The maximum in bytes from the start of the file. Refused while the limit is on.
    virtual bool SetMaxSize(std::uint64_t size);
    virtual std::uint64_t GetMaxSize();

    // Always true. A maximum must have been set before the limit is switched on.
    bool SetLimit(bool flag);

protected:
    // Called after a clipped write, whether it succeeded or not. Does nothing here.
    virtual void OnLimit();

    bool limitOn = false;
    std::uint64_t maxSize = 0;  // meaningful once set
};

}  // namespace marvolen
