// Lists a document and fetches its results one by one, without loading it: fetch_results FILE

#include "zelmresult/zelmresult.h"

#include <cstdio>
#include <map>
#include <memory>
#include <vector>

using namespace ZelmResult;

namespace {

// One fetched result with all that came along, which is the caller's.
struct Fetched {
    std::unique_ptr<CResult> result;
    std::unique_ptr<CWaterfallRef> reference;   // that the factory made for a series along a waterfall
    std::unique_ptr<CListVectorRef> references; // that the file holds for results along this waterfall
    std::map<CGrandeur*, int> quantities;       // of the result and the references

    Fetched() = default;
    Fetched(const Fetched&) = delete;
    Fetched& operator=(const Fetched&) = delete;
    ~Fetched()
    {
        for (const auto& [quantity, uses] : quantities) delete quantity; // results and references only point at them
    }
};

bool Fetch(const wstring& path, CResultHeader& header, Fetched& out)
{
    header.setFilename(path); // a file that was moved names its old place
    out.result = ResultFactory::create(header.processType(), static_cast<int>(header.GetWaterfallDimension()),
                                       header.responseName());
    if (out.result == nullptr) return false; // a kind without a class
    if (const auto* series = dynamic_cast<const CRefWaterfall*>(out.result.get()); series != nullptr)
        out.reference.reset(series->GetMyVecteurReference());
    CZMXFFile reader(true, false);
    std::int32_t system = -1;
    const bool isRead = reader.GetResultat(out.result.get(), &header, system);
    out.result->AddReferredGrandeur(out.quantities); // read or not
    if (!isRead) return false;

    CReferencedAxis* axis = out.result->GetReferencedAxis();
    if (axis == nullptr || !axis->IsWaterfall()) return true; // any other result holds its references itself
    out.references = std::make_unique<CListVectorRef>(true);  // true: it doesn't die with its last user
    const bool isFilled =
        reader.FillListeVecteurRef(nullptr, u"", *out.references, path.c_str(), header.GetIndexListe(), system);
    out.references->AddInvolvedGrandeur(out.quantities);
    axis->SetReferenceList(out.references.get());
    axis->SetReference(header.chosenReference(), nullptr, nullptr);
    return isFilled;
}

void Show(const CResultHeader& header, const Fetched& fetched)
{
    std::printf("%s: kind %u, %d filled\n", ToUtf8(header.responseName()).c_str(), header.GetProcessType(),
                fetched.result->GetFilled());
    if (fetched.references == nullptr) return;
    constexpr std::int32_t block = 5;
    for (const CVectorRef* reference : *fetched.references) {
        const auto* series = dynamic_cast<const CWaterfallRef*>(reference);
        float value = 0.0F; // in SI units
        if (series == nullptr || !series->GetValueByBlocForConversion(block, value)) continue;
        wstring text, prefix, unit;
        if (const CGrandeur* quantity = series->GetMagnitude(); quantity != nullptr)
            quantity->SI_to_string(text, value, 0.0F, 1e-4F, prefix, unit, false, nullptr, CUnite::kRoundNearest,
                                   0); // 0: no prefix such as in "3 krpm"
        CGrandeur::concat_SI_string(text, prefix, unit, true);
        std::printf("  %s of block %d: %s\n", ToUtf8(series->name()).c_str(), block, ToUtf8(text).c_str());
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) return 2;
    const wstring path = FromUtf8(argv[1]);

    CZMXFFile reader(true, false);
    std::vector<CResultHeader*> given;
    const bool isListed = reader.GetResultHeaderListe(path.c_str(), given);
    std::vector<std::unique_ptr<CResultHeader>> headers(given.begin(), given.end()); // ours, also those of a failure
    if (!isListed) return 1;
    for (const auto& header : headers) {
        Fetched fetched;
        if (!Fetch(path, *header, fetched)) return 1;
        Show(*header, fetched);
    }
}
