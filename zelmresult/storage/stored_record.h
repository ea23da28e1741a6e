#pragma once

namespace ZelmResult {

class CMmioFile;
class RecordOutline;

// What a class of a hierarchy makes of its list of fields: its storage. Base is the class that Derived extends and
// whose constructors it inherits; Parts are further bases that are stored as blocks of their own.
// The list is private to the source of Derived, which instantiates this class after it; see record_io.h.
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

} // namespace ZelmResult
