#include "zelmresult/quantities/grandeur.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace ZelmResult {

namespace {

constexpr char16_t kUnknownKey[] = u"Unknown Magnitude";

std::int32_t AddSaturated(std::int32_t a, std::int32_t b)
{
    return static_cast<std::int32_t>(std::min<std::int64_t>(INT32_MAX, std::int64_t{a} + b));
}

} // namespace

void CGrandeur::SetIdGrandeur(std::uint16_t id)
{
    m_idGrandeur = id;
    if (id == 0) m_quantityKey = kUnknownKey;
}

bool CGrandeur::Prefer_dBDisplay(bool preferred)
{
    if (m_multiDisplay) m_dBDisplayPrefered = preferred;
    return m_multiDisplay;
}

bool CGrandeur::SetUniteCourante(CUnite* unit)
{
    const bool listed = unit != nullptr && std::find(m_lstUnit.begin(), m_lstUnit.end(), unit) != m_lstUnit.end();
    if (listed) m_uniteCourante = unit;
    return listed;
}

CUnite* CGrandeur::GetUniteSI() const
{
    CUnite* first = m_lstUnit.First();
    return first != nullptr ? first : m_uniteCourante;
}

bool CGrandeur::CurrentUnitIsSI() const { return m_uniteCourante != nullptr && m_uniteCourante == m_lstUnit.First(); }

void CGrandeur::RemoveUnite(const CUnite* unit)
{
    if (unit == nullptr) return;
    const auto kept = std::remove(m_lstUnit.begin(), m_lstUnit.end(), unit);
    if (kept == m_lstUnit.end()) return;
    m_lstUnit.erase(kept, m_lstUnit.end());
    if (m_uniteCourante == unit) m_uniteCourante = m_lstUnit.First();
}

void CGrandeur::RemoveAllUserUnit()
{
    for (const CUnite* unit : m_lstUnit.GetUserUnits()) RemoveUnite(unit);
}

// This quantity and all that its operands reach, each once, operands before what they make. Operands that lead back to
// a quantity on their own way are not followed, and shared ones are visited once: trees of operands may come from
// files.
std::vector<const CGrandeur*> CGrandeur::OperandsFirst() const
{
    std::vector<const CGrandeur*> order;
    std::unordered_set<const CGrandeur*> seen{this};
    std::vector<std::pair<const CGrandeur*, int>> path{{this, 0}};
    while (!path.empty()) {
        auto& [quantity, operandsDone] = path.back();
        if (operandsDone == 2) {
            order.push_back(quantity);
            path.pop_back();
            continue;
        }
        const CGrandeur* operand = operandsDone == 0 ? quantity->m_grandeurLeft : quantity->m_grandeurRight;
        ++operandsDone;
        if (operand != nullptr && seen.insert(operand).second) path.emplace_back(operand, 0);
    }
    return order;
}

bool CGrandeur::IsDependantOf(const CGrandeur* other) const
{
    const auto reached = OperandsFirst();
    return std::find(reached.begin(), reached.end(), other) != reached.end();
}

std::int32_t CGrandeur::GetNombreGrandeurSimple() const
{
    std::unordered_map<const CGrandeur*, std::int32_t> simple;
    for (const CGrandeur* quantity : OperandsFirst()) {
        const std::int32_t sum = AddSaturated(simple[quantity->m_grandeurLeft], simple[quantity->m_grandeurRight]);
        simple[quantity] = sum == 0 ? 1 : sum;
        simple[nullptr] = 0;
    }
    return simple[this];
}

void CGrandeur::AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const
{
    auto order = OperandsFirst();
    std::reverse(order.begin(), order.end()); // a quantity's ways are all counted before they are passed on
    std::unordered_map<const CGrandeur*, std::int32_t> ways{{this, 1}};
    for (const CGrandeur* quantity : order) {
        for (CGrandeur* operand : {quantity->m_grandeurLeft, quantity->m_grandeurRight}) {
            if (operand == nullptr) continue;
            const std::int32_t here = ways[quantity];
            ways[operand] = AddSaturated(ways[operand], here);
            counts[operand] = AddSaturated(counts[operand], here);
        }
    }
}

void CGrandeur::ReplaceGrandeur(const CGrandeur* old, CGrandeur* replacement)
{
    if (old == nullptr || old == replacement) return;
    std::unordered_set<CGrandeur*> seen{this};
    std::vector<CGrandeur*> waiting{this};
    while (!waiting.empty()) {
        CGrandeur* quantity = waiting.back();
        waiting.pop_back();
        for (CGrandeur** operand : {&quantity->m_grandeurLeft, &quantity->m_grandeurRight}) {
            if (*operand == old)
                *operand = replacement;
            else if (*operand != nullptr && seen.insert(*operand).second)
                waiting.push_back(*operand);
        }
    }
}

void CGrandeur::AddInvolved(CGrandeur* quantity, std::map<CGrandeur*, int>& counts)
{
    if (quantity == nullptr) return;
    counts[quantity] = AddSaturated(counts[quantity], 1);
    quantity->AddInvolvedGrandeur(counts);
}

void CGrandeur::Replace(CGrandeur*& quantity, const CGrandeur* old, CGrandeur* replacement)
{
    if (quantity == nullptr) return;
    if (quantity == old)
        quantity = replacement;
    else
        quantity->ReplaceGrandeur(old, replacement);
}

int CGrandeur::Compare(const CGrandeur* other) const
{
    if (other == nullptr) return 1;
    return static_cast<int>(m_quantityKey != other->m_quantityKey) + m_lstUnit.Compare(&other->m_lstUnit) +
           static_cast<int>(m_nomGrandeur != other->m_nomGrandeur) +
           static_cast<int>(!m_eqDim.IsEqual(other->m_eqDim)) + static_cast<int>(m_typeUFF != other->m_typeUFF);
}

CGrandeurFichier::CGrandeurFichier(const wstring& path, std::uint32_t chunk)
    : m_fichierOrigine(path), m_chunkOrigine(chunk)
{
    m_uniteCourante = new CUnite;
}

CGrandeurFichier::CGrandeurFichier(const wstring& key) { SetQuantityKey(key); }

CGrandeurFichier::CGrandeurFichier(const CGrandeur* source)
{
    if (source == nullptr) return;
    m_idGrandeur = source->m_idGrandeur;
    m_quantityKey = source->m_quantityKey;
    m_eqDim = source->m_eqDim;
    m_nomGrandeur = source->m_nomGrandeur;
    m_typeUFF = source->m_typeUFF;
    m_isAReference = source->m_isAReference;
    m_dBDisplayPrefered = source->m_dBDisplayPrefered;
    m_multiDisplay = source->m_multiDisplay;
    m_defaultCurrentUnitId = source->m_defaultCurrentUnitId;
    m_chunkId = source->m_chunkId;
    const CUnite* unit = source->GetUniteSI();
    m_uniteCourante = unit != nullptr ? new CUnite(*unit) : new CUnite;
    m_lstUnit.push_back(m_uniteCourante);
}

CGrandeurFichier::~CGrandeurFichier() { delete m_uniteCourante; }

bool CGrandeurFichier::CompareOrigine(const wstring& path, std::uint32_t chunk) const
{
    return m_chunkOrigine == chunk && m_fichierOrigine == path;
}

} // namespace ZelmResult
