// Waterfalls and their references: a byte that says which, four by which they are moved about, then the record.

#include "fuzz/laws.h"
#include "zelmresult/document/mmio_file_vector_ref.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/ref_waterfall.h"
#include "zelmresult/waterfalls/waterfall_ref.h"
#include "zelmresult/waterfalls/wtf_octave.h"

using namespace ZelmResult;
using fuzz::Subject;
using Moves = std::array<std::int8_t, 4>;

namespace {

// What a host does with what it has read.
void MoveAbout(CWaterfall& waterfall, const Moves& moves)
{
    waterfall.DoSpectrumExchange(moves[0], moves[1]);
    (void)waterfall.AddBlock(moves[2], -1);
    std::int32_t cursor = moves[3];
    (void)waterfall.GetBlockNumberFromWbArray(0, cursor);
    bool useBlockTable = false;
    for (std::int32_t i = 0; i < 3; ++i) (void)waterfall.GetTempVector_Verrue(i, useBlockTable);
    fuzz::Look(waterfall);
    waterfall.Clean();
    (void)waterfall.AddBlock(0, -1);
}

// A ring has room for all blocks between the first and the last, up to 4 million: too slow for a target.
bool HasNearBlocks(const CRefWaterfall& series)
{
    constexpr std::int32_t last = 10000;
    for (std::int32_t i = 0; i < series.GetFilled(); ++i)
        if (series.GetBlocNumber(i) < -last || series.GetBlocNumber(i) > last) return false;
    return true;
}

void MoveAbout(CRefWaterfall& series, const Moves& moves)
{
    float value = 0.0F;
    if (!HasNearBlocks(series) || !series.UpdateTabValue()) series.Clean();
    for (const std::int8_t block : moves) {
        (void)series.AddRefValue(value, block, block % 2 != 0);
        (void)series.GetValueByBloc(block, value);
        (void)series.GetValueByBlocForConversion(block, value);
    }
    fuzz::Look(series);
}

void MoveAbout(CWaterfallRef& reference, const Moves& moves)
{
    for (const std::int8_t block : moves) {
        (void)reference.AddUnsortedValue(static_cast<float>(block % 3), block);
        (void)reference.InsertValueInSortedTabs(static_cast<float>(block % 3), block);
        (void)reference.RemoveValueInSortedTabs(moves[0]);
    }
    fuzz::Look(reference);
}

template <class Object>
Subject SubjectOf(std::shared_ptr<Object> object, const Moves& moves)
{
    Subject subject = fuzz::SubjectOf(object);
    subject.finish = [object, moves] { MoveAbout(*object, moves); };
    return subject;
}

std::shared_ptr<CRefWaterfall> MakeSeries(std::uint32_t dimension)
{
    constexpr std::uint32_t speed = 42;
    return std::dynamic_pointer_cast<CRefWaterfall>(std::shared_ptr<CResult>(fuzz::MakeResult(speed, dimension)));
}

// All references under one index, which follow each other.
Subject SubjectOfList()
{
    constexpr std::int32_t outsideOfSystems = 17;
    auto list = std::make_shared<CListVectorRef>(false);
    Subject subject;
    subject.read = [list](CMmioFile& file) {
        return MmioFile_VectorRef(file).FillVecteurRef(nullptr, u"", *list, 0, outsideOfSystems);
    };
    subject.write = [list](CMmioFile& file) { return list->Write(&file, 0); };
    subject.isWholeRead = false; // the search for one more reference ends anywhere
    return subject;
}

Subject Make(char which, const Moves& moves)
{
    switch (which) {
    case 'W': return SubjectOf(std::make_shared<CWaterfall>(true), moves);
    case 'O': return SubjectOf<CWaterfall>(std::make_shared<CWtfOctave>(true), moves);
    case 'S': return SubjectOf(MakeSeries(5), moves);
    case 'D': return SubjectOf(MakeSeries(1), moves);
    case 'F': return SubjectOf(std::make_shared<CWaterfallRef>(), moves);
    default: return SubjectOfList();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const auto which = input.take<char>();
    const auto moves = input.take<Moves>();
    fuzz::CheckRecord(input.rest(), [&] { return Make(which, moves); });
    return 0;
}
