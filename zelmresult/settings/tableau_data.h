#pragma once

#include "zelmresult/settings/reglage_data.h"

namespace ZelmResult {

// A table: settings in rows, how many lines of it are shown, and which columns.
// Owns   its settings.
// Copies are deep. The assignment appends to what the table holds, so use it on a new table.
class CTableauData : public StoredReglage<CTableauData> {
public:
    static constexpr const char* kRecordName = "CTableauData";
    static constexpr std::uint32_t kType = 5;
    static constexpr std::int32_t kLinesNotStored = -1; // as NbrLineVisu: a table without a stored layout
    using StoredReglage::StoredReglage;
    CTableauData(const CTableauData&) = default;
    CTableauData& operator=(const CTableauData& other);
    ~CTableauData() override = default;

    // lends, row by row
    [[nodiscard]] const std::vector<CReglageData*>& GetListReglage() const { return m_settings.all(); }
    void AddReglage(CReglageData* setting) { m_settings.Add(setting); } // takes
    [[nodiscard]] std::int32_t GetNbrLineVisu() const { return m_nbrLineVisu; }
    void SetNbrLineVisu(std::int32_t lines) { m_nbrLineVisu = lines; } // kLinesNotStored isn't restored by a load
    [[nodiscard]] const std::vector<std::int32_t>& GetListVisu() const { return m_listVisu; }
    void SetListVisu(const std::vector<std::int32_t>& columns) { m_listVisu = columns; }

    [[nodiscard]] bool Write(CMmioFile* file) override;
    // Called with the chunk of the value as the file's current chunk.
    [[nodiscard]] bool Read(CMmioFile* file) override;

private:
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& table);

    ReglageList m_settings;
    std::int32_t m_nbrLineVisu = 0;
    std::vector<std::int32_t> m_listVisu;
};
extern template class StoredRecord<CTableauData, CReglageData>;

// A tachometer whose signal is calculated from others, with the settings for it.
// Owns its settings. Copies are deep.
class CVirtualTachoData : public StoredReglage<CVirtualTachoData> {
public:
    static constexpr const char* kRecordName = "CVirtualTachoData";
    static constexpr std::uint32_t kType = 4097;
    using StoredReglage::StoredReglage;

    [[nodiscard]] const std::vector<CReglageData*>& GetListReglage() const { return m_settings.all(); } // lends
    void AddReglage(CReglageData* setting) { m_settings.Add(setting); }                                 // takes

    [[nodiscard]] bool Write(CMmioFile* file) override;
    // Called with the chunk of the value as the file's current chunk.
    [[nodiscard]] bool Read(CMmioFile* file) override;

private:
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& tacho);

    ReglageList m_settings;
};
extern template class StoredRecord<CVirtualTachoData, CReglageData>;

} // namespace ZelmResult
