#pragma once

#include "tools/zmxf/damage/chunk_tree.h"
#include "tools/zmxf/damage/probed_file.h"
#include "zelmresult/document/result_header.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zmxf {

// Reads records of a file one by one, however damaged the rest of it is.
class RecordProbe {
public:
    enum class Outcome {
        Readable,
        UnknownKind, // of a result: loads skip it; of a setting: a load of settings ends there
        Unreadable,
    };

    // Keeps a pointer to the observer, which may be null and is called for the fields that are read.
    RecordProbe(const std::string& path, ZelmResult::FieldObserver* observer) : m_file(path) { Observe(observer); }

    void Observe(ZelmResult::FieldObserver* observer) { m_file.SetFieldObserver(observer); }
    // Why the library turned something down since the last call, for a person; empty when it didn't, and after many.
    std::string TakeRefusal();
    // After what was read last.
    [[nodiscard]] std::int64_t Position() const { return m_file.Position(); }
    // Null for a header that can't be read.
    std::unique_ptr<ZelmResult::CResultHeader> ReadHeader(const Chunk& chunk);
    Outcome TryResult(const Chunk& header, const Chunk& data);
    // The key at a place in its list, with the value after it.
    Outcome TrySetting(const Chunk& list, std::size_t place);
    // The list of settings that the identifier before it names; nothing for an identifier that can't be read.
    std::optional<idn::Idn> ReadIdentifier(const Chunk& chunk);
    // Any other record, which is in list; true for a chunk that holds none, and for one that isn't whole.
    bool IsReadable(const Chunk& list, std::size_t place);

    // Reports each record that can't be read, in a list and those inside it. Of a pair, such as header and data of a
    // result, it is the first.
    using Report = std::function<void(const Chunk& list, std::size_t place, Outcome outcome)>;
    void TryAll(const Chunk& list, const Report& report);

private:
    bool GoTo(std::int64_t offset);
    // The list as what searches keep to, with the position at an offset.
    bool Enter(const Chunk& list, std::int64_t offset);
    // Whether a read goes well from the data of a chunk on, and ends inside of it.
    template <class Read>
    bool ReadsInside(const Chunk& chunk, Read read);
    bool IsUnderItsCode(const Chunk& list, std::size_t place);
    bool AreBareFields(const Chunk& list, const Chunk& chunk);

    ProbedFile m_file;
    int m_refusals = 0; // that were reported
};

// The bound, and where it was met.
std::string RefusalText(const ZelmResult::Refusal& refusal);

} // namespace zmxf
