// Lists the arrays of all results of a document, and reads one slice of each waterfall: labelled_results FILE

#include "zelmresult/zelmresult.h"

#include <cstdio>

using namespace ZelmResult;

namespace {

int Fail(const ReadError& error)
{
    std::fprintf(stderr, "%s\n", ToUtf8(error.Text()).c_str());
    return 1;
}

void Show(const char* role, const LabelledArray& array)
{
    std::printf("  %s %s", role, ToUtf8(array.name).c_str());
    for (std::size_t i = 0; i < array.dimensions.size(); ++i)
        std::printf(" %s=%zu", ToUtf8(array.dimensions[i]).c_str(), array.shape[i]);
    if (array.quantity) std::printf(" [%s]", ToUtf8(array.quantity->siSymbol).c_str());
    std::printf("\n");
}

void Show(const LabelledResult& result)
{
    std::printf("%s of %s\n", ToUtf8(result.information.kind).c_str(), ToUtf8(result.information.channel).c_str());
    for (const LabelledArray& coordinate : result.coordinates) Show("coordinate", coordinate);
    for (const LabelledArray& data : result.data) Show("data", data);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) return 2;
    auto reader = DocumentReader::Open(FromUtf8(argv[1]));
    if (!reader) return Fail(reader.error());
    for (std::size_t number = 0; number < reader->Results().items.size(); ++number) {
        const auto result = reader->ReadLabelled(number);
        if (!result) return Fail(result.error());
        Show(*result);
        if (result->form != LabelledForm::Waterfall) continue;
        const auto slice = reader->ReadSlice(number, {SliceChoice::By::Block, 5}); // without its neighbours
        if (!slice) return Fail(slice.error());
        const LabelledArray& speed = *slice->Coordinate(slice->chosenReference);
        std::printf("  block 5: %g %s\n", speed.quantity->InUnit(speed.Floats()->front()),
                    ToUtf8(speed.quantity->shown->label).c_str());
    }
}
