#include "tools/zmxf/damage/load_failure.h"

#include "tools/zmxf/damage/probed_file.h"
#include "tools/zmxf/damage/record_probe.h"
#include "zelmresult/document/file_header.h"
#include "zelmresult/document/hard_info.h"
#include "zelmresult/document/systeme.h"
#include "zelmresult/quantities/file_quantities.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/storage/nested_chunk.h"
#include "zelmresult/support/text.h"

#include <fmt/format.h>
#include <memory>

namespace zmxf {

namespace {

namespace FileType = ZelmResult::FileType;
using ZelmResult::OMMCKINFO;

class LoadInParts {
public:
    LoadInParts(const std::string& path, FieldNotes& notes) : m_notes(notes), m_file(path)
    {
        m_file.SetFieldObserver(&notes);
    }

    // Whether all parts load.
    bool Load() { return LoadHead() && LoadQuantities() && LoadSystems() && LoadHardware(); }
    // The part that doesn't.
    [[nodiscard]] const Damage& failure() const { return m_failure; }

private:
    template <class Read>
    bool Part(const std::string& name, Read read)
    {
        const bool wasRefused = IsRefused();
        const std::int32_t begin = m_file.Position();
        const ReadField* const before = m_notes.last();
        const std::int64_t known = before != nullptr ? before->offset : -1;
        if (read()) return true;
        const ReadField* last = m_notes.last();
        const bool isKnown = last == nullptr || last->offset == known;
        m_failure = {begin, fmt::format("a load as a whole ends here: {} can't be read", name)};
        if (!wasRefused && IsRefused()) {
            m_failure.offset = m_file.bounds().FirstRefusal().offset;
            m_failure.text += fmt::format(", {}", RefusalText(m_file.bounds().FirstRefusal()));
        } else if (!isKnown) {
            m_failure.offset = last->offset;
            m_failure.text += fmt::format("; the last field that was read is {}", last->name);
        }
        return false;
    }
    [[nodiscard]] bool IsRefused() const
    {
        return m_file.bounds().FirstRefusal().bound != ZelmResult::Refusal::Bound::None;
    }

    bool LoadHead()
    {
        return Part("the head", [this] {
            return m_file.EnterChunkRIFF(m_form) && m_file.ReadChunkVersion(m_form, m_version) &&
                   ZelmResult::FileHeaderMmioReaderWriter().Read(m_file, m_header);
        });
    }

    bool LoadQuantities()
    {
        OMMCKINFO list;
        OMMCKINFO chunk;
        if (!m_file.TopOfChunkUnite(list)) return true;
        for (int i = 0;; ++i) {
            const std::uint32_t code = ZelmResult::ChunkCode(ChunkKind::Quantity, i);
            if (!m_file.EnterChunkSansParent(chunk, code)) return true;
            const auto read = [&] {
                return m_file.quantities().ReadChunk(m_file, code) != nullptr && m_file.ExitChunk(chunk);
            };
            if (!Part(fmt::format("quantity {}", ZelmResult::ToUtf8(ZelmResult::ChunkCodeText(ChunkKind::Quantity, i))),
                      read))
                return false;
        }
    }

    bool LoadSystems()
    {
        OMMCKINFO list;
        if (!m_file.TopOfFile() || !m_file.EnterChunkRIFF(m_form)) return false;
        const auto most = ZelmResult::MostOf(ChunkKind::System);
        for (std::int16_t number = 0; number < most && m_file.EnterChunkSysteme(list, m_form, number); ++number) {
            ZelmResult::NestedChunk chunk(m_file, list);
            if (!LoadSystem(number) || !chunk.Exit()) return false;
        }
        return true;
    }
    // One branch after the other, but those that are read together.
    bool LoadSystem(std::int16_t number)
    {
        static constexpr std::pair<std::uint32_t, const char*> branches[] = {
            {FileType::kRecording, "the recording"},
            {FileType::kResults, "a result"},
            {FileType::kReferences, "the references"},
            {FileType::kSettings | FileType::kTracks, "the settings or the transducers"}};
        const std::int32_t begin = m_file.Position();
        ZelmResult::CSysteme& system = *m_systems.emplace_back(std::make_unique<ZelmResult::CSysteme>());
        system.setSystemNumber(static_cast<std::uint16_t>(number));
        system.NeedToRemoveEverything(true);
        for (const auto& [bits, name] : branches) {
            const auto load = [&, type = m_header.GetType() & bits] {
                return m_file.mmioSeek(begin, ZelmResult::OMMIO_SEEK_SET) &&
                       system.Load(&m_file, type, true, true, ZelmResult::ZMXFFileLoadScope::all());
            };
            if (!Part(fmt::format("{} of system {}", name, number), load)) return false;
        }
        return true;
    }

    bool LoadHardware()
    {
        return Part("the hardware", [this] {
            const ZelmResult::CHardInfoMmioReaderWriter reader;
            ZelmResult::CHardInfo hardware;
            return m_version < ZelmResult::CHardInfoMmioReaderWriter::kFirstDocumentVersion ||
                   reader.Read(m_file, hardware);
        });
    }

    const FieldNotes& m_notes;
    ProbedFile m_file; // before the systems, which use its quantities
    OMMCKINFO m_form;
    std::uint16_t m_version = 0;
    ZelmResult::FileHeader m_header;
    std::vector<std::unique_ptr<ZelmResult::CSysteme>> m_systems;
    Damage m_failure{0, "a load as a whole fails, though all its parts can be read"};
};

} // namespace

Damage ExplainLoadFailure(const std::string& path, FieldNotes& notes)
{
    LoadInParts load(path, notes);
    (void)load.Load();
    return load.failure();
}

} // namespace zmxf
