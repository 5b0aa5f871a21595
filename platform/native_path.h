#pragma once

// Paths with a drive letter, as channel settings hold them ("c:\chl01.dbt"), on a system without
// drives: each drive is a folder of the current directory.

#include <string>
#include <string_view>

namespace marvolen {

// The native form of path. "c:\video\gate.dbt" becomes "drive_c/video/gate.dbt"; the drive's letter
// is taken in lower case, backslashes become slashes, and ".." doesn't leave the drive. Every other
// path is native already and is returned as it is.
std::string MapDrivePath(std::string_view path);

// MapDrivePath, and makes the drive's folder when it isn't there yet. Folders on the drive are not
// made: a path into a missing one stays a path that can't be opened.
std::string NativePath(std::string_view path);

}  // namespace marvolen
