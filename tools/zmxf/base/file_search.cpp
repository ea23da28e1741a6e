#include "tools/zmxf/base/file_search.h"

#include "tools/zmxf/base/files.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <set>
#include <sys/stat.h>
#include <system_error>
#include <utility>

namespace zmxf {

namespace {

class Search {
public:
    explicit Search(bool isRecursive) : m_isRecursive(isRecursive) {}

    void Place(const std::string& path)
    {
        struct stat status {};
        if (::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
            Folder(path, status);
        else
            m_found.push_back({path});
    }
    std::vector<FoundFile> TakeFound() { return std::move(m_found); }

private:
    void Folder(const std::string& path, const struct stat& status)
    {
        if (!m_entered.emplace(status.st_dev, status.st_ino).second) return;
        std::error_code error;
        std::vector<std::string> entries;
        for (std::filesystem::directory_iterator entry(path, error), end; !error && entry != end;
             entry.increment(error))
            entries.push_back(entry->path().string());
        if (error) {
            errno = error.value();
            m_found.push_back({path, false, SystemFailure("cannot read", path)});
        }
        std::sort(entries.begin(), entries.end());
        for (const std::string& entry : entries) Entry(entry);
    }

    void Entry(const std::string& path)
    {
        struct stat status {};
        if (::stat(path.c_str(), &status) != 0) return; // a link to nowhere
        if (S_ISREG(status.st_mode)) m_found.push_back({path, false});
        if (S_ISDIR(status.st_mode) && m_isRecursive) Folder(path, status);
    }

    bool m_isRecursive;
    std::set<std::pair<dev_t, ino_t>> m_entered;
    std::vector<FoundFile> m_found;
};

} // namespace

std::vector<FoundFile> FindFiles(const std::vector<std::string>& places, bool isRecursive)
{
    std::vector<FoundFile> all;
    for (const std::string& place : places) {
        Search search(isRecursive);
        search.Place(place);
        for (FoundFile& found : search.TakeFound()) all.push_back(std::move(found));
    }
    return all;
}

} // namespace zmxf
