#pragma once

// What a block in the file says, beyond what it counts.
//
// A record's entry goes to its slot right behind the record's data; the block's count follows when
// the chunk is full or the file is closed. After a program that was killed the slots tell what came
// since. They begin as zeros, so what stands there is an entry of this chunk, and whole: its
// position is stored last.

#include "record/record_format.h"
#include "record/ring_geometry.h"

namespace marvolen {

// Brings the header of a block that lies at its self to what counts. The count becomes that of the
// entries there are: the counted ones and those behind them that go on where the one before ends,
// back to back, without running into the head. A link counts only in a full chunk: of a header of
// which just the beginning got to the file nothing may hide records. Where the file doesn't count
// the chunk as full, the link must lead to where its records end.
//
// ring is the ring as the file has it, head a held position. A count that is none, and entries that
// aren't back to back, stay as they are.
void TakeUpEntries(ChunkBlock& block, const RingGeometry& ring, std::uint64_t head);

}  // namespace marvolen
