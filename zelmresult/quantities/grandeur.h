#pragma once

#include "zelmresult/quantities/equation_dim.h"
#include "zelmresult/quantities/unite.h"
#include "zelmresult/support/wstring.h"

#include <cstdint>
#include <map>
#include <vector>

namespace ZelmResult {

class CGrandeurFichier;

// A physical quantity: a key, a display name, a dimension, the units in which it can be shown and the current one. A
// quantity that is the product or quotient of two others points at its operands.
//
// Stored   key, name, UFF code, dimension, current unit, operation and operands. Not stored: the Id, the flags, the
//          default unit, and all units but the current one.
// Owns     nothing: it keeps pointers to its units and operands. A CGrandeurFichier owns its current unit.
// Copies   are flat.
class CGrandeur {
public:
    CGrandeur() = default;
    CGrandeur(const CGrandeur&) = default;
    CGrandeur& operator=(const CGrandeur&) = default;
    virtual ~CGrandeur() = default;
    // Bit 0: any quantity. Bit 1: one that came from a file.
    [[nodiscard]] virtual bool IsOfType(std::uint32_t mask) const { return (mask & 1U) != 0; }

    [[nodiscard]] std::uint16_t GetIdGrandeur() const { return m_idGrandeur; }
    void SetIdGrandeur(std::uint16_t id); // 0 also resets the key to "Unknown Magnitude"
    [[nodiscard]] const wstring& GetQuantityKey() const { return m_quantityKey; }
    [[nodiscard]] const wstring& quantityKey() const { return m_quantityKey; }
    [[nodiscard]] const wstring& magnitudeKey() const { return m_quantityKey; }
    void SetQuantityKey(const wstring& key) { m_quantityKey = key; }
    [[nodiscard]] const wstring& GetNomGrandeur() const { return m_nomGrandeur; }
    [[nodiscard]] const wstring& quantityName() const { return m_nomGrandeur; }
    [[nodiscard]] const wstring& magnitudeName() const { return m_nomGrandeur; }
    void SetNomGrandeur(const wstring& name) { m_nomGrandeur = name; }
    [[nodiscard]] const CEquationDim& GetEqDim() const { return m_eqDim; }
    CEquationDim& GetEqDim() { return m_eqDim; }
    void SetEqDim(const CEquationDim& dim) { m_eqDim = dim; }
    [[nodiscard]] std::uint16_t GetTypeUFF() const { return m_typeUFF; }
    void SetTypeUFF(std::uint16_t code) { m_typeUFF = code; }
    [[nodiscard]] bool GetIsAReference() const { return m_isAReference; }
    void SetIsAReference(bool isReference) { m_isAReference = isReference; }
    [[nodiscard]] bool GetdBDisplayPrefered() const { return m_dBDisplayPrefered; }
    // False, and no change, for a quantity that has one display only.
    bool Prefer_dBDisplay(bool preferred);
    void SetdBDisplayPrefered(bool preferred) { m_dBDisplayPrefered = preferred; }
    [[nodiscard]] bool GetMultiDisplay() const { return m_multiDisplay; }
    void SetMultiDisplay(bool multiDisplay) { m_multiDisplay = multiDisplay; }
    [[nodiscard]] std::uint32_t GetDefaultCurrentUnitId() const { return m_defaultCurrentUnitId; }
    void SetDefaultCurrentUnitId(std::uint32_t id) { m_defaultCurrentUnitId = id; }
    // The code of this quantity's chunk in the current file; every save of a document renews it.
    [[nodiscard]] std::uint32_t GetChunkId() const { return m_chunkId; }
    void SetChunkId(std::uint32_t code) { m_chunkId = code; }

    // ---- Units. The list's first unit is the SI unit; all pointers are lent. ----
    [[nodiscard]] const CListeUnite& GetLstUnit() const { return m_lstUnit; }
    CListeUnite& GetLstUnit() { return m_lstUnit; }
    void SetLstUnit(const CListeUnite& units) { m_lstUnit = units; }           // keeps pointers
    [[nodiscard]] CUnite* GetUniteCourante() const { return m_uniteCourante; } // may be null
    // keeps a pointer to a unit of the list; false, and no change, for any other.
    bool SetUniteCourante(CUnite* unit);
    [[nodiscard]] CUnite* GetUniteSI() const; // the current unit when the list is empty
    [[nodiscard]] bool CurrentUnitIsSI() const;
    [[nodiscard]] bool UnitOwned(const CUnite* unit) const { return m_lstUnit.ObjetExiste(unit); }
    void AjouteUniteDynamique(CUnite* unit) // keeps a pointer; null adds nothing
    {
        if (unit != nullptr) m_lstUnit.push_back(unit);
    }
    // Neither deletes. When the current unit is removed, the first that remains becomes the current one, or null.
    void RemoveUnite(const CUnite* unit);
    void RemoveAllUserUnit();

    // ---- Operands, kept as pointers. A document whose operands form a ring can't be read back. ----
    [[nodiscard]] CGrandeur* GetGrandeurLeft() const { return m_grandeurLeft; }
    void SetGrandeurLeft(CGrandeur* operand) { m_grandeurLeft = operand; }
    [[nodiscard]] CGrandeur* GetGrandeurRight() const { return m_grandeurRight; }
    void SetGrandeurRight(CGrandeur* operand) { m_grandeurRight = operand; }
    [[nodiscard]] std::int32_t GetOperationType() const { return m_operationType; } // a code of the host
    void SetOperationType(std::int32_t operation) { m_operationType = operation; }
    [[nodiscard]] std::int32_t GetGrandeurInvolved() const { return m_grandeurInvolved; } // operands stored: 0, 1, 2
    void SetGrandeurInvolved(std::int32_t count) { m_grandeurInvolved = count; }
    [[nodiscard]] bool IsOperateurGrandeur() const { return m_grandeurInvolved > 0; }

    // Whether the other quantity is this one or is reached through the operands.
    [[nodiscard]] bool IsDependantOf(const CGrandeur* other) const;
    // How many quantities without operands this one is built from; 1 for such a quantity itself.
    [[nodiscard]] std::int32_t GetNombreGrandeurSimple() const;
    // Adds to each operand's count the number of ways that lead to it. Counts stay at 2^31-1 when they reach it.
    void AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const;
    // What every holder of a quantity does with it; quantity may be null. The first counts the quantity itself as well;
    // the second replaces it, or its operands.
    static void AddInvolved(CGrandeur* quantity, std::map<CGrandeur*, int>& counts);
    static void Replace(CGrandeur*& quantity, const CGrandeur* old, CGrandeur* replacement);
    // Replaces the old quantity by the new one wherever it is an operand. A null old changes nothing.
    void ReplaceGrandeur(const CGrandeur* old, CGrandeur* replacement);

    // ---- Values in the current unit; see CUnite. Without one, texts are "N.A." and values stay as they are. ----
    void SI_to_string(wstring& out, float value, float absPrecision, float relPrecision, wstring& prefix,
                      wstring& label, bool dB, const CPonderationUnite* weighting, int rounding = CUnite::kRoundNearest,
                      std::int16_t notation = CUnite::kNotationOfUnit) const;
    void courant_to_string(wstring& out, float value, float absPrecision, float relPrecision, wstring& prefix,
                           wstring& label, bool dB, const CPonderationUnite* weighting,
                           std::int16_t notation = CUnite::kNotationOfUnit) const;
    [[nodiscard]] float ConvertSIToScalaire(float value, bool dB) const; // SI to the current unit
    [[nodiscard]] double ConvertToScalaire(double value, bool dB) const; // the current unit to SI
    [[nodiscard]] double AdjustScalaire(float value, float absPrecision, float relPrecision, bool dB) const;
    [[nodiscard]] float LinTodB(float value) const;
    [[nodiscard]] float DbToLin(float level) const;
    [[nodiscard]] float DiffDbToRatioLin(float difference) const;
    // Appends prefix and label to the digits, after a blank if wanted. A zero shows no prefix.
    static void concat_SI_string(wstring& text, const wstring& prefix, const wstring& label, bool blank);

    // 0 when the two may share one stored copy: same key, units, name, dimension and UFF code. Null differs.
    [[nodiscard]] int Compare(const CGrandeur* other) const;

    // Symbols that go into unit labels, class-wide and unguarded.
    static inline wstring M_szMicroSymbol = u"micro";
    static inline wstring M_szSquareSymbol = u"2";
    static inline wstring M_szRootSquareSymbol = u"1/2";
    static const wstring& symbolMicro() { return M_szMicroSymbol; }
    static const wstring& symbolSquare() { return M_szSquareSymbol; }
    static const wstring& symbolRootSquare() { return M_szRootSquareSymbol; }
    static void setSymbolMicro(const wstring& symbol) { M_szMicroSymbol = symbol; }
    static void setSymbolSquare(const wstring& symbol) { M_szSquareSymbol = symbol; }
    static void setSymbolRootSquare(const wstring& symbol) { M_szRootSquareSymbol = symbol; }

protected:
    CListeUnite m_lstUnit;
    CUnite* m_uniteCourante = nullptr;

private:
    friend class CGrandeurMmioReaderWriter;
    friend class CGrandeurFichier;

    [[nodiscard]] std::vector<const CGrandeur*> OperandsFirst() const;

    std::uint16_t m_idGrandeur = 0;
    wstring m_quantityKey = u"Unknown Magnitude";
    wstring m_nomGrandeur;
    CEquationDim m_eqDim;
    std::uint16_t m_typeUFF = 0;
    bool m_isAReference = false;
    bool m_dBDisplayPrefered = false;
    bool m_multiDisplay = false;
    std::uint32_t m_defaultCurrentUnitId = 0;
    CGrandeur* m_grandeurLeft = nullptr;
    CGrandeur* m_grandeurRight = nullptr;
    std::int32_t m_operationType = 0;
    std::int32_t m_grandeurInvolved = 0;
    std::uint32_t m_chunkId = 0;
};

// A quantity as it came from one file. It owns its current unit, the only one that a file holds, so nobody else may
// delete that one (nor call LiberationMemoire on its list). The user count says how many objects refer to it and has no
// effect of its own.
class CGrandeurFichier : public CGrandeur {
public:
    CGrandeurFichier() = default;
    // With a new default unit.
    CGrandeurFichier(const wstring& path, std::uint32_t chunk);
    explicit CGrandeurFichier(const wstring& key);
    // A copy that can be used beside the source: it has its own copy of the SI unit and no operands. Null makes the
    // default.
    explicit CGrandeurFichier(const CGrandeur* source);
    CGrandeurFichier(const CGrandeurFichier&) = delete; // two owners of one unit
    CGrandeurFichier& operator=(const CGrandeurFichier&) = delete;
    ~CGrandeurFichier() override;
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return (mask & 3U) != 0; }

    [[nodiscard]] const wstring& GetFichierOrigine() const { return m_fichierOrigine; }
    [[nodiscard]] std::uint32_t GetChunkOrigine() const { return m_chunkOrigine; }
    [[nodiscard]] bool CompareOrigine(const wstring& path, std::uint32_t chunk) const;
    [[nodiscard]] std::int32_t GetUserNumber() const { return m_userNumber; }
    void AddUser(std::int32_t users) { m_userNumber += users; }
    std::int32_t RemoveUser(std::int32_t users) { return m_userNumber -= users; }

private:
    wstring m_fichierOrigine;
    std::uint32_t m_chunkOrigine = 0;
    std::int32_t m_userNumber = 0;
};

// The chunk of a quantity. Write makes and leaves the chunk under the quantity's ChunkId; Read begins at its data and
// leaves the chunk to the caller. Both return false at the first failed field, with a message in the file's list when
// it was the chunk, the dimension or the unit.
class CGrandeurMmioReaderWriter {
public:
    static constexpr const char* kRecordName = "CGrandeur";
    static constexpr std::size_t kDeepestOperand = 64; // that a read accepts
    [[nodiscard]] bool Read(CMmioFile& file, CGrandeur& quantity) const;
    [[nodiscard]] bool Write(CMmioFile& file, const CGrandeur& quantity) const;
    static void Outline(RecordOutline& out);

private:
    template <class Io, class Quantity>
    static bool fields(Io& io, Quantity& g);
};

} // namespace ZelmResult
