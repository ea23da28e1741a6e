// What a tree of 5,000 settings costs to load and to save, compared with making its objects and plainly writing its
// bytes.

#include "bench/ratios.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/file_handle.h"
#include "zelmresult/storage/nested_chunk.h"
#include "zelmresult/zelmresult.h"

#include <filesystem>
#include <memory>
#include <vector>

namespace {

using namespace ZelmResult;

constexpr std::uint32_t kModules = 10;
constexpr std::uint32_t kSubmodules = 10; // of each module
constexpr std::uint32_t kSettings = 50;   // of each submodule

std::u16string Path(const char* what)
{
    return FromUtf8((std::filesystem::temp_directory_path() / (std::string("zelmresult_bench_") + what)).string());
}

std::unique_ptr<CReglageData> MakeSetting(const idn::Idn& idn, std::uint32_t number)
{
    std::unique_ptr<CReglageData> setting;
    if (number % 3 == 0) {
        auto text = std::make_unique<CChaineData>();
        text->setValue(u"Bearing, drive end");
        setting = std::move(text);
    } else if (number % 3 == 1) {
        setting = std::make_unique<CScalaireData>();
    } else {
        setting = std::make_unique<CBooleenData>();
    }
    setting->info().SetIDN(idn);
    setting->setTitleString(u"Upper limit");
    return setting;
}

std::unique_ptr<CConfigData> MakeTree()
{
    auto tree = std::make_unique<CConfigData>();
    for (std::uint32_t module = 20; module < 20 + kModules; ++module)
        for (std::uint32_t submodule = 1; submodule <= kSubmodules; ++submodule)
            for (std::uint32_t setting = 1; setting <= kSettings; ++setting)
                tree->AddReglage(MakeSetting({idn::Analyzer(0), idn::Module(module, 1), idn::Submodule(submodule, 1),
                                              idn::Setting(setting)},
                                             setting)
                                     .release());
    return tree;
}

bool SaveTree(const CConfigData& tree, const std::u16string& path)
{
    CMmioFile file(false);
    OMMIOINFO info{1048576, 0};
    return file.Open(path, &info, OMMIO_CREATE | OMMIO_WRITE | OMMIO_ALLOCBUF) && tree.Save(&file, false) &&
           file.Close();
}

// The least that a load needs: an object per setting with its texts, in vectors.
void MakeObjects(benchmark::State& state)
{
    for (auto _ : state) {
        std::vector<std::unique_ptr<CReglageData>> settings;
        for (std::uint32_t i = 0; i < kModules * kSubmodules * kSettings; ++i)
            settings.push_back(MakeSetting({}, i % kSettings + 1));
        benchmark::DoNotOptimize(settings.data());
        state.PauseTiming();
        settings.clear();
        state.ResumeTiming();
    }
}

void LoadTree(benchmark::State& state)
{
    (void)SaveTree(*MakeTree(), Path("tree"));
    for (auto _ : state) {
        auto tree = std::make_unique<CConfigData>();
        CMmioFile file(false);
        OMMCKINFO list;
        if (!file.Open(Path("tree"), nullptr, OMMIO_READ) || !file.EnterChunkListSansParent(list, FourCC("CONF")))
            state.SkipWithError("open failed");
        const NestedChunk current(file, list);
        if (!tree->Load(&file)) state.SkipWithError("load failed");
        state.PauseTiming();
        tree.reset();
        state.ResumeTiming();
    }
}

void Save(benchmark::State& state)
{
    const auto tree = MakeTree();
    for (auto _ : state)
        if (!SaveTree(*tree, Path("tree"))) state.SkipWithError("save failed");
}

void PlainWrite(benchmark::State& state)
{
    (void)SaveTree(*MakeTree(), Path("tree"));
    const std::vector<char> bytes(std::filesystem::file_size(std::filesystem::path(Path("tree"))), 'x');
    const auto handle = MakePlatformFileHandle();
    for (auto _ : state) {
        (void)handle->Open(Path("plain"), FileHandle::Access::Create);
        (void)handle->WriteAt(0, bytes.data(), bytes.size());
        (void)handle->Close();
    }
}

BENCHMARK(MakeObjects)->Unit(benchmark::kMicrosecond);
BENCHMARK(LoadTree)->Unit(benchmark::kMicrosecond);
BENCHMARK(Save)->Unit(benchmark::kMicrosecond);
BENCHMARK(PlainWrite)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    ratios::TimesReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.PrintRatio("LoadTree", "MakeObjects", 4.0);
    reporter.PrintRatio("Save", "PlainWrite", 17.0);
    for (const char* what : {"tree", "plain"}) std::filesystem::remove(std::filesystem::path(Path(what)));
    return 0;
}
