// Lists a document and reads its results one by one, without loading it: fetch_results FILE

#include "zelmresult/zelmresult.h"

#include <cstdio>

using namespace ZelmResult;

namespace {

int Fail(const ReadError& error)
{
    std::fprintf(stderr, "%s\n", ToUtf8(error.Text()).c_str());
    return 1;
}

void Show(const StoredResult& stored)
{
    std::printf("%s: kind %u, %d filled\n", ToUtf8(stored.header().responseName()).c_str(),
                stored.header().GetProcessType(), stored.result().GetFilled());
    if (stored.references() == nullptr) return; // not along a waterfall
    constexpr std::int32_t block = 5;
    for (const CVectorRef* reference : *stored.references()) {
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
    auto opened = DocumentReader::Open(FromUtf8(argv[1]));
    if (!opened) return Fail(opened.error());
    DocumentReader& reader = *opened;

    const Listing<ListedResult>& listing = reader.Results();
    if (listing.damage) (void)Fail(*listing.damage); // what could be read is listed all the same
    for (std::size_t number = 0; number < listing.items.size(); ++number) {
        auto stored = reader.ReadResult(number);
        if (!stored) return Fail(stored.error());
        Show(*stored);
    }
}
