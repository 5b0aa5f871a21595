#pragma once

#include <array>
#include <cstddef>
#include <cstdlib>
#include <memory>

namespace marvolen {

// All memory of one decoder: up to 100 zeroed blocks that live until Release or destruction.
// A table that is defined again reuses its block, so no stream can make the decoder grow.
class AllocationTable {
public:
    static constexpr std::size_t kSlots = 100;

    // A zeroed block of size bytes with 8 spare bytes behind it, at an address that is a
    // multiple of 8. Throws JpegFailure with -221 when all slots are taken, -233 when there is
    // no memory. The block belongs to the table.
    void* Allocate(std::size_t size);

    // Allocate for count objects of a type whose all-zero bytes are a valid value.
    template <class T>
    T* AllocateArray(std::size_t count) {
        static_assert(alignof(T) <= 8);
        return static_cast<T*>(Allocate(count * sizeof(T)));
    }

    // Frees every block and clears the slots.
    void Release();

private:
    struct Free {
        void operator()(void* block) const { std::free(block); }
    };
    std::array<std::unique_ptr<void, Free>, kSlots> slots;
};

}  // namespace marvolen
