#include "fuzz/documents.h"

#include "tests/builders/samples.h"
#include "tests/builders/waterfall_samples.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/stored_versions.h"
#include "zelmresult/zelmresult.h"

#include <cstring>

namespace ZelmResult::fuzz {

namespace {

constexpr std::int32_t kPoints = 3;
constexpr std::int32_t kBlocks = 2;

// The golden document of branches, with what it leaves out: disks, links and corrections of tracks, transfer functions
// of a module, and a table in a table.
Data Branches()
{
    const wstring path = u"branches";
    Disk()[path] = test::DataFile("whole_branches.zmxf");
    CZMXFFile document(true, false);
    Require(document.Load(path.c_str(), ZMXFFileLoadScope::all()), "a golden document loads");
    document.NeedToRemoveEverything(true);
    auto disk = std::make_unique<CRecordInfo>();
    (void)disk->AddFileBlockInfo(new CFileBlockInfo);
    (void)document.getRecord(0)->AddRecordInfo(disk.release());
    CZMTrackDesc* track = document.getRecord(0)->getTrackDesc(0);
    (void)track->addLIDN(new std::vector<idn::Idn>(2));
    track->SetHasChunk(TrackChunk::Link, true);
    track->YMagnitude = document.GetGrandeur(u"pressure");
    track->SizeCorr = 1;
    const auto add = [&](std::uint32_t module, std::uint32_t type) {
        const idn::Idn idn(idn::Analyzer(0), idn::Module(module, 1), idn::Submodule(1, 1), idn::Setting(1));
        Require(document.AddReglage(CSousModuleData::CreateReglage(new CReglageInfoData(idn, type)).release(), 0),
                "a sample has a place for a setting");
        return document.GetReglage(idn);
    };
    auto* table = dynamic_cast<CTableauData*>(add(1, CTableauData::kType));
    table->AddReglage(new CTableauData);
    table->AddReglage(new CVirtualTachoData);
    const idn::Idn place = add(CModuleData::kKindWithFRF, CBooleenData::kType)->GetIdn();
    auto* module = dynamic_cast<CDeepResultGeneratorData*>(document.getSystem(0)->getPConfig()->GetModule(place));
    module->AddFRFInfo(new CWaterfallFRFInfo);
    return Saved(document);
}

std::uint32_t WordAt(const Data& bytes, std::size_t place)
{
    std::uint32_t word = 0;
    std::memcpy(&word, bytes.data() + place, sizeof word);
    return word;
}

void PutWord(Data& bytes, std::uint32_t word)
{
    const auto* first = reinterpret_cast<const char*>(&word);
    bytes.insert(bytes.end(), first, first + sizeof word);
}

// The bytes of the text, and of the flag after it, that come before chunks without a chunk of their own; 0 for a chunk.
std::size_t BareBytes(const Data& bytes, std::size_t place)
{
    constexpr std::uint32_t wideText = 0xFFFEFF;
    const std::uint32_t head = WordAt(bytes, place);
    if ((head & 0xFFFFFFU) != wideText) return 0;
    const std::size_t text = 4 + 2 * (head >> 24U);
    return WordAt(bytes, place + text) <= 1 ? text + 4 : text;
}

std::vector<Chunk> ChunksBetween(const Data& bytes, std::size_t place, std::size_t end)
{
    std::vector<Chunk> chunks;
    while (place + 8 <= end) {
        Chunk chunk;
        const std::size_t bare = BareBytes(bytes, place);
        const std::size_t start = bare != 0 ? place : place + 8;
        const std::size_t after = start + (bare != 0 ? bare : WordAt(bytes, place + 4));
        Require(after <= end, "the chunks of a valid document fit it");
        chunk.isBare = bare != 0;
        if (!chunk.isBare) chunk.code = WordAt(bytes, place);
        if (chunk.code == kCodeRiff || chunk.code == kCodeList) {
            chunk.type = WordAt(bytes, start);
            chunk.children = ChunksBetween(bytes, start + 4, after);
        } else {
            chunk.data.assign(bytes.data() + start, bytes.data() + after);
        }
        place = after + (chunk.isBare ? 0 : after % 2);
        chunks.push_back(std::move(chunk));
    }
    return chunks;
}

void FillWaterfall(CWaterfall& waterfall, int kind)
{
    if (dynamic_cast<CWtfOctave*>(&waterfall) != nullptr)
        waterfall.SetComplexType(kind == 131 ? SignalType::OctaveMinMax : SignalType::Octave, true);
    waterfall.SetSize(kPoints);
    waterfall.SetZSize(kBlocks, true);
    waterfall.ReAlloc();
    (void)waterfall.AllocateTabBlockNumber(kBlocks);
    for (std::int32_t block = 0; block < kBlocks; ++block)
        waterfall.SetBlocNumber(waterfall.AddBlock(block, -1), block);
    waterfall.SetFilled(kBlocks);
}

} // namespace

std::vector<Chunk> ChunksOf(const Data& bytes)
{
    std::vector<Chunk> chunks = ChunksBetween(bytes, 0, bytes.size());
    Require(BytesOf(chunks) == bytes, "the chunks of a valid document are all of it");
    return chunks;
}

Data BytesOf(const std::vector<Chunk>& chunks)
{
    Data bytes;
    for (const Chunk& chunk : chunks) {
        const Data content = chunk.isList() ? BytesOf(chunk.children) : chunk.data;
        const std::size_t size = content.size() + (chunk.isList() ? 4 : 0);
        if (!chunk.isBare) PutWord(bytes, chunk.code);
        if (!chunk.isBare) PutWord(bytes, chunk.falseSize != 0 ? chunk.falseSize : static_cast<std::uint32_t>(size));
        if (chunk.isList()) PutWord(bytes, chunk.type);
        bytes.insert(bytes.end(), content.begin(), content.end());
        if (size % 2 != 0 && !chunk.isBare) bytes.push_back('\0');
    }
    return bytes;
}

void AddResult(CZMXFFile& document, int kind, int dimension)
{
    auto result = ResultFactory::create(otype::ElementaryResultProcess::fromInteger(kind), dimension, u"Speed");
    if (result == nullptr) return;
    if (auto* waterfall = dynamic_cast<CWaterfall*>(result.get()); waterfall != nullptr)
        FillWaterfall(*waterfall, kind);
    else if (dynamic_cast<CDoubleResult*>(result.get()) == nullptr)
        result->SetSize(kPoints);
    if (auto* series = dynamic_cast<CRefWaterfall*>(result.get()); series != nullptr)
        for (std::int32_t block = 0; block < kBlocks; ++block)
            (void)series->AddRefValue(static_cast<float>(block), block, false);
    auto* header = test::NewHeader(static_cast<std::uint32_t>(kind));
    header->SetWaterfallDimension(static_cast<std::uint32_t>(dimension));
    header->setResponseName(u"Speed");
    document.AjouteResultat(header, result.release(), 0, true);
    document.NeedToRemoveEverything(true);
}

Data Saved(CZMXFFile& document, const Versions& older)
{
    const wstring path = u"saved";
    (void)Disk(); // from now on documents are saved there
    Require(document.Save(path.c_str()), "a sample is saved");
    if (older.empty()) return Disk()[path];
    CMmioFile file(false);
    for (const auto& [record, version] : older) StoredVersions::Set(file, record, version);
    OMMCKINFO form;
    OMMCKINFO units;
    bool good = file.Open(path, nullptr, OMMIO_WRITE | OMMIO_CREATE) && file.CreateChunkRIFF(form) &&
                FileHeaderMmioReaderWriter().Write(file, document.fileHeader()) && file.CreateChunkUnite(units);
    for (const CGrandeur* quantity : document.GetListeGrandeur())
        good = good && CGrandeurMmioReaderWriter().Write(file, *quantity);
    good = good && file.ExitChunk(units);
    std::int32_t number = 0;
    for (std::int32_t i = 0; i < document.getNbrSys(); ++i)
        good = good && document.getSystem(i)->Save(&file, false, document.fileHeader().GetType(), number);
    good = good && CHardInfoMmioReaderWriter().Write(file, document.readHardInfo()) && file.ExitChunk(form);
    Require(good, "a sample is saved at older versions");
    (void)file.Close();
    return Disk()[path];
}

const std::vector<Data>& WholeDocuments()
{
    static const std::vector<Data> documents = [] {
        CZMXFFile results(true, false);
        for (const int kind : {2, 4, 9, 16, 18, 22, 25, 29, 40, 44, 46, 119, 131, 187, 270})
            AddResult(results, kind, 0);
        for (const int kind : {2, 18, 131}) AddResult(results, kind, 2);
        AddResult(results, 42, 1);
        AddResult(results, 42, 5);
        (void)test::AddTiedWaterfall(results);
        return std::vector<Data>{Branches(), test::DataFile("whole_references.zmxf"), Saved(results)};
    }();
    return documents;
}

} // namespace ZelmResult::fuzz
