#pragma once

#include "zelmresult/settings/reglage_data.h"

#include <map>

namespace ZelmResult {

// A setting that offers a choice: keys, the text that a user sees for each, and the default key.
class CListeData : public StoredReglage<CListeData> {
public:
    static constexpr const char* kRecordName = "CListeData";
    static constexpr std::uint32_t kType = 1024; // the only kind without bit 0
    using StoredReglage::StoredReglage;

    [[nodiscard]] const wstring& defaultKey() const { return m_defaultKey; }
    void setDefaultKey(const wstring& key) { m_defaultKey = key; }
    [[nodiscard]] const std::map<wstring, wstring>& keyValues() const { return m_keyValues; }
    void setKeyValue(const wstring& key, const wstring& text) { m_keyValues[key] = text; }

private:
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& setting);

    wstring m_defaultKey;
    std::map<wstring, wstring> m_keyValues;
};
extern template class StoredRecord<CListeData, CReglageData>;

} // namespace ZelmResult
