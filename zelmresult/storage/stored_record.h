#pragma once

namespace ZelmResult {

class CMmioFile;
class RecordOutline;

// What a class of a hierarchy makes of its list of fields: its storage. Base is the class that Derived extends and
// whose constructors it inherits; Parts are further bases that are stored as blocks of their own.
//
// The list is known to the source of Derived only. So that source instantiates this class after the list, and the
// header declares the instantiation extern. The same holds for StoredFields. See record_io.h.
template <class Derived, class Base, class... Parts>
class StoredRecord : public Base, public Parts... {
public:
    using Base::Base;

    // The whole block at the current position, its version first. False at the first field that fails.
    [[nodiscard]] bool Write(CMmioFile* file) override;
    [[nodiscard]] bool Read(CMmioFile* file) override;
    // Describes the block.
    void Outline(RecordOutline& out) const;
};

// What any other class makes of its list of fields: Record is what it reads and writes, mostly itself. The class adds
// the chunks around the fields.
template <class Derived, class Record = Derived>
class StoredFields {
public:
    // Describes the block of a record as it is made.
    static void Outline(RecordOutline& out);

protected:
    // As Read and Write of StoredRecord.
    [[nodiscard]] static bool ReadFields(CMmioFile& file, Record& record);
    [[nodiscard]] static bool WriteFields(CMmioFile& file, const Record& record);
};

} // namespace ZelmResult
