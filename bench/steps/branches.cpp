#include "bench/steps/steps.h"

#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

namespace steps {

namespace {

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
void FillSettings(Document& document, int n)
{
    for (int i = 1; i <= n / 3; ++i)
        for (const idn::Idn& place : {Place(1, 1, i), Place(2, i, 1), Place(i + 2, 1, 1)})
            Require(document.AddReglage(NewSetting(place), 0), "a setting");
}

void AddEverywhere(int n)
{
    Document document;
    FillSettings(document, n);
}

void LoadSettings(int n)
{
    Document document;
    FillSettings(document, n);
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

constexpr Job kJobs[] = {
    {"add-comments", AddComments, 10000, "nothing"},
    {"load-comments", LoadComments, 6000, "add-comments"},
    {"add-transducers", AddTransducers, 10000, "nothing"},
    {"load-transducers", LoadTransducers, 4000, "add-transducers"},
    {"add-settings", AddSettings, 10000, "nothing"},
    {"add-submodules", AddSubmodules, 10000, "nothing"},
    {"add-modules", AddModules, 10000, "nothing"},
    {"add-settings-everywhere", AddEverywhere, 9000, "nothing"},
    {"load-settings", LoadSettings, 4500, "add-settings-everywhere"},
    {"nest-tables", NestTables, 6400, "nothing"},
    {"add-frf-infos", AddFRFInfos, 10000, "nothing"},
    {"add-file-blocks", AddFileBlocks, 10000, "nothing"},
    {"add-disks", AddDisks, 10000, "nothing"},
    {"add-links", AddLinks, 10000, "nothing"},
    {"add-tracks", AddTracks, 10000, "nothing"},
};

} // namespace

std::span<const Job> BranchJobs() { return kJobs; }

} // namespace steps
