// Results of every class in every state.

#include "fuzz/misuse/rooms.h"
#include "tests/builders/record_check.h"
#include "zelmresult/results/compressed_result.h"
#include "zelmresult/results/double_result.h"
#include "zelmresult/results/level_results.h"
#include "zelmresult/results/order_track.h"
#include "zelmresult/results/ref_vector.h"
#include "zelmresult/waterfalls/ref_waterfall.h"
#include "zelmresult/waterfalls/wtf_octave.h"

#include <algorithm>
#include <typeinfo>

namespace ZelmResult::fuzz {

namespace {

using Made = std::unique_ptr<CResult>;

template <class Result>
Made New()
{
    return std::make_unique<Result>();
}

constexpr Made (*kClasses[])() = {New<CScalar>,           New<CVector>,           New<CRegVector>,     New<CRefVector>,
                                  New<CCompressedVector>, New<CBroadBand>,        New<CGlobalLevel>,   New<CSuiviOrdre>,
                                  New<CRegOrderTrack>,    New<CCompressedScalar>, New<CRefOrderTrack>, New<CVectorRef>,
                                  New<CWaterfallRef>,     New<CRefWaterfall>,     New<CWaterfall>,     New<CWtfOctave>,
                                  New<CDoubleResult>};

// The bytes of a result, nothing when it refuses to be written.
Data Stored(CResult& result)
{
    test::MemoryDisk disk;
    CMmioFile file(false, disk.backend());
    const bool isWritten = file.Open(u"r", nullptr, OMMIO_WRITE | OMMIO_CREATE) && result.Write(&file);
    return file.Close() && isWritten ? disk[u"r"] : Data();
}

bool ReadFrom(CResult& result, const Data& bytes)
{
    return test::readFrom(bytes, [&](CMmioFile& file) { return result.Read(&file); });
}

class Misuse : public Room {
public:
    using Room::Room;

    void Step()
    {
        Object& object = m_objects[m_odd.choice(m_objects.size())];
        if (object.result == nullptr || m_odd.choice(16) == 0) {
            object.make = kClasses[m_odd.choice(std::size(kClasses))];
            object.result = object.make();
        }
        CResult& result = *object.result;
        m_odd.call([&] { result.SetComplexType(SignalType(m_odd.choice(9)), m_odd.flag()); }, [&] { Resize(result); },
                   [&] { Copy(object); }, [&] { Measure(result); }, [&] { UseQuantities(result); },
                   [&] { Read(object); }, [&] { Store(object); }, [&] { Damage(); }, [&] { UseArrays(result); });
    }

private:
    struct Object {
        Made (*make)() = nullptr;
        Made result;
    };

    void Resize(CResult& result)
    {
        const std::int32_t size = m_odd.size();
        if (m_odd.flag())
            result.SetSize(size);
        else
            result.AdjustSize(size); // the arrays stay as they were
        if (auto* waterfall = dynamic_cast<CWaterfall*>(&result); waterfall != nullptr) waterfall->SetZSize(2, true);
    }
    void Copy(Object& object)
    {
        CResult& result = *object.result;
        const Data before = Stored(result);
        result = &result;
        Require(Stored(result) == before, "a result that is given itself stays as it is");
        result = static_cast<CResult*>(nullptr);
        Require(Stored(result) == before, "a result that is given none stays as it is");
        if (m_odd.flag())
            result = m_objects.front().result.get(); // of any class, or none
        else
            object.result.reset(result.GetCopy());
        Require(object.result != nullptr, "every class has copies");
    }
    void Measure(CResult& result)
    {
        const float value = m_odd.value();
        for (const auto set : {&CResult::SetXMin, &CResult::SetXMax, &CResult::SetYMin, &CResult::SetYMax,
                               &CResult::SetAbsPrecisionY, &CResult::SetRelPrecisionY})
            (result.*set)(value);
        Require(!(result.GetAbsPrecisionY() < 1e-30F), "an absolute precision has a floor");
        Require(!(result.GetRelPrecisionY() < 1e-30F), "a relative precision has a floor");
        (void)CResult::ComputeAbsPrec(value);
        const std::array<float, CResult::kStartRevPositions> turns{1, -1, 2};
        const std::int32_t n = m_odd.number();
        result.SetStartRevPosTab(turns.data(), n);
        result.CopyStartRevPosTab(m_odd.flag(), turns.data(), n);
        const auto bits = static_cast<std::uint32_t>(n);
        result.SetXnOctave(bits);
        result.SetProcessType(bits);
        result.SetWtfProcessType(bits);
        Require(result.resultProcess().second().toInteger() == n, "a kind is the number that was given");
        Require(!result.IsOfType(0), "a mask without bits holds no class");
        result.setName(m_odd.text());
        result.setName({});
        Require(result.name().empty(), "a name can go");
    }
    static void UseQuantities(CResult& result)
    {
        CGrandeurFichier quantity;
        result.SetMagnitude(&quantity);
        result.SetXMagnitude(&quantity);
        result.ReplaceGrandeur(nullptr, &quantity);
        result.ReplaceGrandeur(&quantity, nullptr);
        std::map<CGrandeur*, int> counts;
        result.AddInvolvedGrandeur(counts);
        Require(counts.empty(), "a quantity that was replaced by none isn't used");
        result.SetMagnitude(nullptr); // levels keep theirs
        result.SetXMagnitude(nullptr);
        result.AddReferredGrandeur(counts);
        Require(counts.empty(), "a result without quantities refers to none");
    }
    void Read(Object& object)
    {
        const Object& other = m_objects.back();
        const Data bytes = other.result != nullptr && m_odd.flag() ? Stored(*other.result) : Data();
        if (!ReadFrom(*object.result, bytes)) object.result.reset();
    }
    // What an object stores is taken back, and stored again from then on as it is.
    static void Store(const Object& object)
    {
        CResult& result = *object.result;
        if (result.GetSize() < 0 || typeid(result) == typeid(CDoubleResult)) return;
        Data bytes = Stored(result);
        if (bytes.empty() && dynamic_cast<COrderTracking*>(&result) != nullptr) return; // orders and points of a copy
        for (int turn = 0; turn < 2; ++turn) {
            const Made read = object.make();
            if (CReferencedAxis* axis = read->GetReferencedAxis(); axis != nullptr) // which the block doesn't say
                axis->SetIsWaterfall(result.GetReferencedAxis()->IsWaterfall());
            Require(!bytes.empty(), "a result is stored");
            Require(ReadFrom(*read, bytes), "what is stored is read");
            const Data again = Stored(*read);
            Require(turn == 0 || again == bytes, "what was read is stored as it was");
            bytes = again;
        }
    }
    // Sizes that a file claims and doesn't hold ask for no memory.
    void Damage()
    {
        constexpr std::ptrdiff_t sizeInBase = 18; // after version, quantity and three numbers
        const auto make = m_odd.pick<Made (*)()>(
            {New<CVector>, New<CRegVector>, New<CRefVector>, New<CVectorRef>, New<CWaterfallRef>});
        const Made sample = make();
        sample->SetComplexType(static_cast<SignalType>(m_odd.pick({0, 1, 3, 7})), false);
        Data bytes = Stored(*sample);
        const Data base = test::bytesOf([&](CMmioFile& file) { return sample->CResult::Write(&file); });
        const auto at = std::search(bytes.begin(), bytes.end(), base.begin(), base.end());
        const auto size = m_odd.pick<std::int32_t>({INT32_MIN, -1, INT32_MAX});
        std::memcpy(&*at + sizeInBase, &size, sizeof size);
        Require(!ReadFrom(*make(), bytes), "a size that isn't there is refused");
    }

    void UseArrays(CResult& result)
    {
        const std::int32_t n = m_odd.number();
        if (auto* vector = dynamic_cast<CVector*>(&result); vector != nullptr) {
            CheckCopy(m_odd, [&](float* out, std::int32_t count) { vector->GetRealValues(out, count); });
            const auto* regular = dynamic_cast<const CRegVector*>(&result);
            const bool hasExtremes = regular != nullptr && regular->GetRealValueMin() != nullptr; // they would leak
            if (m_odd.choice(4) == 0 && !hasExtremes) vector->ReInitPtrTab();
        }
        if (auto* along = dynamic_cast<CRefVector*>(&result); along != nullptr && m_odd.flag())
            Require(along->AddNewValue(1, 1, n) < std::max(along->GetSize(), 1), "a value has a place in its array");
        if (const auto* track = dynamic_cast<COrderTracking*>(&result); track != nullptr)
            CheckCopy(m_odd, [&](float* out, std::int32_t count) { track->GetImValues(out, count, 1); });
        if (auto* envelope = dynamic_cast<CCompressedVector*>(&result); envelope != nullptr) UseEnvelope(*envelope, n);
        if (auto* scalar = dynamic_cast<CCompressedScalar*>(&result); scalar != nullptr) UseScalar(*scalar, n);
    }
    static void UseEnvelope(CCompressedVector& envelope, std::int32_t points)
    {
        CCompressedVector other(25, 3, SignalType::Compressed);
        envelope.SetCompSize(points);
        other.AdjustSize(envelope.GetSize());
        envelope.TransferResult(&other);
        other.TransferResult(&envelope);
        envelope.TransferResult(nullptr);
    }
    void UseScalar(CCompressedScalar& scalar, std::int32_t points)
    {
        const auto table = static_cast<OffsetScalarArray>(m_odd.number());
        CheckCopy(m_odd, [&](float* out, std::int32_t count) { scalar.GetScalarValues(table, out, count); });
        (void)scalar.GetScalar(table, points);
        (void)scalar.GetComputedScalar(table);
        CCompressedScalar other(270, 3, SignalType::Compressed);
        scalar.SetCompSize(points);
        other.AdjustSize(scalar.GetSize());
        other.CopyFrom(&scalar);
        scalar.CopyFrom(&other);
        scalar.CopyFrom(nullptr);
        const std::array<float, 24> sixes{};
        const auto values = m_odd.pick<std::int32_t>({INT32_MIN, -1, 0, 5, 6, 23, 24});
        scalar.CopyCompressedScalar(sixes.data(), values, points, m_odd.flag());
        scalar.SetSamplingFrequency(m_odd.value());
        (void)scalar.ComputeScalar(m_odd.value(), m_odd.value(), m_odd.value());
        scalar.SetSamplingFrequency(0);
    }

    std::array<Object, 3> m_objects;
};

} // namespace

void MisuseResults(Odd& odd) { Run<Misuse>(odd); }

} // namespace ZelmResult::fuzz
