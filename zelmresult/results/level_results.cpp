#include "zelmresult/results/level_results.h"

#include "zelmresult/results/result_copy.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"

namespace ZelmResult {

namespace {

// A level in stored order: its name in the format, the text before it in the dump, and the version that added it.
struct LevelName {
    const char* field;
    const char16_t* text;
    std::uint16_t first = 1;
};

constexpr std::array<LevelName, 10> NamesOf(const CBroadBand* /*of*/)
{
    return {{{"ShortLpk", u"ShortLpk : "},
             {"InstantLeq[0]", u", InstantLeq1 : "},
             {"ShortLeq[0]", u" , ShortLeq1 : "},
             {"Leq[0]", u" , Leq1 : "},
             {"InstantLeq[1]", u" , InstantLeq2 : "},
             {"ShortLeq[1]", u" , ShortLeq2 : "},
             {"Leq[1]", u" , Leq2 : "},
             {"InstantLeq[2]", u" , InstantLeq3 : "},
             {"ShortLeq[2]", u", ShortLeq3 : "},
             {"Leq[2]", u", Leq3 : "}}};
}

constexpr std::array<LevelName, 10> NamesOf(const CGlobalLevel* /*of*/)
{
    return {{{"DC", u"DC : "},
             {"Max", u" , Max : "},
             {"Min", u", Min : "},
             {"RMS", u" , RMS : "},
             {"Energy", u" , Energy : "},
             {"Skew", u" , Skew : "},
             {"Kurtosis", u" , Kurtosis : "},
             {"Peak", u", Peak : ", 2},
             {"PeakPeak", u", Peak-Peak : ", 2},
             {"CrestFactor", u", Crest Factor : ", 2}}};
}

constexpr std::array<LevelName, 9> NamesOf(const CSuiviOrdre* /*of*/)
{
    return {{{"Order[0]", u"Ordre1 : "},
             {"Order[1]", u", Ordre2 : "},
             {"Order[2]", u" , Ordre3 : "},
             {"Order[3]", u" , Ordre4 : "},
             {"Order[4]", u" , Ordre5 : "},
             {"Order[5]", u" , Ordre6 : "},
             {"Order[6]", u" , Ordre7 : "},
             {"Order[7]", u", Ordre8 : "},
             {"Overall", u", Overall : "}}};
}

template <class Derived>
constexpr auto kNames = NamesOf(static_cast<const Derived*>(nullptr));

template <class Derived>
constexpr std::uint16_t NewestVersion()
{
    std::uint16_t version = 1;
    for (const LevelName& name : kNames<Derived>) version = std::max(version, name.first);
    return version;
}

// The end of the dump.
constexpr const char16_t* EndOfDump(SizeType type) { return type == SizeType::GlobalLevel ? u"" : u" "; }

// The i-th place in the dump, where the minimum of statistics comes before the maximum.
constexpr std::size_t DumpPlace(SizeType type, std::size_t i)
{
    if (type == SizeType::GlobalLevel && (i == CGlobalLevel::Max || i == CGlobalLevel::Min))
        return i == CGlobalLevel::Max ? CGlobalLevel::Min : CGlobalLevel::Max;
    return i;
}

} // namespace

template <class Derived, std::size_t Count>
void LevelResult<Derived, Count>::SetMagnitude(CGrandeur* quantity)
{
    CResult::SetMagnitude(quantity);
    for (CScalar& level : m_levels) level.SetMagnitude(quantity);
}

template <class Derived, std::size_t Count>
void LevelResult<Derived, Count>::SetYMax(float value)
{
    for (CScalar& level : m_levels) level.SetYMax(value);
}

template <class Derived, std::size_t Count>
void LevelResult<Derived, Count>::SetYMin(float value)
{
    for (CScalar& level : m_levels) level.SetYMin(value);
}

template <class Derived, std::size_t Count>
void LevelResult<Derived, Count>::AddReferredGrandeur(std::map<CGrandeur*, int>& counts) const
{
    CResult::AddReferredGrandeur(counts);
    for (const CScalar& level : m_levels) level.AddReferredGrandeur(counts);
}

template <class Derived, std::size_t Count>
void LevelResult<Derived, Count>::SetXMax(float value)
{
    for (CScalar& level : m_levels) level.SetXMax(value);
}

template <class Derived, std::size_t Count>
void LevelResult<Derived, Count>::SetXMin(float value)
{
    for (CScalar& level : m_levels) level.SetXMin(value);
}

template <class Derived, std::size_t Count>
template <class Io, class Self>
bool LevelResult<Derived, Count>::fields(Io& io, Self& v)
{
    if (!io.record(Derived::kRecordName, newest{NewestVersion<Derived>()})) return io.ok();
    io.template base<CResult>(v);
    for (std::size_t i = 0; i < Count; ++i)
        io.member(kNames<Derived>[i].field, v.m_levels[i], since{kNames<Derived>[i].first});
    io.dumpLines(v, &LevelResult::dumpLines);
    return io.ok();
}

template <class Derived, std::size_t Count>
void LevelResult<Derived, Count>::dumpLines(CMmioFile& file) const
{
    wstring line;
    for (std::size_t i = 0; i < Count; ++i) {
        const std::size_t place = DumpPlace(Derived::kResultType, i);
        line += Concat(kNames<Derived>[place].text, ToFixed(m_levels[place].GetValue()));
    }
    file.AddStringToDebugFile(FromUtf8(Derived::kRecordName));
    file.AddStringToDebugFile(line + EndOfDump(Derived::kResultType));
}

template <class Derived, std::size_t Count>
CResult& LevelResult<Derived, Count>::operator=(CResult* other)
{
    if (other == nullptr || other == this) return *this;
    CResult::operator=(other);
    if (auto* same = dynamic_cast<Derived*>(other); same != nullptr)
        for (std::size_t i = 0; i < Count; ++i) m_levels[i] = static_cast<CResult*>(&same->m_levels[i]);
    return *this;
}

template <class Derived, std::size_t Count>
CResult* LevelResult<Derived, Count>::GetCopy()
{
    return CopyOf(static_cast<Derived&>(*this));
}

template class LevelResult<CBroadBand, 10>;
template class StoredRecord<CBroadBand, CResult>;
template class LevelResult<CGlobalLevel, 10>;
template class StoredRecord<CGlobalLevel, CResult>;
template class LevelResult<CSuiviOrdre, 9>;
template class StoredRecord<CSuiviOrdre, CResult>;

} // namespace ZelmResult
