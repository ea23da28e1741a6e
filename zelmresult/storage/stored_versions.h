#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace ZelmResult {

// For records that are not written at their newest version: the version instead. Tests make files of older versions
// with it.
class StoredVersions {
public:
    // record is the name by which the record names itself.
    void Set(std::string_view record, std::uint16_t version)
    {
        m_versions.insert_or_assign(std::string(record), version);
    }
    [[nodiscard]] std::uint16_t Of(std::string_view record, std::uint16_t newest) const
    {
        if (m_versions.empty()) return newest;
        const auto found = m_versions.find(record);
        return found == m_versions.end() ? newest : found->second;
    }

private:
    std::map<std::string, std::uint16_t, std::less<>> m_versions;
};

} // namespace ZelmResult
