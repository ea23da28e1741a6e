// What saving, loading, listing and fetching cost, compared with the limits of the machine: plain writes of the same
// bytes, reads into fresh memory, and a bare walk over the chunk headers. All in one run; the ratios are printed last.

#include "bench/ratios.h"
#include "zelmresult/storage/buffered_file.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/sibling_index.h"
#include "zelmresult/zelmresult.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <sys/mman.h>
#include <vector>

namespace {

using namespace ZelmResult;

constexpr int kValues = 850; // 3.4 KB
constexpr std::size_t kBlock = 1048576;

std::filesystem::path Path(std::int64_t results, const char* what = "document")
{
    return std::filesystem::temp_directory_path() / (std::string("zelmresult_bench_") + what + std::to_string(results));
}

CResultHeader* MakeHeader(int number)
{
    auto* header = new CResultHeader;
    const idn::Idn channel = idn::Idn::generateSubmoduleIdn(idn::Analyzer(), idn::Module(3, 1), idn::Submodule(7, 1));
    header->SetProcessType(2);
    header->SetIdnResultGenerator(channel);
    header->SetIdnFrontEndSource(channel);
    header->SetIdnResponse(channel);
    header->SetIdnReference(channel);
    header->SetTrackDuRecorder(channel);
    header->SetInputEnregistre(channel);
    header->setComment(u"Run-up of the machine, second day");
    header->setResponseName(u"Bearing, drive end, horizontal");
    header->setReferenceName(u"Tacho");
    header->SetNumReponse(number);
    header->setFilename(u"/measurements/2026/november/run_17.zmxf");
    header->setDate(OTime(1790000000 + number));
    header->setCaption(u"Averaged autospectrum");
    header->setProcessCaption(u"Autospectrum");
    header->setAnalyzerCaption(u"Analyzer 1");
    header->setIdentificationName(u"Identification");
    header->setCoupeCaption(u"Cut");
    header->setChosenReference(u"Speed");
    return header;
}

std::unique_ptr<CZMXFFile> MakeDocument(std::int64_t results)
{
    auto document = std::make_unique<CZMXFFile>(true, false);
    auto* quantity = new CGrandeurFichier(u"Acceleration");
    quantity->AjouteUniteDynamique(new CUnite);
    (void)quantity->SetUniteCourante(quantity->GetLstUnit().front());
    document->AjouteGrandeur(quantity, OwnershipOwned);
    for (int i = 0; i < results; ++i) {
        auto* spectrum = new CRegVector(2, kValues, 0, SignalType::Real, 0, true);
        spectrum->SetMagnitude(quantity);
        for (int k = 0; k < kValues; ++k) spectrum->GetRealValue()[k] = static_cast<float>(i + k);
        document->AjouteResultat(MakeHeader(i), spectrum, 0, false);
    }
    document->NeedToRemoveEverything(true);
    return document;
}

std::u16string Wide(const std::filesystem::path& path) { return FromUtf8(path.string()); }

// Makes the file once for all benchmarks that read it.
std::u16string DocumentFile(std::int64_t results)
{
    if (!std::filesystem::exists(Path(results))) (void)MakeDocument(results)->Save(Wide(Path(results)).c_str());
    return Wide(Path(results));
}

void Save(benchmark::State& state)
{
    const auto document = MakeDocument(state.range(0));
    const std::u16string path = Wide(Path(state.range(0), "save"));
    for (auto _ : state)
        if (!document->Save(path.c_str())) state.SkipWithError("save failed");
    std::filesystem::remove(Path(state.range(0), "save"));
}

void PlainWrite(benchmark::State& state)
{
    (void)DocumentFile(state.range(0));
    const auto size = std::filesystem::file_size(Path(state.range(0)));
    const std::vector<char> bytes(size, 'x');
    const auto handle = MakePlatformFileHandle();
    for (auto _ : state) {
        (void)handle->Open(Wide(Path(state.range(0), "write")), FileHandle::Access::Create);
        for (std::size_t done = 0; done < size; done += kBlock)
            (void)handle->WriteAt(static_cast<std::int64_t>(done), bytes.data() + done, std::min(kBlock, size - done));
        (void)handle->Close();
    }
    std::filesystem::remove(Path(state.range(0), "write"));
}

void Load(benchmark::State& state)
{
    const std::u16string path = DocumentFile(state.range(0));
    for (auto _ : state) {
        auto document = std::make_unique<CZMXFFile>(true, false);
        if (!document->Load(path.c_str(), ZMXFFileLoadScope::all())) state.SkipWithError("load failed");
        state.PauseTiming(); // a host frees a document when it is done with it
        document->NeedToRemoveEverything(true);
        document.reset();
        state.ResumeTiming();
    }
}

void PlainRead(benchmark::State& state)
{
    const std::u16string path = DocumentFile(state.range(0));
    const auto size = std::filesystem::file_size(Path(state.range(0)));
    const auto handle = MakePlatformFileHandle();
    for (auto _ : state) {
        (void)handle->Open(path, FileHandle::Access::Read);
        // Straight from the system: an allocator would reuse memory that the last turn left in the cache.
        auto* fresh =
            static_cast<char*>(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        for (std::size_t done = 0; done < size; done += kBlock)
            (void)handle->ReadAt(static_cast<std::int64_t>(done), fresh + done, std::min(kBlock, size - done));
        benchmark::DoNotOptimize(fresh);
        (void)munmap(fresh, size);
        (void)handle->Close();
    }
}

void List(benchmark::State& state)
{
    const std::u16string path = DocumentFile(state.range(0));
    for (auto _ : state) {
        CZMXFFile document(true, false);
        std::vector<CResultHeader*> headers;
        if (!document.GetResultHeaderListe(path.c_str(), headers)) state.SkipWithError("listing failed");
        state.PauseTiming();
        for (const CResultHeader* header : headers) delete header;
        state.ResumeTiming();
    }
}

// Walks from the first chunk of the results on, and copies the bytes of each header.
void HeaderWalk(benchmark::State& state)
{
    const std::u16string path = DocumentFile(state.range(0));
    CMmioFile document(false);
    OMMCKINFO results;
    if (!document.Open(path, nullptr, OMMIO_READ) || !document.TopOfChunkResultat(results, 0)) return;
    for (auto _ : state) {
        auto handle = MakePlatformFileHandle();
        (void)handle->Open(path, FileHandle::Access::Read);
        BufferedFile file(std::move(handle), false, 0);
        std::vector<std::unique_ptr<char[]>> copies;
        std::int64_t position = results.dwDataOffset + 4;
        while (position < std::int64_t{results.dwDataOffset} + results.cksize) {
            const auto header = ReadChunkHeader(file, position);
            if (header->ckid == FourCC("INFO")) {
                copies.emplace_back(new char[header->cksize]);
                (void)file.Read(copies.back().get(), static_cast<std::int32_t>(header->cksize));
            }
            position = header->Next();
        }
        benchmark::DoNotOptimize(copies.data());
    }
}

void FetchOne(benchmark::State& state)
{
    const std::u16string path = DocumentFile(state.range(0));
    CResultHeader header;
    header.setFilename(path);
    header.SetChunkId(StringToFourCC(ToDecimal(state.range(0) - 1), false));
    for (auto _ : state) {
        CZMXFFile document(true, false);
        CRegVector spectrum;
        std::int32_t system = -1;
        if (!document.GetResultat(&spectrum, &header, system)) state.SkipWithError("fetch failed");
        delete spectrum.GetMagnitude();
    }
}

// Finds a spectrum by the list of headers, fetches it and makes the text of all its values.
void ShowOne(benchmark::State& state)
{
    const std::u16string path = DocumentFile(state.range(0));
    for (auto _ : state) {
        CZMXFFile document(true, false);
        std::vector<CResultHeader*> headers;
        CRegVector spectrum;
        std::int32_t system = -1;
        if (!document.GetResultHeaderListe(path.c_str(), headers)) state.SkipWithError("listing failed");
        headers[headers.size() / 2]->setFilename(path); // the name in the header is that of the measurement
        if (!document.GetResultat(&spectrum, headers[headers.size() / 2], system)) state.SkipWithError("fetch failed");
        const std::unique_ptr<const CGrandeur> quantity(spectrum.GetMagnitude());
        for (std::int32_t i = 0; i < spectrum.GetSize(); ++i) {
            std::u16string text;
            std::u16string prefix;
            std::u16string label;
            quantity->SI_to_string(text, spectrum.GetRealValue()[i], 0.0F, 1e-5F, prefix, label, false, nullptr);
            CGrandeur::concat_SI_string(text, prefix, label, true);
            benchmark::DoNotOptimize(text.data());
        }
        for (const CResultHeader* header : headers) delete header;
    }
}

void Sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Arg(1000)->Arg(2000)->Arg(5000)->Arg(9999)->Unit(benchmark::kMillisecond);
}

BENCHMARK(Save)->Apply(Sizes);
BENCHMARK(PlainWrite)->Apply(Sizes);
BENCHMARK(Load)->Apply(Sizes);
BENCHMARK(PlainRead)->Apply(Sizes);
BENCHMARK(List)->Apply(Sizes);
BENCHMARK(HeaderWalk)->Apply(Sizes);
BENCHMARK(FetchOne)->Apply(Sizes);
BENCHMARK(ShowOne)->Apply(Sizes);

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    ratios::TimesReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    for (const char* size : {"/1000", "/2000", "/5000", "/9999"}) {
        reporter.PrintRatio(std::string("Save") + size, std::string("PlainWrite") + size, 3.2);
        reporter.PrintRatio(std::string("Load") + size, std::string("PlainRead") + size, 2.2);
        reporter.PrintRatio(std::string("List") + size, std::string("HeaderWalk") + size, 2.3);
    }
    // Twice the results, twice the time.
    for (const char* name : {"Save", "Load", "List", "FetchOne", "ShowOne"}) {
        reporter.PrintRatio(std::string(name) + "/2000", std::string(name) + "/1000", 2.3);
        reporter.PrintRatio(std::string(name) + "/9999", std::string(name) + "/5000", 2.3);
    }
    for (const int results : {1000, 2000, 5000, 9999}) std::filesystem::remove(Path(results));
    return 0;
}
