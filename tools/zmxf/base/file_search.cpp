#include "tools/zmxf/base/file_search.h"

#include "tools/zmxf/base/files.h"

#include <algorithm>
#include <set>
#include <system_error>
#include <utility>

namespace zmxf {

namespace {

class Search {
public:
    explicit Search(bool isRecursive) : m_isRecursive(isRecursive) {}

    void Place(const std::string& path)
    {
        const PathFacts facts = FactsOf(path);
        if (facts.kind == PathFacts::Kind::Folder)
            Folder(path, facts);
        else
            m_found.push_back({path});
    }
    std::vector<FoundFile> TakeFound() { return std::move(m_found); }

private:
    void Folder(const std::string& path, const PathFacts& facts)
    {
        if (!m_entered.insert(facts.file).second) return;
        std::error_code error;
        std::vector<std::string> names = NamesIn(path, error);
        if (error) m_found.push_back({path, false, SystemFailure("cannot read", path, error)});
        std::sort(names.begin(), names.end());
        for (const std::string& name : names) Entry(InFolder(path, name));
    }

    void Entry(const std::string& path)
    {
        const PathFacts facts = FactsOf(path); // missing at the end of a link to nowhere
        if (facts.kind == PathFacts::Kind::File) m_found.push_back({path, false});
        if (facts.kind == PathFacts::Kind::Folder && m_isRecursive) Folder(path, facts);
    }

    bool m_isRecursive;
    std::set<std::pair<std::uint64_t, std::uint64_t>> m_entered;
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
