#pragma once

#include "zelmresult/storage/mmio_file.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace ZelmResult {

// For records that a file doesn't write at their newest version: the version instead. Tests make files of older
// versions with it.
class StoredVersions {
public:
    // record is the name by which the record names itself.
    static void Set(CMmioFile& file, std::string_view record, std::uint16_t version)
    {
        if (file.m_storedVersions == nullptr) file.m_storedVersions = std::make_shared<StoredVersions>();
        file.m_storedVersions->m_versions.insert_or_assign(std::string(record), version);
    }
    [[nodiscard]] static std::uint16_t Of(const CMmioFile& file, std::string_view record, std::uint16_t newest)
    {
        return file.m_storedVersions == nullptr ? newest : file.m_storedVersions->Of(record, newest);
    }

private:
    [[nodiscard]] std::uint16_t Of(std::string_view record, std::uint16_t newest) const
    {
        const auto found = m_versions.find(record);
        return found == m_versions.end() ? newest : found->second;
    }

    std::map<std::string, std::uint16_t, std::less<>> m_versions;
};

} // namespace ZelmResult
