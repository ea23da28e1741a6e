#pragma once

#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

namespace ZelmResult {

class CResult;
class CResultHeader;

// Results by their headers, in the order of addition. It owns neither.
class ResultMap {
public:
    using Entry = std::pair<CResultHeader*, CResult*>;

    // True for a new header. One that is there already gets the new result and keeps its place.
    bool Set(CResultHeader* header, CResult* result)
    {
        for (std::size_t i = m_places.size(); i < m_entries.size(); ++i) m_places[m_entries[i].first] = i;
        const auto [place, isNew] = m_places.try_emplace(header, m_entries.size());
        if (isNew)
            Append(header, result);
        else
            m_entries[place->second].second = result;
        return isNew;
    }
    // Adds a header that isn't there.
    void Append(CResultHeader* header, CResult* result) { m_entries.emplace_back(header, result); }
    // Removes the entries of which the predicate is true and returns them, in order.
    template <class Predicate>
    std::vector<Entry> TakeIf(Predicate predicate)
    {
        std::vector<Entry> taken;
        std::vector<Entry> kept;
        for (const Entry& entry : m_entries) (predicate(entry) ? taken : kept).push_back(entry);
        if (taken.empty()) return taken;
        m_entries = std::move(kept);
        m_places.clear();
        return taken;
    }
    void Clear()
    {
        m_entries.clear();
        m_places.clear();
    }

    [[nodiscard]] std::size_t size() const { return m_entries.size(); }
    [[nodiscard]] auto begin() const { return m_entries.begin(); }
    [[nodiscard]] auto end() const { return m_entries.end(); }

private:
    std::vector<Entry> m_entries;
    // Of the first entries; the others follow when a header is looked up.
    std::unordered_map<const CResultHeader*, std::size_t> m_places;
};

} // namespace ZelmResult
