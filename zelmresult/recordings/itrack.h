#pragma once

#include "zelmresult/storage/stored_record.h"
#include "zelmresult/support/wstring.h"

namespace ZelmResult {

// The transducer of an input channel. A plain value.
// Stored in a chunk "ITRA", as version 0x100.
class CITrack : public StoredFields<CITrack> {
public:
    static constexpr const char* kRecordName = "CITrack";

    [[nodiscard]] const wstring& id() const { return m_id; }
    void setId(const wstring& id) { m_id = id; }
    [[nodiscard]] const wstring& type() const { return m_type; }
    void setType(const wstring& type) { m_type = type; }
    [[nodiscard]] const wstring& serialNb() const { return m_serialNb; }
    void setSerialNb(const wstring& number) { m_serialNb = number; }
    [[nodiscard]] const wstring& model() const { return m_model; }
    void setModel(const wstring& model) { m_model = model; }
    [[nodiscard]] const wstring& manu() const { return m_manu; } // the manufacturer
    void setManu(const wstring& manufacturer) { m_manu = manufacturer; }

    // Finds the next such chunk from the position on, reads and leaves it. False when there is none.
    [[nodiscard]] bool Load(CMmioFile* file);
    // Makes and leaves the chunk.
    [[nodiscard]] bool Save(CMmioFile* file) const;

private:
    friend StoredFields;
    template <class Io, class Self>
    static bool fields(Io& io, Self& track);

    wstring m_id;
    wstring m_type;
    wstring m_serialNb;
    wstring m_model;
    wstring m_manu;
};
extern template class StoredFields<CITrack>;

} // namespace ZelmResult
