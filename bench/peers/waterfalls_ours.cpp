#include "bench/peers/slice_set.h"
#include "zelmresult/zelmresult.h"

namespace peers {

namespace {

using namespace ZelmResult;

std::unique_ptr<CWaterfall> FillWaterfall(int n, EStrategy strategy)
{
    const EStrategy former = CWaterfallBufferFactory::SetStrategy(strategy);
    auto waterfall = std::make_unique<CWaterfall>(2, 2, kPoints, n, nullptr, SignalType::Real, true);
    (void)CWaterfallBufferFactory::SetStrategy(former);
    (void)waterfall->AllocateTabBlockNumber(n);
    SliceSource source;
    for (int block = 0; block < n; ++block) {
        const std::int32_t place = waterfall->AddBlock(block, -1);
        waterfall->SetBlocNumber(place, block);
        waterfall->GetTabData(0, place).CopySliceFrom(source.Next(block), kPoints);
    }
    waterfall->SetFilled(n);
    Require(!waterfall->HasLostSlices(), "room for slices");
    return waterfall;
}

class Store : public SliceStore {
public:
    ~Store() override { m_document.NeedToRemoveEverything(true); }

    void Fill(int n, Room room, const Path&) override
    {
        m_filled = FillWaterfall(n, room == Room::Memory ? EStrategy::StrategyAuto : EStrategy::StrategyDisk);
    }

    void Look(int slice, float* values) override { m_filled->GetValues(0, slice, values, kPoints); }

    void Make(int n) override
    {
        auto header = std::make_unique<CResultHeader>();
        header->SetProcessType(2);
        header->SetWaterfallDimension(2);
        m_document.AjouteResultat(header.release(), FillWaterfall(n, EStrategy::StrategyAuto).release(), 0, true);
    }

    void Save(const Path& path) override { Require(m_document.Save(FromUtf8(path.string()).c_str()), "a save"); }

    void Load(const Path& path) override
    {
        Require(m_document.Load(FromUtf8(path.string()).c_str(), ZMXFFileLoadScope::all()), "a load");
    }

    [[nodiscard]] float FirstOf(int slice) override
    {
        auto* waterfall = dynamic_cast<CWaterfall*>(m_document.getSystem(0)->getMapResult().begin()->second);
        return waterfall->GetTabPoint(0, slice, 0);
    }

private:
    CZMXFFile m_document{true, false};
    std::unique_ptr<CWaterfall> m_filled;
};

} // namespace

std::unique_ptr<SliceStore> OurSlices() { return std::make_unique<Store>(); }

} // namespace peers
