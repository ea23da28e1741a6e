#include "zelmresult/settings/idn_data.h"

#include "zelmresult/storage/record_io.h"

namespace ZelmResult {

namespace {

// Of the source of a waterfall, in settings of the first version and since then.
constexpr std::int32_t kFormerProcess = 24;
constexpr std::int32_t kPresentProcess = 131;

} // namespace

using idn::IdnString;

template <class Io, class Self>
bool CReglageIdnData::fields(Io& io, Self& setting)
{
    io.template base<CReglageData>(setting);
    if (!io.record(kRecordName, newest{256}, first{256})) return io.ok();
    wstring text = IdnString::idnToStringT(setting.m_value);
    io.text("value", text);
    io.clears(setting.m_value); // a text that is no identifier leaves it null
    io.onRead(setting, [&text](auto& value) { (void)IdnString::stringToIdnT(text, value.m_value); });
    return io.ok();
}

void CMatriceData::AddResponseReference(const idn::Idn& response, const idn::Idn& reference)
{
    m_pairs.push_back({response, reference});
}

CMatriceData::Pair CMatriceData::At(std::int32_t i) const
{
    return i >= 0 && i < GetCount() ? m_pairs[static_cast<std::size_t>(i)] : Pair{};
}

template <class Io, class Self>
bool CMatriceData::fields(Io& io, Self& setting)
{
    io.template base<CReglageData>(setting);
    if (!io.record(kRecordName, newest{256}, first{256})) return io.ok();
    auto count = setting.GetCount();
    io.clears(setting.m_pairs);
    io.i32("InputProcessType", setting.m_inputProcessType);
    io.i32("count", count);
    io.dump([&] { return u"Matrice : " + setting.titleString(); });
    io.eachOf("pairs", setting.m_pairs, count, [&](auto& pair) {
        io.idn("response", pair.response);
        io.idn("reference", pair.reference);
        io.dump([&] {
            return Concat(u"Reponse :(", IdnString::idnToStringT(pair.response), u") , Reference :(",
                          IdnString::idnToStringT(pair.reference));
        });
    });
    return io.ok();
}

void CMultiSourcesData::AddSources(const std::vector<idn::Idn>& sources)
{
    const std::size_t count = sources.size(); // sources may be this object's own vector, which grows
    m_sources.reserve(m_sources.size() + count);
    for (std::size_t i = 0; i < count; ++i) m_sources.push_back(sources[i]);
}

template <class Io, class Self>
bool CMultiSourcesData::fields(Io& io, Self& setting)
{
    io.template base<CReglageData>(setting);
    if (!io.record(kRecordName, newest{256}, first{256})) return io.ok();
    auto count = static_cast<std::int32_t>(setting.m_sources.size());
    io.clears(setting.m_sources);
    io.idn("AssociatedList", setting.m_associatedList);
    io.i32("count", count);
    io.dump([&] { return u"AssocList :(" + IdnString::idnToStringT(setting.m_associatedList); });
    io.eachOf("sources", setting.m_sources, count, [&](auto& source) {
        io.idn("source", source);
        io.dump([&] { return u"Source " + IdnString::idnToStringT(source); });
    });
    return io.ok();
}

template <class Io, class Self>
bool CWtfSourceData::fields(Io& io, Self& setting)
{
    constexpr std::uint16_t current = 512;
    io.template base<CReglageData>(setting);
    if (!io.record(kRecordName, newest{current}, first{256})) return io.ok();
    io.idn("IdnSource", setting.m_idnSource);
    io.idn("IdnResponse", setting.m_idnResponse);
    io.idn("IdnReference", setting.m_idnReference);
    io.i32("SourceProcess", setting.m_sourceProcess);
    io.text("caption", setting.m_caption);
    if (io.version() < current)
        io.onRead(setting, [](auto& source) {
            if (source.m_sourceProcess == kFormerProcess) source.m_sourceProcess = kPresentProcess;
        });
    io.dump([&] { return Concat(u"WtfSource : ", setting.titleString(), u", m_szCaption : ", setting.m_caption); });
    return io.ok();
}

template class StoredRecord<CReglageIdnData, CReglageData>;
template class StoredRecord<CMatriceData, CReglageData>;
template class StoredRecord<CMultiSourcesData, CReglageData>;
template class StoredRecord<CWtfSourceData, CReglageData>;

} // namespace ZelmResult
