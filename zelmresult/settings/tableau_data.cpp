#include "zelmresult/settings/tableau_data.h"

#include "zelmresult/settings/setting_chunks.h"
#include "zelmresult/storage/record_io.h"

namespace ZelmResult {

namespace {

constexpr std::uint16_t kFirstVersion = 256;
constexpr std::uint16_t kFirstWithColumns = 512;

} // namespace

CTableauData& CTableauData::operator=(const CTableauData& other)
{
    if (this == &other) return *this;
    StoredReglage::operator=(other);
    m_nbrLineVisu = other.m_nbrLineVisu;
    m_listVisu.insert(m_listVisu.end(), other.m_listVisu.begin(), other.m_listVisu.end());
    m_settings.Append(other.m_settings);
    return *this;
}

// All but the settings of the rows, which are chunks of their own.
template <class Io, class Self>
bool CTableauData::fields(Io& io, Self& table)
{
    io.template base<CReglageData>(table);
    if (!io.record(kRecordName, newest{kFirstWithColumns}, first{kFirstVersion})) return io.ok();
    auto count = static_cast<std::int32_t>(table.m_listVisu.size());
    io.i32("NbrLineVisu", table.m_nbrLineVisu, since{kFirstWithColumns});
    io.i32("count", count, since{kFirstWithColumns});
    io.eachOf(
        "ListVisu", table.m_listVisu, count,
        [&io](auto& column) { io.i32("column", column, since{kFirstWithColumns}); }, since{kFirstWithColumns});
    io.dump([&] { return Concat(u"Tableau : ", table.titleString(), u"m_NbrLineVisu : ", table.m_nbrLineVisu); });
    return io.ok();
}

bool CTableauData::Write(CMmioFile* file)
{
    RecordWriter out(*file);
    return fields(out, *this) && (out.version() < kFirstVersion || WriteSettings(*file, m_settings));
}

bool CTableauData::Read(CMmioFile* file)
{
    m_listVisu.clear();
    m_settings.clear();
    m_nbrLineVisu = kLinesNotStored;
    RecordReader in(*file);
    if (!fields(in, *this)) return false;
    if (in.version() < kFirstVersion) return true;
    if (!ReadSettings(*file, m_settings)) return false;
    if (m_nbrLineVisu == kLinesNotStored) { // the layout that tables had when none was stored
        m_nbrLineVisu = static_cast<std::int32_t>(m_settings.all().size() / 3);
        m_listVisu.insert(m_listVisu.end(), {1, 2, 3, 4, 5, 6, 7, 8});
    }
    return true;
}

template <class Io, class Self>
bool CVirtualTachoData::fields(Io& io, Self& tacho)
{
    io.template base<CReglageData>(tacho);
    if (!io.record(kRecordName, newest{kFirstVersion}, first{kFirstVersion})) return io.ok();
    io.dump([&] { return u"VirtualTacho : " + tacho.titleString(); });
    return io.ok();
}

bool CVirtualTachoData::Write(CMmioFile* file)
{
    RecordWriter out(*file);
    return fields(out, *this) && (out.version() < kFirstVersion || WriteSettings(*file, m_settings));
}

bool CVirtualTachoData::Read(CMmioFile* file)
{
    m_settings.clear();
    RecordReader in(*file);
    return fields(in, *this) && (in.version() < kFirstVersion || ReadSettings(*file, m_settings));
}

template class StoredRecord<CTableauData, CReglageData>;
template class StoredRecord<CVirtualTachoData, CReglageData>;

} // namespace ZelmResult
