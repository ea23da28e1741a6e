#pragma once

#include <string>
#include <vector>

namespace zmxf {

// A file that was named, or one of a folder that was named.
struct FoundFile {
    std::string path;
    bool isNamed = true;
    std::string failure = {}; // why a folder of that path can't be read; else empty
};

// Files as they are named, and in the place of each folder the regular files in it by name, those of its folders too
// when isRecursive says so. Links are followed, but each folder is entered once.
std::vector<FoundFile> FindFiles(const std::vector<std::string>& places, bool isRecursive);

} // namespace zmxf
