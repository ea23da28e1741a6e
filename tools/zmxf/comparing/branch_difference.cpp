#include "tools/zmxf/comparing/branch_difference.h"

#include "tools/zmxf/base/text.h"

#include <fmt/format.h>
#include <map>
#include <utility>

namespace zmxf {

namespace {

// "Block size", "0/2.1/1.1/2" of an entry without a title, else its place in the list.
std::string TitleOf(const Json& entry, std::size_t index)
{
    for (const char* key : {"title", "name", "id"})
        if (entry.is_object() && entry.contains(key) && entry[key].is_string() && !entry[key].empty())
            if (const auto& text = entry[key].get_ref<const std::string&>(); !text.empty()) return Printable(text);
    return std::to_string(index);
}

class Trees {
public:
    Trees(const Tolerance& tolerance, std::vector<BranchDifference>& differences)
        : m_tolerance(tolerance), m_differences(differences)
    {
    }

    void Compare(const Json& a, const Json& b, const std::string& place)
    {
        if (a.is_object() && b.is_object())
            CompareObjects(a, b, place);
        else if (a.is_array() && b.is_array())
            CompareLists(a, b, place);
        else if (!AreSame(a, b))
            m_differences.push_back({place, a, b});
    }

private:
    [[nodiscard]] bool AreSame(const Json& a, const Json& b) const
    {
        return a == b ||
               (a.is_number_float() && b.is_number_float() && m_tolerance.Holds(a.get<double>(), b.get<double>()));
    }

    static std::string Below(const std::string& place, const std::string& title)
    {
        return place.empty() ? title : fmt::format("{}, {}", place, title);
    }
    // The keys of values, of recordings and of lists say nothing that their titles don't.
    static std::string Below(const std::string& place, const std::string& key, const Json& value)
    {
        const bool isPlain =
            key == "value" || key == "recording" || (value.is_array() && !value.empty() && value.front().is_object());
        return isPlain ? place : Below(place, key);
    }

    void CompareObjects(const Json& a, const Json& b, const std::string& place)
    {
        for (const auto& [key, value] : a.items())
            Compare(value, b.contains(key) ? b[key] : Json(), Below(place, key, value));
        for (const auto& [key, value] : b.items())
            if (!a.contains(key)) Compare(Json(), value, Below(place, key, value));
    }

    void CompareLists(const Json& a, const Json& b, const std::string& place)
    {
        // Per id the entries of b, and how many of them have a partner.
        std::map<std::string, std::pair<std::vector<std::size_t>, std::size_t>> waiting;
        const auto idOf = [](const Json& entry) {
            const bool hasId = entry.is_object() && entry.contains("id") && entry["id"].is_string();
            return hasId ? entry["id"].get<std::string>() : std::string();
        };
        for (std::size_t i = 0; i < b.size(); ++i) waiting[idOf(b[i])].first.push_back(i);
        for (std::size_t i = 0; i < a.size(); ++i) {
            auto& [entries, taken] = waiting[idOf(a[i])];
            const std::string below = Below(place, TitleOf(a[i], i));
            Compare(a[i], taken < entries.size() ? b[entries[taken++]] : Json(), below);
        }
        for (const auto& [id, found] : waiting)
            for (std::size_t i = found.second; i < found.first.size(); ++i) {
                const std::size_t index = found.first[i];
                Compare(Json(), b[index], Below(place, TitleOf(b[index], index)));
            }
    }

    const Tolerance& m_tolerance;
    std::vector<BranchDifference>& m_differences;
};

} // namespace

std::vector<BranchDifference> CompareTrees(const Json& a, const Json& b, const Tolerance& tolerance)
{
    std::vector<BranchDifference> differences;
    Trees(tolerance, differences).Compare(a, b, {});
    return differences;
}

} // namespace zmxf
