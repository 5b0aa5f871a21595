#include "record/record_writer.h"

#include "platform/native_path.h"
#include "platform/text_field.h"

#include <utility>

namespace marvolen {

RecordWriter::~RecordWriter() {
    CloseWriter();
}

bool RecordWriter::Open(const ChannelInfo& channel) {
    constexpr std::uint64_t kMegabyte = 1048576;
    const std::uint64_t size = static_cast<std::uint32_t>(channel.maxSizeMB) * kMegabyte;
    return OpenOrCreateNew(NativePath(FieldText(channel.recordPath)), size);
}

void RecordWriter::Deliver(FramePtr frame) {
    WriteFrame(*frame);
    Forward(std::move(frame));
}

}  // namespace marvolen
