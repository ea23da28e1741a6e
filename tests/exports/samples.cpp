// Writes a document for the tests of exports: each class of result, empty and with values, among them some that are no
// numbers, and names that are hard to write in one format or another.

#include "tests/builders/samples.h"
#include "fuzz/documents.h"
#include "tests/builders/waterfall_samples.h"
#include "zelmresult/zelmresult.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>

using namespace ZelmResult;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

// One of these for each result, in turn.
wstring NextName()
{
    static const std::vector<wstring> names{u"=1+1",
                                            u"@SUM(A1)",
                                            u"-3 V",
                                            u"+Z",
                                            u"a,\"b\"\r\nc;d",
                                            u"caf\u00E9 \U0001F50A",
                                            wstring(1, 0xD800),
                                            wstring(u"nul\0l", 5),
                                            wstring(300, u'\u00DF'),
                                            u"../up/<b>&amp;",
                                            u"\t tab",
                                            u"'quoted' {\"json\": null}",
                                            u""};
    static std::size_t next = 0;
    return names[next++ % names.size()];
}

class Sample {
public:
    Sample()
    {
        m_quantity = test::NewQuantity(u"velocity");
        CUnite& unit = *m_quantity->GetUniteCourante();
        unit.SetCoeffA(1000);
        unit.SetRef0dB(0.5F);
        m_document.AjouteGrandeur(m_quantity, OwnershipOwned);
        m_document.NeedToRemoveEverything(true);
    }

    void Add(std::uint32_t kind, std::unique_ptr<CResult> result, const wstring& process = {},
             std::uint32_t dimension = 0)
    {
        if (dynamic_cast<CDoubleResult*>(result.get()) == nullptr) result->SetMagnitude(m_quantity);
        auto* header = new CResultHeader(test::HeaderOf({.processType = kind,
                                                         .comment = NextName(),
                                                         .responseName = NextName(),
                                                         .referenceName = NextName(),
                                                         .processCaption = process.empty() ? NextName() : process,
                                                         .waterfallDimension = dimension}));
        m_document.AjouteResultat(header, result.release(), 0, true);
    }
    // As the factory makes them.
    void AddEmpty()
    {
        for (const std::uint32_t kind : {2U, 4U, 9U, 16U, 18U, 22U, 25U, 29U, 31U, 40U, 42U, 44U, 46U, 119U, 131U})
            for (const int dimension : {0, 1, 2, 5})
                if (auto result = ResultFactory::create(
                        otype::ElementaryResultProcess::fromInteger(static_cast<int>(kind)), dimension, u"Speed"))
                    Add(kind, std::move(result), {}, static_cast<std::uint32_t>(dimension));
    }
    void AddLevels()
    {
        for (const float value : {1.0F / 3.0F, kNan, -kInfinity, 0.0F, 1e-40F})
            Add(9, std::unique_ptr<CResult>(test::NewScalar(9, value)));
        auto broadBand = std::make_unique<CBroadBand>(46, 1, SignalType::Real);
        for (std::int32_t i = 0; i < 3; ++i)
            broadBand->SetLeq(i, {.lastValue = 0.1F, .maxValue = kNan, .minValue = static_cast<float>(-i)});
        Add(46, std::move(broadBand), u"Broad band A, C, Z");
        auto orders = std::make_unique<CSuiviOrdre>(44, 9, SignalType::Real);
        orders->SetOrderValue(7, {.lastValue = 8});
        Add(44, std::move(orders));
    }
    void AddVectors()
    {
        for (const SignalType type : {SignalType::Real, SignalType::Complex}) {
            auto spectrum = std::make_unique<CRegVector>(31, 5, 0, type, 0, true);
            spectrum->SetXMax(0.4F);
            Fill(spectrum->GetRealValue(), 5);
            if (type == SignalType::Complex) Fill(spectrum->GetImValue(), 4);
            Add(31, std::move(spectrum));
        }
        auto bands = std::make_unique<CRegVector>(131, 4, 1, SignalType::OctaveMinMax, 0, true);
        bands->SetXMin(1000);
        for (float* values : {bands->GetRealValue(), bands->GetRealValueMin(), bands->GetRealValueMax()})
            Fill(values, 4);
        bands->SetPonderationGlob(1);
        bands->SetGlobPondLevel(AvgOctaveTarget::Maximum, 7);
        Add(131, std::move(bands));
        auto pair = std::make_unique<CDoubleResult>(new CRegVector(119, 3, 0, SignalType::Real, 0, true),
                                                    new CRegVector(119, 2, 0, SignalType::Complex, 0, true));
        Add(119, std::move(pair));
    }
    // Along references whose names are those of data and of dimensions.
    void AddTrack()
    {
        auto track = std::make_unique<CRefOrderTrack>(22, 3, 2, SignalType::Complex);
        const std::vector<float> values{1, kInfinity, kNan, 4, 5, 0.1F};
        track->SetTables(2, 3, values.data(), values.data());
        for (const char16_t* name : {u"value", u"value_real", u"order", u"value", u"Value"}) {
            auto* reference = new CVectorRef(ResultKind::kReference, 3, name, SignalType::Real);
            for (int i = 0; i < 3; ++i) reference->GetRefValue()[i] = static_cast<float>(i) / 3.0F;
            reference->SetFilled(3);
            track->AddVectorRef(reference);
        }
        track->SetFilled(3);
        track->SetChosenReference(track->GetReferencesList()->front());
        Add(22, std::move(track), u"Orders 1, 2.5x");
    }
    void AddWaterfalls()
    {
        (void)test::AddTiedWaterfall(m_document);
        fuzz::AddResult(m_document, 131, 2);
    }
    [[nodiscard]] bool Save(const char* path) { return m_document.Save(FromUtf8(path).c_str()); }

private:
    static void Fill(float* values, int count)
    {
        for (int i = 0; i < count; ++i)
            values[i] = i == 1 ? kNan : i == 2 ? -kInfinity : static_cast<float>(i - 1) / 7.0F;
    }

    CZMXFFile m_document{true, false};
    CGrandeur* m_quantity = nullptr;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) return 2;
    Sample sample;
    sample.AddLevels();
    sample.AddVectors();
    sample.AddTrack();
    sample.AddWaterfalls();
    sample.AddEmpty();
    return sample.Save(argv[1]) ? 0 : 1;
}
