// Waterfalls in every state, wherever their slices are.

#include "fuzz/misuse/rooms.h"
#include "zelmresult/results/ref_vector.h"
#include "zelmresult/waterfalls/wtf_octave.h"

#include <algorithm>

namespace ZelmResult::fuzz {

namespace {

// Of any ring, also of one that was larger and continues where it was.
constexpr std::int32_t kMostSlices = 3;

class Misuse : public Room {
public:
    explicit Misuse(Odd& odd)
        : Room(odd),
          m_strategy(odd.pick({EStrategy::StrategyAuto, EStrategy::StrategyDisk, EStrategy::StrategyAllZeroes})),
          m_before(CWaterfallBufferFactory::SetStrategy(m_strategy)), m_waterfall(Make())
    {
    }
    ~Misuse() { CWaterfallBufferFactory::SetStrategy(m_before); }

    void Step()
    {
        m_odd.call([&] { m_waterfall = Make(); }, [&] { AddBlocks(); }, [&] { GetValues(); }, [&] { ShowSlices(); },
                   [&] { UseLevels(); }, [&] { UseReferences(); }, [&] { Update(); }, [&] { AskForAll(); },
                   [&] { Copy(); }, [&] { m_waterfall->ClearTab(); }, [&] { m_waterfall->Clean(); },
                   [&] { m_waterfall->FreeRefList(); }, [&] { m_waterfall->SetSize(m_odd.size()); },
                   [&] { m_waterfall->SetZSize(m_odd.size(), m_odd.flag()); },
                   [&] { m_waterfall->SetComplexType(Type(), m_odd.flag()); },
                   [&] { m_waterfall->AdjustSize(3); }); // the slices stay as they were
        Require(m_waterfall->GetIndexByBloc(m_odd.number()) < kMostSlices, "a block has a place in its ring");
    }

private:
    SignalType Type() { return static_cast<SignalType>(m_odd.pick<std::uint32_t>({0, 1, 2, 3, 4, 5, ~0U})); }
    std::unique_ptr<CWaterfall> Make()
    {
        const std::int32_t slices = m_odd.size();
        const std::int32_t size = m_odd.size();
        if (m_odd.flag()) return std::make_unique<CWtfOctave>(18, 20, size, slices, nullptr, Type());
        auto made = std::make_unique<CWaterfall>(2, 20, size, slices, nullptr, Type(), m_odd.flag());
        (void)made->AllocateTabBlockNumber(m_odd.size());
        return made;
    }

    void AddBlocks()
    {
        const std::int32_t block = m_odd.number();
        const auto raw = m_odd.pick<std::int32_t>({-1, 0, 1, INT32_MIN, INT32_MAX});
        Require(m_waterfall->AddBlock(block, raw) < kMostSlices, "a block takes a place of the ring");
        const std::int32_t slot = m_waterfall->AddBlockByIndex(block);
        Require(slot == -1 || slot == block, "a slot is the one that was asked for");
        m_waterfall->SetBlocNumber(block, raw);
        m_waterfall->DoSpectrumExchange(block, raw);
        std::int32_t cursor = m_odd.number();
        if (m_waterfall->GetFilled() < 100) (void)m_waterfall->GetBlockNumberFromWbArray(raw, cursor);
    }
    void GetValues()
    {
        constexpr std::int32_t pastAll = 7;
        const std::int32_t dimension = m_odd.number();
        const std::int32_t slot = m_odd.number();
        CheckCopy(m_odd, [&](float* out, std::int32_t n) { m_waterfall->GetValues(dimension, slot, out, n); });
        Require(m_waterfall->GetTabPoint(dimension, slot, pastAll) == 0.0F, "a point past a slice is 0");
    }
    void ShowSlices()
    {
        const std::int32_t place = m_odd.number();
        bool useTable = m_odd.flag();
        for (CVector* shown : {m_waterfall->GetTempVector(place), m_waterfall->GetTempVectorFromDimData(place),
                               m_waterfall->GetTempVector_Verrue(place, useTable)})
            for (std::int32_t i = 0; shown != nullptr && shown->GetRealValue() != nullptr && i < shown->GetSize(); ++i)
                shown->GetRealValue()[i] += 1;
    }
    void UseLevels()
    {
        m_waterfall->SetXnOctave(m_odd.word());
        auto* octave = dynamic_cast<CWtfOctave*>(m_waterfall.get());
        if (octave == nullptr) return;
        const std::int32_t dimension = m_odd.number();
        const std::int32_t slot = m_odd.number();
        octave->SetGlobalLevelByIndex(dimension, slot, 1);
        octave->SetGlobalLevelPondByIndex(dimension, slot, 1);
        const auto target = static_cast<AvgOctaveTarget>(m_odd.number());
        const float level = octave->GetGlobLevel(slot, target) + octave->GetGlobalLevelPond(slot, target) +
                            octave->GetGlobalLevelByIndex(dimension, slot);
        Require(octave->GetTabData(0, slot).HasSlice() || level == 0, "a slot without a slice has no level");
    }
    void UseReferences()
    {
        CGrandeur quantity;
        m_waterfall->SetMagnitude(&quantity);
        m_waterfall->SetXMagnitude(&quantity);
        m_waterfall->SetReference(m_odd.text(), m_odd.flag() ? &quantity : nullptr, nullptr);
        m_waterfall->SetMagnitude(nullptr);
        m_waterfall->SetXMagnitude(nullptr);
        Require(m_waterfall->GetZMax() == 0, "without a reference there is no range");
        Require(m_waterfall->GetPrecisionZ() == 0, "without a reference there is no precision");
    }
    void Update()
    {
        m_waterfall->SetFilled(m_odd.pick<std::int32_t>({INT32_MIN, 0, 1, 3, 50})); // more than there are
        Require(m_waterfall->UpdateDataTab() || m_waterfall->GetFilled() > 0, "no slices are in order");
    }
    // There is no such memory.
    void AskForAll()
    {
        m_waterfall->SetZSize(0, false);
        m_waterfall->SetSize(INT32_MAX - 1);
        const bool isWanted = CWaterfall::GetComplexDim(m_waterfall->GetComplexType()) > 0;
        if (m_strategy == EStrategy::StrategyAuto) {
            m_waterfall->SetZSize(INT32_MAX, true);
            Require(m_waterfall->HasLostSlices() == isWanted, "slices without a place are lost");
            Require(m_waterfall->AddBlock(0, -1) == -1, "a block without slices has no place");
        }
        m_waterfall->SetZSize(0, false);
        m_waterfall->SetSize(3);
        m_waterfall->SetZSize(3, true);
        Require(!m_waterfall->HasLostSlices() || !isWanted, "new slices have a place");
    }
    void Copy()
    {
        CRefVector vector(16, 3, SignalType::Real, 0);
        CWaterfall plain(2, 20, 2, 3, nullptr, SignalType::Real, true); // also into octaves
        CResult* const others[] = {&vector, &plain, m_waterfall.get(), nullptr};
        if (m_odd.flag())
            *m_waterfall = others[m_odd.choice(std::size(others))];
        else if (m_odd.flag())
            m_waterfall.reset(dynamic_cast<CWaterfall*>(m_waterfall->GetCopy()));
        else
            m_waterfall.reset(m_waterfall->GetWholeCopy());
    }

    EStrategy m_strategy;
    EStrategy m_before;
    std::unique_ptr<CWaterfall> m_waterfall;
};

} // namespace

void MisuseWaterfalls(Odd& odd) { Run<Misuse>(odd); }

} // namespace ZelmResult::fuzz
