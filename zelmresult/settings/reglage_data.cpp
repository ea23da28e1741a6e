#include "zelmresult/settings/reglage_data.h"

#include "zelmresult/storage/record_io.h"

#include <algorithm>

namespace ZelmResult {

template <class Io, class Self>
bool CReglageInfoData::fields(Io& io, Self& info)
{
    // No version ends it early.
    if (!io.record(kRecordName, newest{256}, first{0})) return io.ok();
    io.idn("Idn", info.m_idn);
    io.u32("Type", info.m_type);
    return io.ok();
}

bool CReglageInfoData::Write(CMmioFile* file) const
{
    RecordWriter out(*file);
    return fields(out, *this);
}

bool CReglageInfoData::Read(CMmioFile* file)
{
    RecordReader in(*file);
    return fields(in, *this);
}

void CReglageInfoData::Outline(RecordOutline& out)
{
    const CReglageInfoData info;
    (void)fields(out, info);
}

CReglageData::CReglageData(const CReglageInfoData* info) : m_info({}, kType)
{
    if (info != nullptr) m_info = *info;
}

const char16_t* CReglageData::GetStringValue() const { return m_titleString.empty() ? nullptr : m_titleString.c_str(); }

template <class Io, class Self>
bool CReglageData::fields(Io& io, Self& setting)
{
    if (!io.record(kRecordName, newest{257}, first{256})) return io.ok();
    io.text("titleString", setting.m_titleString);
    io.flag("visible", setting.m_visible, since{257}, absent{true});
    return io.ok();
}

bool CReglageData::Write(CMmioFile* file)
{
    RecordWriter out(*file);
    return fields(out, *this);
}

bool CReglageData::Read(CMmioFile* file)
{
    RecordReader in(*file);
    return fields(in, *this);
}

void CReglageData::Outline(RecordOutline& out) const { (void)fields(out, *this); }

ReglageList& ReglageList::operator=(const ReglageList& other)
{
    ReglageList copy(other);
    m_settings.swap(copy.m_settings);
    return *this;
}

bool ReglageList::Holds(const CReglageData* setting) const
{
    return setting == nullptr || std::find(m_settings.begin(), m_settings.end(), setting) != m_settings.end();
}

void ReglageList::Add(CReglageData* setting)
{
    if (!Holds(setting)) m_settings.push_back(setting);
}

void ReglageList::Replace(CReglageData* setting)
{
    if (setting == nullptr) return;
    auto former = m_settings.end();
    for (auto stored = m_settings.begin(); stored != m_settings.end(); ++stored) {
        if (*stored == setting) return;
        const bool isSame = (*stored)->GetIdn().setting() == setting->GetIdn().setting();
        if (isSame && former == m_settings.end()) former = stored;
    }
    if (former == m_settings.end()) return m_settings.push_back(setting);
    delete *former;
    *former = setting;
}

void ReglageList::Append(const ReglageList& other)
{
    const std::size_t count = other.m_settings.size(); // the other may be this one
    m_settings.reserve(m_settings.size() + count);
    for (std::size_t i = 0; i < count; ++i) m_settings.push_back(other.m_settings[i]->GetCopy());
}

void ReglageList::clear()
{
    for (const CReglageData* setting : m_settings) delete setting;
    m_settings.clear();
}

CReglageData* ReglageList::Find(const idn::Setting& number) const
{
    const auto found = std::find_if(m_settings.begin(), m_settings.end(), [&number](const CReglageData* setting) {
        return setting->GetIdn().setting() == number;
    });
    return found == m_settings.end() ? nullptr : *found;
}

} // namespace ZelmResult
