// Saves a run-up to a file and loads it: spectra along a speed, and the slice nearest to 3000 rpm. The acquisition lost
// two blocks.

#include "zelmresult/zelmresult.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <memory>

using namespace ZelmResult;

namespace {

constexpr std::array kBlocks = {0, 1, 2, 5, 6, 7, 8, 10, 11, 12}; // that were measured
constexpr auto kSlices = static_cast<std::int32_t>(kBlocks.size());
constexpr std::int32_t kLines = 201; // 0 to 200 Hz

float Time(std::int32_t block) { return 0.5F * static_cast<float>(block); }   // seconds
float Speed(std::int32_t block) { return 10.0F * static_cast<float>(block); } // revolutions per second

// The document owns the quantity; the unit must outlive the document.
CGrandeur* AddQuantity(CZMXFFile& document, const wstring& key, CUnite& unit, const wstring& label)
{
    unit.SetNomUnite(label);
    unit.SetLabelLinUnite(label);
    auto* quantity = new CGrandeur;
    quantity->SetQuantityKey(key);
    quantity->SetNomGrandeur(key);
    quantity->AjouteUniteDynamique(&unit);
    (void)quantity->SetUniteCourante(&unit);
    document.AjouteGrandeur(quantity, OwnershipOwned);
    return quantity;
}

// A series along the waterfall, with the reference of that name in the list that all results of the run-up share.
void AddSeries(CZMXFFile& document, CListVectorRef* list, const wstring& name, CGrandeur* quantity,
               float (*value)(std::int32_t))
{
    constexpr std::uint32_t kind = 42;
    const auto process = otype::ElementaryResultProcess::fromInteger(kind);
    auto* series = dynamic_cast<CRefWaterfall*>(ResultFactory::create(process, 1, name).release());
    list->AddVectorRef(series->GetMyVecteurReference());
    series->SetReferenceList(list);
    series->SetProcessType(kind);
    series->SetMagnitude(quantity);
    series->SetSize(kSlices);
    series->SetLastBlockNb(-1); // a change of size sets it to 0
    for (std::int32_t slice = 0; slice < kSlices; ++slice) {
        const std::int32_t block = kBlocks[static_cast<std::size_t>(slice)];
        (void)series->AddRefValue(value(block), slice, false); // slice by slice, without gaps
        series->SetBlocNumber(slice, block);                   // the block that it was
    }
    series->SetFilled(kSlices);
    auto* header = new CResultHeader;
    header->SetProcessType(kind);
    header->SetWaterfallDimension(1); // a reference of a waterfall
    header->setResponseName(name);    // by which a load finds the series of a reference
    document.AjouteResultat(header, series, 0, true);
}

void AddWaterfall(CZMXFFile& document, CListVectorRef* list, CGrandeur* quantity, CGrandeur* frequency)
{
    auto* waterfall = new CWaterfall(2, 2, kLines, kSlices, list, SignalType::Real, true);
    waterfall->SetMagnitude(quantity);
    waterfall->SetXMagnitude(frequency);
    waterfall->SetXMax(200.0F);
    (void)waterfall->AllocateTabBlockNumber(kSlices);
    for (std::int32_t slice = 0; slice < kSlices; ++slice) {
        const std::int32_t block = kBlocks[static_cast<std::size_t>(slice)];
        const std::int32_t place = waterfall->AddBlock(slice, -1); // -1: no room for slices
        if (place < 0) continue;
        waterfall->SetBlocNumber(place, block);
        float spectrum[kLines] = {};
        spectrum[std::lround(Speed(block))] = 1.0F; // the first order
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

bool Write()
{
    CUnite second, rpm, hertz, acceleration;
    rpm.SetCoeffA(60.0F); // from revolutions per second
    CZMXFFile document(true, false);
    auto* list = new CListVectorRef(false); // dies with the last result that uses it
    AddSeries(document, list, u"Time", AddQuantity(document, u"Time", second, u"s"), Time);
    AddSeries(document, list, u"Speed", AddQuantity(document, u"Speed", rpm, u"rpm"), Speed);
    AddWaterfall(document, list, AddQuantity(document, u"Acceleration", acceleration, u"m/s2"),
                 AddQuantity(document, u"Frequency", hertz, u"Hz"));
    document.NeedToRemoveEverything(true);
    return document.Save(u"run_up.zmxf");
}

} // namespace

int main()
{
    if (!Write()) return 1;

    CZMXFFile read(true, false);
    const bool isLoaded = read.Load(u"run_up.zmxf", ZMXFFileLoadScope::all());
    read.NeedToRemoveEverything(true);
    if (!isLoaded) return 1;
    CWaterfall* waterfall = WaterfallOf(*read.getSystem(0));
    const auto* speeds = dynamic_cast<const CWaterfallRef*>(waterfall->GetReference(u"Speed", nullptr));
    // Beside each of the sorted values is its block; after a load the slot of a slice is the number of its block.
    std::int32_t nearest = 0;
    for (std::int32_t i = 1; i < speeds->GetSortedValues().GetSize(); ++i)
        if (std::fabs(speeds->GetSortedValues()[i] - 50.0F) < std::fabs(speeds->GetSortedValues()[nearest] - 50.0F))
            nearest = i;
    const std::int32_t slot = speeds->GetSortedBlocNumbers()[nearest];
    std::printf("block %d at %g rpm: %g at 50 Hz\n", slot,
                60.0 * static_cast<double>(speeds->GetSortedValues()[nearest]),
                static_cast<double>(waterfall->GetTabPoint(0, slot, 50)));
    return 0;
}
