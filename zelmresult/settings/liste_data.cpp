#include "zelmresult/settings/liste_data.h"

#include "zelmresult/storage/record_io.h"

#include <utility>

namespace ZelmResult {

template <class Io, class Self>
bool CListeData::fields(Io& io, Self& setting)
{
    io.template base<CReglageData>(setting);
    if (!io.record(kRecordName, newest{256}, first{256})) return io.ok();
    io.clears(setting.m_keyValues);
    std::vector<std::pair<wstring, wstring>> entries(setting.m_keyValues.begin(), setting.m_keyValues.end());
    auto count = static_cast<std::int32_t>(entries.size());
    io.text("defaultKey", setting.m_defaultKey);
    io.i32("count", count);
    io.dump([&] {
        return Concat(u"Liste : ", setting.titleString(), u", szDefaultKey : ", setting.m_defaultKey, u", Nb element: ",
                      count);
    });
    io.eachOf("entries", entries, count, [&](auto& entry) {
        io.text("key", entry.first);
        io.text("text", entry.second);
        io.dump([&] { return Concat(u"Key : ", entry.first, u", szName : ", entry.second); });
        io.onRead(setting, [&entry](auto& list) { list.setKeyValue(entry.first, entry.second); });
    });
    return io.ok();
}

template class StoredRecord<CListeData, CReglageData>;

} // namespace ZelmResult
