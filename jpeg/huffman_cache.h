#pragma once

#include "jpeg/huffman_table.h"

#include <cstdint>
#include <memory>

namespace marvolen {

// The decoding table of a code that FitsCodeSpace (see HuffmanTable::Build for the arguments). A
// camera sends the same few tables with every picture, and building one takes as long as decoding
// some hundred blocks: so tables are kept across pictures and decoders, by what they were made
// from. The most recently used 64 of them, 1.6 MB, are kept; one in use lives on in any case.
//
// Any thread. Throws JpegFailure -233 when there is no memory.
std::shared_ptr<const HuffmanTable> CachedHuffmanTable(const std::uint8_t* counts,
                                                       const std::uint8_t* symbols,
                                                       HuffmanTable::Use use);

}  // namespace marvolen
