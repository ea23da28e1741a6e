#include "zelmresult/settings/scalaire_data.h"

#include "zelmresult/storage/record_io.h"

namespace ZelmResult {

template <class Io, class Self>
bool CScalaireData::fields(Io& io, Self& setting)
{
    io.template base<CReglageData>(setting);
    if (!io.record(kRecordName, newest{512}, first{256})) return io.ok();
    io.f32("value", setting.m_value);
    for (auto& word : setting.m_words) io.u32("word", word);
    io.flag("flag", setting.m_flag, since{512}, absent{false});
    io.dump([&] { return u"Scalaire : " + setting.titleString(); });
    return io.ok();
}

template <class Io, class Self>
bool CWinTuningData::fields(Io& io, Self& setting)
{
    static constexpr std::array names{"V0", "V1", "V2", "V3", "V4", "V5", "V6", "V7"};
    io.template base<CScalaireData>(setting);
    if (!io.record(kRecordName, newest{512}, first{256})) return io.ok();
    for (std::size_t i = 0; i < names.size(); ++i) io.f32(names[i], setting.m_v[i]);
    io.i32("WinType", setting.m_winType, since{512});
    io.dump([&] {
        wstring line = u"CWinTuning ";
        for (std::size_t i = 0; i < names.size(); ++i)
            line += Concat(u"V", static_cast<std::uint32_t>(i), u" : ", ToFixed(setting.m_v[i]), u":");
        return Concat(line, u"Type : ", setting.m_winType, u":");
    });
    return io.ok();
}

CIntegerScalarData::CIntegerScalarData(std::uint32_t value, std::uint32_t min, std::uint32_t max, bool inHexa)
    : m_value(value), m_min(min), m_max(max), m_inHexa(inHexa)
{
}

CIntegerScalarData::CIntegerScalarData(const CReglageInfoData* info) : StoredReglage(info) { m_info.SetType(kType); }

template <class Io, class Self>
bool CIntegerScalarData::fields(Io& io, Self& setting)
{
    io.template base<CReglageData>(setting);
    if (!io.record(kRecordName, newest{512}, first{256})) return io.ok();
    io.u32("Value", setting.m_value);
    io.u32("Min", setting.m_min);
    io.u32("Max", setting.m_max);
    io.flag("InHexa", setting.m_inHexa);
    io.dump([&] { return u"IntegerScalar : " + setting.titleString(); });
    return io.ok();
}

template class StoredRecord<CScalaireData, CReglageData>;
template class StoredRecord<CWinTuningData, CScalaireData>;
template class StoredRecord<CIntegerScalarData, CReglageData>;

} // namespace ZelmResult
