#include "tests/builders/reader_check.h"

#include "tests/builders/memory_file.h"
#include "zelmresult/document/zmxf_file.h"
#include "zelmresult/reading/document_reader.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/ref_waterfall.h"

#include <map>
#include <utility>
#include <vector>

namespace ZelmResult::test {

namespace {

constexpr std::uint32_t kHiddenInListings = 2;

// The bytes that a result is stored as, with the codes that its quantities had in their file.
std::string StoredForm(CResult& result)
{
    std::map<CGrandeur*, int> quantities;
    result.AddReferredGrandeur(quantities);
    for (const auto& [quantity, count] : quantities)
        if (auto* stored = dynamic_cast<CGrandeurFichier*>(quantity); stored != nullptr)
            stored->SetChunkId(stored->GetChunkOrigine());
    MemoryDisk disk;
    CMmioFile file(false, disk.backend());
    const wstring name = u"result";
    const bool isWritten = file.Open(name, nullptr, OMMIO_WRITE | OMMIO_CREATE) && result.Write(&file);
    (void)file.Close();
    return isWritten ? std::string(disk[name].data(), disk[name].size()) : "unwritable";
}

std::vector<wstring> ReferenceNames(CResult& result)
{
    std::vector<wstring> names;
    if (const CReferencedAxis* axis = result.GetReferencedAxis(); axis != nullptr) axis->GetRefNames(names);
    return names;
}

// A load looks for the series that each stored reference belongs to, which in a damaged file may be any: the series
// takes its values, and a waterfall that is tied to it its quantity.
bool IsEqual(CResult& read, CResult& loaded)
{
    const auto* series = dynamic_cast<const CRefWaterfall*>(&read);
    if (series != nullptr && series->GetMyVecteurReference() != nullptr) return true;
    return ReferenceNames(read) != ReferenceNames(loaded) || StoredForm(read) == StoredForm(loaded);
}

// The results that a load gives and a listing shows, each with the number of its system.
std::vector<std::pair<std::int32_t, CResult*>> ListedResults(const CZMXFFile& document)
{
    std::vector<std::pair<std::int32_t, CResult*>> all;
    for (std::int32_t i = 0; i < document.getNbrSys(); ++i)
        for (const auto& [header, result] : document.getSystem(i)->getMapResult())
            if (header->GetOpere() != kHiddenInListings) all.emplace_back(i, result);
    return all;
}

} // namespace

std::string DifferenceFromLoad(const wstring& path)
{
    CZMXFFile document(true, false);
    const bool isLoaded = document.Load(path.c_str(), ZMXFFileLoadScope::all());
    document.NeedToRemoveEverything(true);
    auto reader = DocumentReader::Open(path);
    if (!reader) return isLoaded ? "not opened: " + ToUtf8(reader.error().Text()) : std::string();
    // Listings show results that the type word of the document doesn't name, too.
    const bool isCompared = isLoaded && document.fileHeader().HasType(FileType::kResults);
    const auto loaded = ListedResults(document);
    std::size_t next = 0;
    std::string difference;
    for (std::size_t i = 0; i < reader->Results().items.size(); ++i) {
        auto stored = reader->ReadResult(i);
        if (!isCompared || !difference.empty()) continue; // it was read
        const std::string place = "result " + std::to_string(i);
        if (!stored && stored.error().kind == ReadError::Kind::UnknownKind) continue;
        if (!stored)
            difference = ToUtf8(stored.error().Text());
        else if (next == loaded.size() || loaded[next].first != stored->system())
            difference = place + " is not loaded";
        else if (!IsEqual(stored->result(), *loaded[next++].second))
            difference = place + " is another one";
    }
    if (isCompared && difference.empty() && next != loaded.size())
        difference = std::to_string(loaded.size() - next) + " results are not listed";
    return difference;
}

} // namespace ZelmResult::test
