#include "bench/steps/steps.h"
#include "zelmresult/storage/chunk_codes.h"

#include "zelmresult/storage/chunk_codes.h"

#include <chrono>
#include <thread>
#include <vector>

namespace steps {

namespace {

CGrandeur* AddQuantity(Document& document, const wstring& name)
{
    auto* quantity = new CGrandeurFichier(name);
    quantity->AjouteUniteDynamique(new CUnite);
    Require(quantity->SetUniteCourante(quantity->GetLstUnit().front()), "a unit");
    document.AjouteGrandeur(quantity, OwnershipOwned);
    return quantity;
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

// Each by opening the file again. What one of them finds on its way is kept for the next, unless the file is so young
// that it may still be written.
void FetchResults(int n)
{
    const File file;
    Document document;
    AddSpectra(document, n);
    document.SaveTo(file);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    CResultHeader header;
    header.setFilename(file.wide());
    for (int i = 0; i < n; ++i) {
        header.SetChunkId(StringToFourCC(ToDecimal(i), false));
        CRegVector spectrum;
        std::int32_t system = -1;
        Require(document.GetResultat(&spectrum, &header, system), "a fetch");
        delete spectrum.GetMagnitude();
    }
}

// One after another from a reader that stays open.
void ReadResults(int n)
{
    const File file;
    Document document;
    AddSpectra(document, n);
    document.SaveTo(file);
    auto reader = DocumentReader::Open(file.wide());
    Require(static_cast<bool>(reader), "opening a reader");
    for (int i = 0; i < n; ++i)
        Require(static_cast<bool>(reader->ReadResult(static_cast<std::size_t>(i))), "reading a result");
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

constexpr Job kJobs[] = {
    {"add-quantities", AddQuantities, 6000, "nothing"},   {"load-quantities", LoadQuantities, 2500, "add-quantities"},
    {"add-results", AddResults, 6000, "nothing"},         {"save-results", SaveResults, 2500, "add-results"},
    {"check-results", CheckResults, 2500, "add-results"}, {"load-results", LoadResults, 2500, "save-results"},
    {"list-results", ListResults, 2500, "save-results"},  {"fetch-results", FetchResults, 2500, "save-results"},
    {"read-results", ReadResults, 2500, "save-results"},
};

} // namespace

CResultHeader* NewHeader(std::uint32_t process, std::uint32_t dimension, const wstring& response)
{
    auto* header = new CResultHeader;
    header->SetProcessType(process);
    header->SetWaterfallDimension(dimension);
    header->setResponseName(response);
    return header;
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

std::span<const Job> ResultJobs() { return kJobs; }

} // namespace steps
