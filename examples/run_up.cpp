// A run-up goes to a file and comes back: spectra along a speed, and the slice nearest to 3000 rpm.

#include "zelmresult/zelmresult.h"

#include <cmath>
#include <cstdio>
#include <memory>

using namespace ZelmResult;

namespace {

constexpr std::int32_t kSlices = 10;
constexpr std::int32_t kLines = 101; // 0 to 100 Hz

float Speed(std::int32_t slice) { return 10.0F * static_cast<float>(slice + 1); } // revolutions per second

// A series along the waterfall, with the reference of that name in the list that all results of the run-up share.
void AddSeries(CZMXFFile& document, CListVectorRef* list, const wstring& name, float (*value)(std::int32_t))
{
    constexpr std::uint32_t kind = 42;
    const auto process = otype::ElementaryResultProcess::fromInteger(kind);
    auto* series = dynamic_cast<CRefWaterfall*>(ResultFactory::create(process, 1, name).release());
    list->AddVectorRef(series->GetMyVecteurReference());
    series->SetReferenceList(list);
    series->SetProcessType(kind);
    series->SetSize(kSlices);
    series->SetLastBlockNb(-1); // a change of size sets it to 0
    for (std::int32_t slice = 0; slice < kSlices; ++slice) (void)series->AddRefValue(value(slice), slice, false);
    series->SetFilled(kSlices);
    auto* header = new CResultHeader;
    header->SetProcessType(kind);
    header->SetWaterfallDimension(1); // a reference of a waterfall
    header->setResponseName(name);    // by which a load finds the series of a reference
    document.AjouteResultat(header, series, 0, true);
}

void AddWaterfall(CZMXFFile& document, CListVectorRef* list)
{
    auto* waterfall = new CWaterfall(2, 2, kLines, kSlices, list, SignalType::Real, true);
    waterfall->SetXMax(100.0F);
    (void)waterfall->AllocateTabBlockNumber(kSlices);
    for (std::int32_t slice = 0; slice < kSlices; ++slice) {
        const std::int32_t place = waterfall->AddBlock(slice, -1); // -1: no room for slices
        if (place < 0) continue;
        waterfall->SetBlocNumber(place, slice);
        float spectrum[kLines] = {};
        spectrum[std::lround(Speed(slice))] = 1.0F; // the first order
        waterfall->GetTabData(0, place).CopySliceFrom(spectrum, kLines);
    }
    waterfall->SetFilled(kSlices); // as many slices as are stored, and no more than were added
    auto* header = new CResultHeader;
    header->SetProcessType(2);
    header->SetWaterfallDimension(2); // a waterfall
    header->setResponseName(u"Bearing");
    header->setChosenReference(u"Speed");                // which SetReference alone doesn't store
    document.AjouteResultat(header, waterfall, 0, true); // true: the list of references goes with it
}

CWaterfall* WaterfallOf(const CSysteme& system)
{
    for (const auto& entry : system.getMapResult())
        if (auto* waterfall = dynamic_cast<CWaterfall*>(entry.second); waterfall != nullptr) return waterfall;
    return nullptr;
}

} // namespace

int main()
{
    CZMXFFile written(true, false);
    auto* list = new CListVectorRef(false); // dies with the last result that uses it
    AddSeries(written, list, u"Slice number", [](std::int32_t slice) { return static_cast<float>(slice); });
    AddSeries(written, list, u"Speed", Speed);
    AddWaterfall(written, list);
    written.NeedToRemoveEverything(true);
    if (!written.Save(u"run_up.zmxf")) return 1;

    CZMXFFile read(true, false);
    if (!read.Load(u"run_up.zmxf", ZMXFFileLoadScope::all())) return 1;
    read.NeedToRemoveEverything(true);
    CWaterfall* waterfall = WaterfallOf(*read.getSystem(0));
    const auto* speeds = dynamic_cast<const CWaterfallRef*>(waterfall->GetReference(u"Speed", nullptr));
    // The sorted values tell the block; after a load the slot of a slice is the number of its block.
    std::int32_t nearest = 0;
    for (std::int32_t i = 1; i < speeds->GetSortedValues().GetSize(); ++i)
        if (std::fabs(speeds->GetSortedValues()[i] - 50.0F) < std::fabs(speeds->GetSortedValues()[nearest] - 50.0F))
            nearest = i;
    const std::int32_t slot = speeds->GetSortedBlocNumbers()[nearest];
    std::printf("slice %d at %g rpm: %g at 50 Hz\n", slot,
                60.0 * static_cast<double>(speeds->GetSortedValues()[nearest]),
                static_cast<double>(waterfall->GetTabPoint(0, slot, 50)));
    return 0;
}
