#pragma once

#include "zelmresult/support/wstring.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

// Names of files as the program has them: on POSIX systems the bytes that the system has, any but a NUL; on Windows
// UTF-8, with a byte for each half of a broken UTF-16 pair as in zelmresult/support/path_bytes.h.

namespace zmxf {

// The name of a file as the library takes it.
ZelmResult::wstring LibraryPath(const std::string& path);
// As the standard library takes it, and back.
std::filesystem::path SystemPath(const std::string& path);
std::string PathText(const std::filesystem::path& path);

// The name of a file without its folder.
std::string BaseName(const std::string& path);
// The folder in front of it with the separator at its end; empty for none. Both together are the path.
std::string FolderOf(const std::string& path);
// "demo/demo.json"; the folder may be empty.
std::string InFolder(const std::string& folder, const std::string& name);
// Whether the path can only be that of a folder, by its last character.
bool NamesFolder(const std::string& path);

// Equal for two spellings of a path that the system takes for one whether the file is there or not.
std::string FileKey(const std::string& path);

// The names in a folder, without an order. Stops with a reason where it can't be read.
std::vector<std::string> NamesIn(const std::string& folder, std::error_code& reason);

// What a path leads to, after links were followed.
struct PathFacts {
    enum class Kind : std::uint8_t { Missing, File, Folder, Other };

    Kind kind = Kind::Missing;
    std::error_code reason = {};                       // why it is missing
    std::pair<std::uint64_t, std::uint64_t> file = {}; // device and number: equal for two names of the same
};
PathFacts FactsOf(const std::string& path);

} // namespace zmxf
