#include "zelmresult/settings/reglage_data.h"

#include "zelmresult/storage/record_io.h"

#include <algorithm>
#include <utility>

namespace ZelmResult {

namespace {

std::uint32_t NumberOf(const CReglageInfoData& info) { return info.GetIdn().setting().value; }

} // namespace

template <class Io, class Self>
bool CReglageInfoData::fields(Io& io, Self& info)
{
    // No version ends it early.
    if (!io.record(kRecordName, newest{256}, first{0})) return io.ok();
    io.idn("Idn", info.m_idn);
    io.u32("Type", info.m_type);
    return io.ok();
}

CReglageInfoData& CReglageInfoData::operator=(const CReglageInfoData& other)
{
    if (this == &other) return *this;
    m_type = other.m_type;
    SetIDN(other.m_idn);
    return *this;
}

void CReglageInfoData::SetIDN(const idn::Idn& idn)
{
    m_idn = idn;
    if (m_renamed != nullptr) *m_renamed = true;
}

bool CReglageInfoData::Write(CMmioFile* file) const { return WriteFields(*file, *this); }

bool CReglageInfoData::Read(CMmioFile* file)
{
    const bool ok = ReadFields(*file, *this);
    SetIDN(idn::Idn(m_idn));
    return ok;
}

template class StoredFields<CReglageInfoData>;

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
    m_members.swap(copy.m_members);
    m_first.swap(copy.m_first);
    std::swap(m_numbered, copy.m_numbered);
    m_renamed.swap(copy.m_renamed);
    return *this;
}

bool ReglageList::Holds(const CReglageData* setting)
{
    if (setting == nullptr) return true;
    for (std::size_t i = m_members.size(); i < m_settings.size(); ++i) m_members.insert(m_settings[i]);
    return m_members.contains(setting);
}

void ReglageList::IndexNumbers()
{
    if (m_renamed == nullptr) m_renamed = std::make_unique<bool>(false);
    if (std::exchange(*m_renamed, false)) {
        m_first.clear();
        m_numbered = 0;
    }
    for (; m_numbered < m_settings.size(); ++m_numbered) {
        CReglageInfoData& info = m_settings[m_numbered]->info();
        info.m_renamed = m_renamed.get();
        m_first.emplace(NumberOf(info), m_numbered);
    }
}

void ReglageList::Add(CReglageData* setting)
{
    if (!Holds(setting)) m_settings.push_back(setting);
}

void ReglageList::Replace(CReglageData* setting)
{
    if (Holds(setting)) return;
    IndexNumbers();
    const auto former = m_first.find(NumberOf(setting->info()));
    if (former == m_first.end()) return m_settings.push_back(setting);
    CReglageData*& place = m_settings[former->second];
    m_members.erase(place);
    m_members.insert(setting);
    delete std::exchange(place, setting);
    setting->info().m_renamed = m_renamed.get();
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
    m_members.clear();
    m_first.clear();
    m_numbered = 0;
}

CReglageData* ReglageList::Find(const idn::Setting& number) const
{
    const auto found = std::find_if(m_settings.begin(), m_settings.end(), [&number](const CReglageData* setting) {
        return setting->GetIdn().setting() == number;
    });
    return found == m_settings.end() ? nullptr : *found;
}

} // namespace ZelmResult
