#include "tools/zmxf/chunks/read_trial.h"

#include "zelmresult/document/zmxf_file.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/results/result_factory.h"
#include "zelmresult/waterfalls/ref_waterfall.h"
#include "zelmresult/waterfalls/waterfall_ref.h"

namespace zmxf {

bool CanBeLoaded(const std::string& path)
{
    ZelmResult::CZMXFFile document(true, false);
    const bool loaded = document.Load(LibraryPath(path).text().c_str(), ZelmResult::ZMXFFileLoadScope::all());
    document.NeedToRemoveEverything(true);
    return loaded;
}

ResultTrial::ResultTrial(const std::string& path) : m_path(path), m_file(false)
{
    if (m_file.Open(m_path.text(), nullptr, ZelmResult::OMMIO_READ)) m_file.LimitSearches();
}

ResultTrial::~ResultTrial()
{
    for (const ZelmResult::CGrandeurFichier* quantity : m_file.ListeGrandeur()) delete quantity;
}

bool ResultTrial::GoTo(const Chunk& chunk)
{
    return m_file.mmioSeek(static_cast<std::int32_t>(chunk.data), ZelmResult::OMMIO_SEEK_SET);
}

std::unique_ptr<ZelmResult::CResultHeader> ResultTrial::ReadHeader(const Chunk& chunk)
{
    auto header = std::make_unique<ZelmResult::CResultHeader>();
    const bool isGood = GoTo(chunk) && header->Load(&m_file) && m_file.Position() <= chunk.end;
    return isGood ? std::move(header) : nullptr;
}

bool ResultTrial::IsQuantity(const Chunk& chunk)
{
    ZelmResult::CGrandeurFichier quantity(m_path.text(), chunk.header.code);
    return GoTo(chunk) && ZelmResult::CGrandeurMmioReaderWriter().Read(m_file, quantity) &&
           m_file.Position() <= chunk.end;
}

ResultTrial::Fate ResultTrial::Try(const Chunk& header, const Chunk& data)
{
    const auto read = ReadHeader(header);
    if (read == nullptr) return Fate::Unreadable;
    const auto result = ZelmResult::ResultFactory::create(
        read->processType(), static_cast<int>(read->GetWaterfallDimension()), read->responseName());
    if (result == nullptr) return Fate::UnknownKind;
    std::unique_ptr<ZelmResult::CWaterfallRef> ownReference;
    if (const auto* series = dynamic_cast<const ZelmResult::CRefWaterfall*>(result.get()); series != nullptr)
        ownReference.reset(series->GetMyVecteurReference());
    // A record that is longer than its chunk reads what belongs to others.
    const bool isGood = GoTo(data) && result->Read(&m_file) && m_file.Position() <= data.end;
    return isGood ? Fate::Readable : Fate::Unreadable;
}

} // namespace zmxf
