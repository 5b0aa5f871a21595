#pragma once

#include <span>
#include <string>

namespace marvolen {

// Writes a file whole or not at all: the bytes go to a temporary file in the same folder, are
// synced to the disk, and take the name's place at once. After a failure, or a crash or power
// failure at any instant, the old file is there with its old bytes. A program that was killed
// meanwhile leaves the temporary file behind, ".NAME.tmp"; the next one takes it away.
//
// A file that exists keeps its permissions and, where that is allowed, its owner; a new one is for
// its owner alone. A symbolic link stays one: what it leads to is replaced. Where there is no other
// way, because the file has further names (hard links) or its folder takes no new file, its bytes
// are written over.
//
// False when the file can't be replaced: it may not be written to, is no regular file, or there is
// no room for the new one. path is native. Waits for the disk. Any thread.
bool ReplaceFile(const std::string& path, std::span<const char> bytes);

}  // namespace marvolen
