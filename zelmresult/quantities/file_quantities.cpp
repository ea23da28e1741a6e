#include "zelmresult/quantities/file_quantities.h"

#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/mmio_file.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <string_view>

namespace ZelmResult {

namespace {

// A hash of what CGrandeur::Compare looks at, except for the units of the list.
std::size_t ContentHash(const CGrandeur& quantity)
{
    const EquationDim& dim = *quantity.GetEqDim().GetEqDim();
    const std::string_view bytes(reinterpret_cast<const char*>(&dim), sizeof dim);
    std::size_t hash = quantity.GetTypeUFF();
    for (const std::size_t part :
         {std::hash<wstring>()(quantity.quantityKey()), std::hash<wstring>()(quantity.GetNomGrandeur()),
          std::hash<std::string_view>()(bytes)})
        hash = hash * 31 + part;
    return hash;
}

} // namespace

CGrandeurFichier* FileQuantities::FindByOrigin(const wstring& fileName, std::uint32_t code)
{
    const auto alike = m_byOrigin.find(code);
    if (alike == m_byOrigin.end()) return nullptr;
    for (CGrandeurFichier* listed : alike->second) {
        if (!listed->CompareOrigine(fileName, code)) continue;
        listed->AddUser(1);
        return listed;
    }
    return nullptr;
}

CGrandeurFichier* FileQuantities::FindSame(const CGrandeur& quantity) const
{
    const auto alike = m_byContent.find(ContentHash(quantity));
    if (alike == m_byContent.end()) return nullptr;
    for (CGrandeurFichier* listed : alike->second)
        if (listed->Compare(&quantity) == 0) return listed;
    return nullptr;
}

CGrandeurFichier* FileQuantities::Add(CGrandeurFichier* quantity)
{
    CGrandeurFichier* listed = FindSame(*quantity);
    if (listed == nullptr) {
        listed = quantity;
        m_list.push_back(quantity);
        m_byContent[ContentHash(*quantity)].push_back(quantity);
        m_byOrigin[quantity->GetChunkOrigine()].push_back(quantity);
    }
    listed->AddUser(1);
    return listed;
}

bool FileQuantities::ReadReference(CMmioFile& file, CGrandeur*& quantity)
{
    std::uint32_t code = 0;
    if (!file.ReadChunk(code)) return false;
    if (code == kCodeOfNoQuantity) {
        quantity = nullptr;
        return true;
    }
    CGrandeurFichier* listed = nullptr;
    if (const auto known = m_byCode.find(code); known != m_byCode.end()) {
        listed = known->second;
        listed->AddUser(1);
    } else {
        listed = FindByOrigin(file.FileName(), code);
    }
    if (listed == nullptr) listed = Fetch(file, code);
    if (listed == nullptr) return false;
    quantity = listed;
    return true;
}

// Reads the chunk of a quantity wherever it is, and returns to the position before.
CGrandeurFichier* FileQuantities::Fetch(CMmioFile& file, std::uint32_t code)
{
    const std::int32_t position = file.Position();
    OMMCKINFO list;
    OMMCKINFO chunk;
    if (!file.TopOfChunkUnite(list) || !file.EnterChunk(chunk, list, code)) return nullptr;
    CGrandeurFichier* listed = ReadChunk(file, code);
    return file.mmioSeek(position, OMMIO_SEEK_SET) ? listed : nullptr;
}

CGrandeurFichier* FileQuantities::ReadChunk(CMmioFile& file, std::uint32_t code)
{
    if (const auto known = m_byCode.find(code); known != m_byCode.end()) return known->second;
    if (m_beingRead.size() > CGrandeurMmioReaderWriter::kDeepestOperand ||
        std::find(m_beingRead.begin(), m_beingRead.end(), code) != m_beingRead.end()) {
        (void)file.Refuse(Refusal::Bound::Depth);
        return nullptr;
    }
    if (!file.RoomFor(1, sizeof(CGrandeurFichier) + sizeof(CUnite))) return nullptr;
    auto quantity = std::make_unique<CGrandeurFichier>(file.FileName(), code);
    m_beingRead.push_back(code);
    const bool read = CGrandeurMmioReaderWriter().Read(file, *quantity);
    m_beingRead.pop_back();
    if (!read) return nullptr;
    CGrandeurFichier* listed = Add(quantity.get());
    if (listed == quantity.get()) (void)quantity.release(); // the list owns it now
    m_byCode.emplace(code, listed);
    return listed;
}

void FileQuantities::NoteReferred(const CGrandeur& quantity)
{
    if (m_unexpected == nullptr && m_stored && !m_stored->contains(&quantity)) m_unexpected = &quantity;
}

const CGrandeur* FileQuantities::TakeUnexpected() { return std::exchange(m_unexpected, nullptr); }

// ---- What a file says of its quantities ----

CMmioFile::Quantities::Quantities() : m_quantities(std::make_unique<FileQuantities>()) {}
CMmioFile::Quantities::Quantities(const Quantities& other)
    : m_quantities(std::make_unique<FileQuantities>(*other.m_quantities))
{
}
CMmioFile::Quantities& CMmioFile::Quantities::operator=(const Quantities& other)
{
    if (this != &other) *m_quantities = *other.m_quantities;
    return *this;
}
CMmioFile::Quantities::~Quantities() = default;

const std::vector<CGrandeurFichier*>& CMmioFile::ListeGrandeur() const { return m_quantities->list(); }

CGrandeurFichier* CMmioFile::GetGrandeur(const wstring& fileName, std::uint32_t id)
{
    return m_quantities->FindByOrigin(fileName, id);
}

CGrandeurFichier* CMmioFile::GetSameGrandeurInList(const CGrandeur& quantity)
{
    return m_quantities->FindSame(quantity);
}

CGrandeurFichier* CMmioFile::AddGrandeurFichier(CGrandeurFichier* quantity) { return m_quantities->Add(quantity); }

bool CMmioFile::ReadGrandeur(CGrandeur*& quantity) { return m_quantities->ReadReference(*this, quantity); }

bool CMmioFile::WriteGrandeur(const CGrandeur* quantity)
{
    if (quantity == nullptr) return WriteChunk(kCodeOfNoQuantity);
    m_quantities->NoteReferred(*quantity);
    if (m_debug) AddStringToDebugFile(u"Chunk de la grandeur: " + quantity->GetNomGrandeur());
    return WriteChunk(quantity->GetChunkId());
}

} // namespace ZelmResult
