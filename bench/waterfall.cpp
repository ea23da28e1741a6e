// What the slices of a long run-up cost, in memory and on disk, compared with the limits of the machine in the same
// run: plain writes and reads of the slices, and copies into fresh memory. The ratios, and the peak of memory with
// slices on disk, are printed last.

#include "bench/ratios.h"
#include "zelmresult/zelmresult.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <random>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace ZelmResult;

constexpr std::int32_t kSlices = 20000;
constexpr std::int32_t kPoints = 401;
constexpr std::size_t kSliceBytes = kPoints * sizeof(float);
constexpr std::size_t kBytes = kSlices * kSliceBytes;
constexpr int kLookUps = 20000;

std::vector<float> Spectrum()
{
    std::vector<float> values(kPoints);
    for (std::int32_t i = 0; i < kPoints; ++i) values[static_cast<std::size_t>(i)] = static_cast<float>(i);
    return values;
}

std::vector<std::int32_t> RandomSlices()
{
    std::mt19937 random(1);
    std::vector<std::int32_t> slices(kLookUps);
    for (std::int32_t& slice : slices) slice = static_cast<std::int32_t>(random() % kSlices);
    return slices;
}

// A file without a name, which is deleted with the object.
class PlainFile {
public:
    PlainFile()
    {
        std::string name = (std::filesystem::temp_directory_path() / "zelmresult_bench_XXXXXX").string();
        m_descriptor = ::mkstemp(name.data());
        ::unlink(name.c_str());
    }
    PlainFile(const PlainFile&) = delete;
    PlainFile& operator=(const PlainFile&) = delete;
    ~PlainFile() { ::close(m_descriptor); }

    void Write(std::int32_t slice, const float* values) const
    {
        if (::pwrite(m_descriptor, values, kSliceBytes, Offset(slice)) < 0) std::abort();
    }
    void Read(std::int32_t slice, float* values) const
    {
        if (::pread(m_descriptor, values, kSliceBytes, Offset(slice)) < 0) std::abort();
    }

private:
    static off_t Offset(std::int32_t slice) { return slice * static_cast<off_t>(kSliceBytes); }

    int m_descriptor;
};

std::unique_ptr<CWaterfall> Fill(EStrategy strategy)
{
    static const std::vector<float> spectrum = Spectrum();
    const EStrategy former = CWaterfallBufferFactory::SetStrategy(strategy);
    auto waterfall = std::make_unique<CWaterfall>(2, 2, kPoints, kSlices, nullptr, SignalType::Real, true);
    (void)CWaterfallBufferFactory::SetStrategy(former);
    (void)waterfall->AllocateTabBlockNumber(kSlices);
    for (std::int32_t block = 0; block < kSlices; ++block) {
        const std::int32_t place = waterfall->AddBlock(block, -1);
        waterfall->SetBlocNumber(place, block);
        waterfall->GetTabData(0, place).CopySliceFrom(spectrum.data(), kPoints);
    }
    waterfall->SetFilled(kSlices);
    return waterfall;
}

void FillInMemory(benchmark::State& state)
{
    for (auto _ : state) benchmark::DoNotOptimize(Fill(EStrategy::StrategyAuto));
}

void FillOnDisk(benchmark::State& state)
{
    for (auto _ : state) benchmark::DoNotOptimize(Fill(EStrategy::StrategyDisk));
}

void PlainFresh(benchmark::State& state)
{
    const std::vector<float> spectrum = Spectrum();
    for (auto _ : state) {
        std::vector<std::unique_ptr<float[]>> slices(kSlices);
        for (auto& slice : slices) {
            slice.reset(new float[kPoints]);
            std::memcpy(slice.get(), spectrum.data(), kSliceBytes);
        }
        benchmark::DoNotOptimize(slices);
    }
}

void PlainPwrite(benchmark::State& state)
{
    const std::vector<float> spectrum = Spectrum();
    for (auto _ : state) {
        const PlainFile file;
        for (std::int32_t slice = 0; slice < kSlices; ++slice) file.Write(slice, spectrum.data());
    }
}

void LookUp(benchmark::State& state, EStrategy strategy)
{
    const auto waterfall = Fill(strategy);
    const std::vector<std::int32_t> slices = RandomSlices();
    std::vector<float> values(kPoints);
    for (auto _ : state)
        for (const std::int32_t slice : slices) {
            waterfall->GetValues(0, slice, values.data(), kPoints);
            benchmark::DoNotOptimize(values.data());
        }
}
void SliceInMemory(benchmark::State& state) { LookUp(state, EStrategy::StrategyAuto); }
void SliceOnDisk(benchmark::State& state) { LookUp(state, EStrategy::StrategyDisk); }

void PlainMemcpy(benchmark::State& state)
{
    std::vector<std::unique_ptr<float[]>> slices(kSlices);
    for (auto& slice : slices) slice.reset(new float[kPoints]());
    const std::vector<std::int32_t> order = RandomSlices();
    std::vector<float> values(kPoints);
    for (auto _ : state)
        for (const std::int32_t slice : order) {
            std::memcpy(values.data(), slices[static_cast<std::size_t>(slice)].get(), kSliceBytes);
            benchmark::DoNotOptimize(values.data());
        }
}

void PlainPread(benchmark::State& state)
{
    const PlainFile file;
    const std::vector<float> spectrum = Spectrum();
    for (std::int32_t slice = 0; slice < kSlices; ++slice) file.Write(slice, spectrum.data());
    const std::vector<std::int32_t> order = RandomSlices();
    std::vector<float> values(kPoints);
    for (auto _ : state)
        for (const std::int32_t slice : order) {
            file.Read(slice, values.data());
            benchmark::DoNotOptimize(values.data());
        }
}

std::filesystem::path DocumentPath() { return std::filesystem::temp_directory_path() / "zelmresult_bench_waterfall"; }

CZMXFFile& Document()
{
    static const auto document = [] {
        auto made = std::make_unique<CZMXFFile>(true, false);
        auto header = std::make_unique<CResultHeader>();
        header->SetProcessType(2);
        header->SetWaterfallDimension(2);
        made->AjouteResultat(header.release(), Fill(EStrategy::StrategyAuto).release(), 0, true);
        made->NeedToRemoveEverything(true);
        return made;
    }();
    return *document;
}

void Save(benchmark::State& state)
{
    const auto path = FromUtf8(DocumentPath().string());
    for (auto _ : state) {
        std::filesystem::remove(DocumentPath());
        if (!Document().Save(path.c_str())) state.SkipWithError("not saved");
    }
}

void Load(benchmark::State& state)
{
    const auto path = FromUtf8(DocumentPath().string());
    if (!Document().Save(path.c_str())) return state.SkipWithError("not saved");
    for (auto _ : state) {
        CZMXFFile loaded(true, false);
        if (!loaded.Load(path.c_str(), ZMXFFileLoadScope::all())) state.SkipWithError("not loaded");
        loaded.NeedToRemoveEverything(true);
    }
}

void PlainWrite(benchmark::State& state)
{
    const std::vector<char> bytes(kBytes, 'x');
    for (auto _ : state) {
        const PlainFile file;
        for (std::int32_t slice = 0; slice < kSlices; slice += 500)
            for (std::int32_t i = slice; i < slice + 500; ++i)
                file.Write(i, reinterpret_cast<const float*>(bytes.data() + static_cast<std::size_t>(i) * kSliceBytes));
    }
}

void PlainRead(benchmark::State& state)
{
    const PlainFile file;
    const std::vector<float> spectrum = Spectrum();
    for (std::int32_t slice = 0; slice < kSlices; ++slice) file.Write(slice, spectrum.data());
    for (auto _ : state) {
        std::vector<std::unique_ptr<float[]>> slices(kSlices);
        for (std::int32_t slice = 0; slice < kSlices; ++slice) {
            slices[static_cast<std::size_t>(slice)].reset(new float[kPoints]);
            file.Read(slice, slices[static_cast<std::size_t>(slice)].get());
        }
        benchmark::DoNotOptimize(slices);
    }
}

long PeakKilobytes()
{
    rusage usage{};
    (void)::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

} // namespace

BENCHMARK(FillInMemory)->Unit(benchmark::kMillisecond);
BENCHMARK(PlainFresh)->Unit(benchmark::kMillisecond);
BENCHMARK(FillOnDisk)->Unit(benchmark::kMillisecond);
BENCHMARK(PlainPwrite)->Unit(benchmark::kMillisecond);
BENCHMARK(SliceInMemory)->Unit(benchmark::kMillisecond);
BENCHMARK(PlainMemcpy)->Unit(benchmark::kMillisecond);
BENCHMARK(SliceOnDisk)->Unit(benchmark::kMillisecond);
BENCHMARK(PlainPread)->Unit(benchmark::kMillisecond);
BENCHMARK(Save)->Unit(benchmark::kMillisecond);
BENCHMARK(PlainWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(Load)->Unit(benchmark::kMillisecond);
BENCHMARK(PlainRead)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    const long before = PeakKilobytes();
    { // first, while nothing else has used memory
        const auto onDisk = Fill(EStrategy::StrategyDisk);
        std::cout << kSlices << " slices of " << kSliceBytes << " bytes on disk: the peak of memory rose by "
                  << PeakKilobytes() - before << " kB, the slices being " << kBytes / 1024 << " kB\n";
    }
    benchmark::Initialize(&argc, argv);
    ratios::TimesReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.PrintRatio("FillInMemory", "PlainFresh", 1.5);
    reporter.PrintRatio("FillOnDisk", "PlainPwrite", 1.4);
    reporter.PrintRatio("SliceInMemory", "PlainMemcpy", 1.5);
    reporter.PrintRatio("SliceOnDisk", "PlainPread", 3.0);
    reporter.PrintRatio("Save", "PlainWrite", 2.6);
    reporter.PrintRatio("Load", "PlainRead", 1.6);
    std::filesystem::remove(DocumentPath());
    return 0;
}
