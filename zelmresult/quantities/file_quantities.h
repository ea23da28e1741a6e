#pragma once

#include "zelmresult/support/wstring.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace ZelmResult {

class CGrandeur;
class CGrandeurFichier;
class CMmioFile;

// The quantities of one open file: those that were read or added, each once, and what its writers refer to. Owns none
// of them: the code that opened the file takes them over. A quantity in the list must keep what CGrandeur::Compare
// looks at.
class FileQuantities {
public:
    [[nodiscard]] const std::vector<CGrandeurFichier*>& list() const { return m_list; }
    // Null without a match. FindByOrigin adds a user to what it finds.
    CGrandeurFichier* FindByOrigin(const wstring& fileName, std::uint32_t code);
    CGrandeurFichier* FindSame(const CGrandeur& quantity) const;
    // Adds a quantity unless an equal one is listed. Gives the one in the list, with one more user; when that is
    // another one, the caller still owns what it passed.
    CGrandeurFichier* Add(CGrandeurFichier* quantity);

    // Reads a reference: the quantity that it names, from the list or from its chunk, with one more user. Afterwards
    // the file is at the position after the reference. Null means none; false when it can't be read.
    bool ReadReference(CMmioFile& file, CGrandeur*& quantity);
    // Called with the file at the data of the quantity chunk of that code. Reads it into the list, unless that was done
    // before. Lends the one in the list; null on failure, also for a quantity that is an operand of itself or more than
    // 64 operands deep.
    CGrandeurFichier* ReadChunk(CMmioFile& file, std::uint32_t code);

    // Names the quantities that are stored with the file that is written. From then on the first other one that a
    // reference names is noted, and given once; null when there was none.
    void Expect(std::unordered_set<const CGrandeur*> stored) { m_stored = std::move(stored); }
    void NoteReferred(const CGrandeur& quantity);
    const CGrandeur* TakeUnexpected();

private:
    CGrandeurFichier* Fetch(CMmioFile& file, std::uint32_t code);

    std::vector<CGrandeurFichier*> m_list;
    std::unordered_map<std::size_t, std::vector<CGrandeurFichier*>> m_byContent;  // by what Compare looks at
    std::unordered_map<std::uint32_t, std::vector<CGrandeurFichier*>> m_byOrigin; // by the code in their file
    std::unordered_map<std::uint32_t, CGrandeurFichier*> m_byCode;                // of this file, equal ones as one
    std::vector<std::uint32_t> m_beingRead;                                       // a quantity must not hold itself
    std::optional<std::unordered_set<const CGrandeur*>> m_stored;
    const CGrandeur* m_unexpected = nullptr;
};

} // namespace ZelmResult
