// Jobs of a given size, for counting the instructions that they take: scripts/check-steps compares the count for n with
// that for 2n. Each job has parts where each one could cost a step for every other.
//   steps            lists the jobs, each with the size to try it at
//   steps JOB N      does that one; nothing for the job "nothing"

#include "bench/scratch_document.h"
#include "zelmresult/storage/chunk_codes.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <unistd.h>

namespace {

using namespace ZelmResult;
using namespace steps;

constexpr std::int32_t kValues = 4; // of a result

// Saved and loaded again.
void StoreAndLoad(Document& document)
{
    const File file;
    document.SaveTo(file);
    Document().LoadFrom(file);
}

wstring Name(const char16_t* what, int i) { return what + ToDecimal(i); }

// ---- Results ----

CResultHeader* NewHeader(std::uint32_t process, std::uint32_t dimension, const wstring& response)
{
    auto* header = new CResultHeader;
    header->SetProcessType(process);
    header->SetWaterfallDimension(dimension);
    header->setResponseName(response);
    return header;
}

CGrandeur* AddQuantity(Document& document, const wstring& name)
{
    auto* quantity = new CGrandeurFichier(name);
    quantity->AjouteUniteDynamique(new CUnite);
    Require(quantity->SetUniteCourante(quantity->GetLstUnit().front()), "a unit");
    document.AjouteGrandeur(quantity, OwnershipOwned);
    return quantity;
}

void AddSpectra(Document& document, int n)
{
    CGrandeur* quantity = AddQuantity(document, u"Acceleration");
    for (int i = 0; i < n; ++i) {
        auto* spectrum = new CRegVector(2, kValues, 0, SignalType::Real, 0, true);
        spectrum->SetMagnitude(quantity);
        document.AjouteResultat(NewHeader(2, 0, Name(u"Bearing ", i)), spectrum, 0, false);
    }
}

// A vector along a waterfall, whose reference is in the list.
void AddSeries(Document& document, CListVectorRef* list, const wstring& name)
{
    auto* series = dynamic_cast<CRefWaterfall*>(
        ResultFactory::create(otype::ElementaryResultProcess::fromInteger(42), 1, name).release());
    series->SetReferenceList(list);
    series->SetSize(kValues);
    for (int block = 0; block < kValues; ++block) (void)series->AddRefValue(1.0F, block, false);
    series->SetFilled(kValues);
    list->AddVectorRef(series->GetMyVecteurReference());
    document.AjouteResultat(NewHeader(42, 1, name), series, 0, true);
}

CWaterfall* NewWaterfall(CListVectorRef* list, int lastBlock)
{
    auto* waterfall = new CWaterfall(2, 2, kValues, 2, list, SignalType::Real, true);
    (void)waterfall->AllocateTabBlockNumber(2);
    for (int block : {0, 1}) waterfall->SetBlocNumber(waterfall->AddBlock(block, -1), block * lastBlock);
    waterfall->SetFilled(2);
    return waterfall;
}

void AddOfListsOfTheirOwn(Document& document, int n)
{
    for (int i = 0; i < n; ++i) AddSeries(document, new CListVectorRef(false), Name(u"Speed ", i));
}

void OfListsOfTheirOwn(int n)
{
    Document document;
    AddOfListsOfTheirOwn(document, n);
}

void LoadOfListsOfTheirOwn(int n)
{
    Document document;
    AddOfListsOfTheirOwn(document, n);
    StoreAndLoad(document);
}

void AddOfOneList(Document& document, int n)
{
    auto* list = new CListVectorRef(false);
    AddSeries(document, list, u"Speed");
    for (int i = 0; i < n; ++i) {
        CWaterfall* waterfall = NewWaterfall(list, 1);
        waterfall->SetReference(u"Speed", nullptr, nullptr);
        document.AjouteResultat(NewHeader(2, 2, Name(u"Bearing ", i)), waterfall, 0, true);
    }
}

void OfOneList(int n)
{
    Document document;
    AddOfOneList(document, n);
}

void LoadOfOneList(int n)
{
    Document document;
    AddOfOneList(document, n);
    StoreAndLoad(document);
}

// Stored in the former layout, which has the references inside the result.
class FormerWaterfall : public CWaterfall {
public:
    FormerWaterfall() : CWaterfall(2, 2, kValues, 1, nullptr, SignalType::Real, true) {}
    bool Write(CMmioFile* file) override
    {
        constexpr std::uint16_t axisVersion = 2;
        CVectorRef reference(2, 0, u"Speed", SignalType::Real);
        bool written = file->mmioWrite_ushort(1) && CResult::Write(file) && file->mmioWrite_ushort(axisVersion) &&
                       file->mmioWrite_int(0) && file->mmioWrite_int(1) && reference.Write(file);
        for (int limit = 0; limit < 6; ++limit) written = written && file->mmioWrite_float(0);
        return written && file->WriteGrandeur(nullptr) && file->WriteGrandeur(nullptr);
    }
};

void LoadFormer(int n)
{
    Document document;
    for (int i = 0; i < n; ++i)
        document.AjouteResultat(NewHeader(2, 2, Name(u"Bearing ", i)), new FormerWaterfall, 0, false);
    const File file;
    document.SaveTo(file);
    Document loaded;
    loaded.LoadFrom(file);
    const std::size_t lists = n > 0 ? loaded.getSystem(0)->GetArPtrListeReferences().size() : 0;
    Require(lists == static_cast<std::size_t>(n), "a load of lists");
}

// The distance between blocks is a thousand times the number of waterfalls.
void CopySparse(int n)
{
    (void)CWaterfallBufferFactory::SetStrategy(EStrategy::StrategyDisk);
    for (int i = 0; i < n; ++i) {
        const std::unique_ptr<CWaterfall> waterfall(NewWaterfall(nullptr, 1000 * n));
        Require(waterfall->UpdateDataTab(), "the sparse form");
        const std::unique_ptr<CResult> copy(waterfall->GetCopy());
        const std::unique_ptr<CResult> whole(waterfall->GetWholeCopy());
    }
}

void AddResults(int n)
{
    Document document;
    AddSpectra(document, n);
}

void SaveResults(int n)
{
    Document document;
    AddSpectra(document, n);
    document.SaveTo(File());
}

void CheckResults(int n)
{
    Document document;
    AddSpectra(document, n);
    std::vector<wstring> reasons;
    Require(document.CheckSave(reasons), "a check");
}

void LoadResults(int n)
{
    Document document;
    AddSpectra(document, n);
    StoreAndLoad(document);
}

void ListResults(int n)
{
    const File file;
    Document document;
    AddSpectra(document, n);
    document.SaveTo(file);
    std::vector<CResultHeader*> headers;
    Require(n == 0 || document.GetResultHeaderListe(file.wide().c_str(), headers), "a listing");
    for (const CResultHeader* header : headers) delete header;
}

void RemoveAllResults(int n)
{
    Document document;
    AddSpectra(document, n);
    AddOfListsOfTheirOwn(document, n);
    AddOfOneList(document, n);
    Require(document.RemoveAllResultats(), "a removal");
}

void AddQuantities(int n)
{
    Document document;
    for (int i = 0; i < n; ++i) (void)AddQuantity(document, Name(u"q", i));
}

void LoadQuantities(int n)
{
    Document document;
    for (int i = 0; i < n; ++i) (void)AddQuantity(document, Name(u"q", i));
    StoreAndLoad(document);
}

// ---- Comments and transducers ----

void FillComments(Document& document, int n)
{
    for (int i = 0; i < n; ++i) {
        auto* comment = new CComment;
        comment->setComment(Name(u"c", i));
        (void)document.AddComment(comment);
    }
}

void AddComments(int n)
{
    Document document;
    FillComments(document, n);
}

void LoadComments(int n)
{
    const File file;
    Document document;
    FillComments(document, n);
    document.SaveTo(file);
    // Under the code for which a load searches.
    std::fstream stream(file.path(), std::ios::in | std::ios::out | std::ios::binary);
    std::string bytes(std::istreambuf_iterator<char>(stream), {});
    for (std::size_t at = bytes.find("CMTS"); at != std::string::npos; at = bytes.find("CMTS", at))
        bytes.replace(at, 4, "cmts");
    stream.seekp(0);
    stream << bytes << std::flush;
    Document loaded;
    loaded.LoadFrom(file);
    Require(loaded.comments().size() == static_cast<std::size_t>(n), "a load of comments");
}

void FillTransducers(Document& document, int n)
{
    for (int i = 0; i < n; ++i) Require(document.SetITrack(new CITrack, 0), "a transducer");
}

void AddTransducers(int n)
{
    Document document;
    FillTransducers(document, n);
}

void LoadTransducers(int n)
{
    Document document;
    FillTransducers(document, n);
    StoreAndLoad(document);
}

// ---- Settings ----

idn::Idn Place(int module, int submodule, int setting)
{
    const auto number = [](int value) { return static_cast<std::uint32_t>(value); };
    return {idn::Analyzer(0), idn::Module(20, number(module)), idn::Submodule(7, number(submodule)),
            idn::Setting(number(setting))};
}

CReglageData* NewSetting(const idn::Idn& place)
{
    auto setting = std::make_unique<CBooleenData>();
    setting->info().SetIDN(place);
    return setting.release();
}

void AddSettings(int n)
{
    Document document;
    for (int i = 1; i <= n; ++i) Require(document.AddReglage(NewSetting(Place(1, 1, i)), 0), "a setting");
}

void AddSubmodules(int n)
{
    Document document;
    for (int i = 1; i <= n; ++i) Require(document.AddReglage(NewSetting(Place(1, i, 1)), 0), "a setting");
}

void AddModules(int n)
{
    Document document;
    for (int i = 1; i <= n; ++i) Require(document.AddReglage(NewSetting(Place(i, 1, 1)), 0), "a setting");
}

// A third in one submodule, a third in submodules and a third in modules of their own.
void LoadSettings(int n)
{
    Document document;
    for (int i = 1; i <= n / 3; ++i)
        for (const idn::Idn& place : {Place(1, 1, i), Place(2, i, 1), Place(i + 2, 1, 1)})
            Require(document.AddReglage(NewSetting(place), 0), "a setting");
    StoreAndLoad(document);
}

void NestTables(int n)
{
    constexpr int depth = 16;
    Document document;
    std::unique_ptr<CTableauData> table;
    for (int level = 0; level < depth; ++level) {
        auto outer = std::make_unique<CTableauData>();
        outer->info().SetIDN(Place(1, 1, 1));
        for (int i = 0; i < n / depth; ++i) outer->AddReglage(NewSetting(Place(1, 1, i + 2)));
        if (table != nullptr) outer->AddReglage(table.release());
        table = std::move(outer);
    }
    Require(document.AddReglage(table.release(), 0), "a table");
    StoreAndLoad(document);
}

void AddFRFInfos(int n)
{
    CDeepResultGeneratorData module;
    for (int i = 0; i < n; ++i) module.AddFRFInfo(new CWaterfallFRFInfo);
}

// ---- Recordings ----

void AddFileBlocks(int n)
{
    CRecordInfo disk;
    for (int i = 0; i < n; ++i) (void)disk.AddFileBlockInfo(new CFileBlockInfo);
}

void AddDisks(int n)
{
    CRecord record(true);
    for (int i = 0; i < n; ++i) (void)record.AddRecordInfo(new CRecordInfo);
}

void AddLinks(int n)
{
    CZMTrackDesc track;
    for (int i = 0; i < n; ++i) (void)track.addLIDN(new std::vector<idn::Idn>);
}

void AddTracks(int n)
{
    CRecord record(true);
    for (int i = 0; i < n; ++i) (void)record.AddTrackDesc(new CZMTrackDesc, -1);
}

// Sizes at which a step per pair would show, within the limits of the format.
struct Job {
    const char* name;
    void (*work)(int);
    int size;
};
constexpr Job kJobs[] = {
    {"add-comments", AddComments, 10000},
    {"load-comments", LoadComments, 6000},
    {"add-transducers", AddTransducers, 10000},
    {"load-transducers", LoadTransducers, 4000},
    {"add-quantities", AddQuantities, 6000},
    {"load-quantities", LoadQuantities, 2500},
    {"add-results", AddResults, 6000},
    {"save-results", SaveResults, 2500},
    {"check-results", CheckResults, 2500},
    {"load-results", LoadResults, 2500},
    {"list-results", ListResults, 2500},
    {"remove-all-results", RemoveAllResults, 2500},
    {"add-results-of-lists", OfListsOfTheirOwn, 3000},
    {"load-results-of-lists", LoadOfListsOfTheirOwn, 500},
    {"add-results-of-one-list", OfOneList, 3000},
    {"load-results-of-one-list", LoadOfOneList, 1500},
    {"load-former-results", LoadFormer, 2500},
    {"copy-sparse-waterfalls", CopySparse, 500},
    {"add-settings", AddSettings, 10000},
    {"add-submodules", AddSubmodules, 10000},
    {"add-modules", AddModules, 10000},
    {"load-settings", LoadSettings, 4500},
    {"nest-tables", NestTables, 6400},
    {"add-frf-infos", AddFRFInfos, 10000},
    {"add-file-blocks", AddFileBlocks, 10000},
    {"add-disks", AddDisks, 10000},
    {"add-links", AddLinks, 10000},
    {"add-tracks", AddTracks, 10000},
};

} // namespace

int main(int argc, char** argv)
{
    if (argc == 1)
        for (const Job& job : kJobs) std::cout << job.name << ' ' << job.size << '\n';
    if (argc != 3) return argc == 1 ? 0 : 2;
    if (argv[1] == std::string("nothing")) return 0;
    for (const Job& job : kJobs) {
        if (argv[1] != std::string(job.name)) continue;
        job.work(std::atoi(argv[2]));
        return 0;
    }
    std::cerr << "steps: no job " << argv[1] << '\n';
    return 2;
}
