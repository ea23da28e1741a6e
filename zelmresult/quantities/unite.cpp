#include "zelmresult/quantities/unite.h"

#include "zelmresult/quantities/ponderation_unite.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <set>

namespace ZelmResult {

namespace {

constexpr std::uint16_t kFirstUserId = 10000;

} // namespace

void CUnite::SetRef0dB(float reference)
{
    if (reference == 0.0F) return;
    m_ref0dB = reference;
    m_invRef0dB = 1.0F / reference;
}

wstring CUnite::GetLabelLinUnite(const CPonderationUnite* weighting) const
{
    return weighting != nullptr && weighting->hasLinString() ? m_labelLinUnite + weighting->lin() : m_labelLinUnite;
}

wstring CUnite::GetLabelDbUnite(const CPonderationUnite* weighting) const
{
    return weighting != nullptr && weighting->hasDbString() ? m_labeldBUnite + weighting->db() : m_labeldBUnite;
}

wstring CUnite::GetLabelLinOrDbUnite(bool dB, const CPonderationUnite* weighting) const
{
    return dB ? GetLabelDbUnite(weighting) : GetLabelLinUnite(weighting);
}

int CUnite::Compare(const CUnite* other) const
{
    if (other == nullptr) return 1;
    const CUnite& o = *other;
    return int{m_unitKey != o.m_unitKey} + int{m_nomUnite != o.m_nomUnite} + int{m_labelLinUnite != o.m_labelLinUnite} +
           int{m_labeldBUnite != o.m_labeldBUnite} + int{m_coeffA != o.m_coeffA} + int{m_coeffB != o.m_coeffB} +
           int{m_ref0dB != o.m_ref0dB} + int{m_coefdB != o.m_coefdB} + int{m_lowPrefix != o.m_lowPrefix} +
           int{m_highPrefix != o.m_highPrefix} + int{m_notation != o.m_notation} + int{m_noZero != o.m_noZero} +
           int{m_digits != o.m_digits} + int{m_nbDigits != o.m_nbDigits} + int{m_modifiable != o.m_modifiable} +
           int{m_hideDecimalDigit != o.m_hideDecimalDigit};
}

CUnite* CListeUnite::GetUnite(std::uint16_t id) const
{
    const auto found =
        std::find_if(begin(), end(), [id](const CUnite* unit) { return unit != nullptr && unit->GetId() == id; });
    return found == end() ? nullptr : *found;
}

bool CListeUnite::ObjetExiste(const CUnite* unit) const
{
    return unit != nullptr && GetUnite(unit->GetId()) != nullptr;
}

CUnite* CListeUnite::First() const
{
    const auto found = std::find_if(begin(), end(), [](const CUnite* unit) { return unit != nullptr; });
    return found == end() ? nullptr : *found;
}

int CListeUnite::UnitExist(const CUnite* unit) const
{
    int sum = 0;
    for (const CUnite* mine : *this) {
        if (mine == nullptr) continue;
        const int differences = mine->Compare(unit);
        if (differences == 0) return 0;
        sum += differences;
    }
    return sum;
}

int CListeUnite::Compare(const CListeUnite* other) const
{
    int sum = 0;
    if (other != nullptr)
        for (const CUnite* unit : *other) sum += unit != nullptr ? UnitExist(unit) : 0;
    return sum;
}

void CListeUnite::Ajouter(const CListeUnite* other)
{
    if (other == nullptr || other == this) return;
    for (CUnite* unit : *other)
        if (unit != nullptr && !ObjetExiste(unit)) push_back(unit);
}

std::uint16_t CListeUnite::GetUniqueId() const
{
    std::set<std::uint16_t> taken;
    for (const CUnite* unit : *this)
        if (unit != nullptr) taken.insert(unit->GetId());
    std::uint16_t id = kFirstUserId;
    while (id < UINT16_MAX && taken.contains(id)) ++id;
    return id;
}

int CListeUnite::GetNbUserUnit() const { return static_cast<int>(GetUserUnits().size()); }

std::vector<CUnite*> CListeUnite::GetUserUnits() const
{
    std::vector<CUnite*> units;
    std::copy_if(begin(), end(), std::back_inserter(units),
                 [](const CUnite* unit) { return unit != nullptr && unit->GetModifiable(); });
    return units;
}

void CListeUnite::DeleteUniteUser(CUnite* unit)
{
    if (unit == nullptr) return;
    const auto kept = std::remove(begin(), end(), unit);
    if (kept == end()) return;
    erase(kept, end());
    delete unit;
}

void CListeUnite::LiberationMemoire()
{
    const std::set<CUnite*> units(begin(), end());
    clear();
    for (CUnite* unit : units) delete unit;
}

template <class Io, class Unit>
bool CUniteMmioReaderWriter::fields(Io& io, Unit& u)
{
    io.dump([] { return wstring(u"CUnite"); });
    io.dump([&] { return Concat(u"Nom: ", u.m_nomUnite, u",Label: ", u.m_labelLinUnite); });
    io.dump([&] {
        return Concat(u"Coef A: ", ToFixed(u.m_coeffA), u", Coef B: ", ToFixed(u.m_coeffB), u", Ref 0 dB: ",
                      ToFixed(u.m_ref0dB), u", Coef dB: ", ToFixed(u.m_coefdB));
    });
    if (!io.record(kRecordName, newest{256}, first{256})) return io.ok();
    io.f32("CoeffA", u.m_coeffA);
    io.f32("CoeffB", u.m_coeffB);
    io.f32("Ref0dB", u.m_ref0dB); // without its cached inverse, see SetRef0dB
    io.f32("CoefdB", u.m_coefdB);
    io.text("NomUnite", u.m_nomUnite);
    io.text("LabelLinUnite", u.m_labelLinUnite);
    return io.ok();
}

bool CUniteMmioReaderWriter::Read(CMmioFile& file, CUnite& unit) const { return ReadFields(file, unit); }

bool CUniteMmioReaderWriter::Write(CMmioFile& file, const CUnite& unit) const { return WriteFields(file, unit); }

template class StoredFields<CUniteMmioReaderWriter, CUnite>;

} // namespace ZelmResult
