#include "tools/zmxf/measuring/run_up_results.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/progress.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/measuring/order_results.h"
#include "tools/zmxf/measuring/warnings.h"
#include "zelmresult/results/kinds.h"
#include "zelmresult/results/result_factory.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/ref_waterfall.h"
#include "zelmresult/waterfalls/wtf_octave.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <functional>

namespace zmxf {

namespace {

using ZelmResult::CGrandeur;
using ZelmResult::CListVectorRef;
using ZelmResult::CRefWaterfall;
using ZelmResult::CWaterfall;
using ZelmResult::CWtfOctave;
using ZelmResult::ResultKind;
using ZelmResult::SignalType;
using ZelmResult::wstring;
namespace WaterfallDimension = ZelmResult::WaterfallDimension;

const wstring kSliceNumber = u"Slice number";

// The references of a run-up, in the list that all of its results share.
class RunUpReferences {
public:
    explicit RunUpReferences(MeasuredDocument& document)
        : m_document(document), m_runUp(document.recording().measured.runUp),
          m_list(std::make_unique<CListVectorRef>(true))
    {
    }

    // Makes the result of a reference; value returns it slice by slice. chosen is the reference that it is shown along.
    template <class Value>
    void Add(const wstring& name, std::uint32_t kind, CGrandeur* quantity, const wstring& chosen, Value value)
    {
        const auto process = otype::ElementaryResultProcess::fromInteger(static_cast<std::int32_t>(kind));
        auto made = ZelmResult::ResultFactory::create(process, WaterfallDimension::kReference, name);
        auto& series = dynamic_cast<CRefWaterfall&>(*made);
        m_list->AddVectorRef(series.GetMyVecteurReference());
        series.SetReferenceList(m_list.get());
        series.SetProcessType(kind);
        series.SetMagnitude(quantity);
        const auto size = static_cast<std::int32_t>(m_runUp.slices.size());
        series.SetSize(size);
        series.SetLastBlockNb(-1);
        for (std::int32_t slice = 0; slice < size; ++slice) (void)series.AddRefValue(value(slice), slice, false);
        series.SetFilled(size);
        const auto [least, most] = std::minmax_element(series.GetRealValue(), series.GetRealValue() + size);
        series.SetYMin(*least);
        series.SetYMax(*most);
        m_pending.push_back({name, kind, chosen, std::move(made)});
    }

    [[nodiscard]] CListVectorRef* list() const { return m_list.get(); }

    // The list is the results' from now on.
    void Finish()
    {
        for (Pending& pending : m_pending) {
            const std::string warnings =
                pending.name == kSpeed ? AsComment(SpeedWarnings(m_document.recording())) : std::string();
            auto header = m_document.HeaderOf(m_runUp.tacho, pending.kind, "Reference",
                                              fmt::format("of the slices of a run-up{}", warnings));
            header->setResponseName(pending.name);
            header->SetWaterfallDimension(WaterfallDimension::kReference);
            header->setChosenReference(pending.chosen);
            dynamic_cast<CRefWaterfall&>(*pending.result).SetReference(pending.chosen, nullptr, nullptr);
            m_document.Add(std::move(header), std::move(pending.result));
        }
        m_list.release()->SetIsWaterfallReferenceManagerList(false);
    }

private:
    struct Pending {
        wstring name;
        std::uint32_t kind;
        wstring chosen;
        std::unique_ptr<ZelmResult::CResult> result;
    };

    MeasuredDocument& m_document;
    const RunUp& m_runUp;
    std::unique_ptr<CListVectorRef> m_list; // a manager list, which lives until it is let go
    std::vector<Pending> m_pending;
};

void AddReferences(MeasuredDocument& document, RunUpReferences& references)
{
    const std::vector<RunUpSlice>& slices = document.recording().measured.runUp.slices;
    const auto at = [&slices](std::int32_t slice) -> const RunUpSlice& {
        return slices[static_cast<std::size_t>(slice)];
    };
    references.Add(kSliceNumber, ResultKind::kReferenceValues, document.Share(NumberQuantity(kSliceNumber)), kTime,
                   [](std::int32_t slice) { return static_cast<float>(slice); });
    references.Add(kTime, ResultKind::kReferenceValues, document.Share(TimeQuantity()), kSliceNumber,
                   [at](std::int32_t slice) { return static_cast<float>(at(slice).seconds); });
    references.Add(kSpeed, ResultKind::kTacho, document.Share(SpeedQuantity()), kTime,
                   [at](std::int32_t slice) { return static_cast<float>(at(slice).speed); });
}

// A slice for every block of the run-up, in memory or on disk as the library was set.
void PrepareSlices(CWaterfall& waterfall, MeasuredDocument& document, std::size_t channel)
{
    const auto slices = static_cast<std::int32_t>(document.recording().measured.runUp.slices.size());
    (void)waterfall.AllocateTabBlockNumber(slices);
    for (std::int32_t slice = 0; slice < slices; ++slice) {
        const std::int32_t place = waterfall.AddBlock(slice, -1);
        if (place < 0)
            throw Failure("there is no room for the slices of {} {}", ChannelName(channel), document.Storage());
        waterfall.SetBlocNumber(place, slice);
    }
    waterfall.SetFilled(slices);
    waterfall.SetMagnitude(document.SignalOf(channel));
    waterfall.SetXMagnitude(document.Share(FrequencyQuantity()));
    waterfall.SetReference(kSpeed, nullptr, nullptr);
}

// The two waterfalls of a channel while they are filled.
class ChannelWaterfalls {
public:
    ChannelWaterfalls(MeasuredDocument& document, CListVectorRef* list, std::size_t channel)
        : m_document(document), m_list(list), m_channel(channel),
          m_factor(document.recording().calibrations[channel].FactorToSI()),
          m_orders(document.recording().measured.runUp, document.recording().measured.facts.sampleRate)
    {
        const MeasuredRecording& measured = document.recording().measured;
        const std::size_t lines = measured.runUp.blockSize / 2 + 1;
        m_lines = Make<CWaterfall>(ResultKind::kAutospectrum, lines, SignalType::Real, true);
        m_lines->SetXMax(static_cast<float>(measured.facts.sampleRate / 2.0));
        m_values.resize(lines);
    }

    void Add(std::size_t slice, const Spectra& spectra)
    {
        const auto slot = static_cast<std::int32_t>(slice);
        const std::vector<double>& power = spectra.power[m_channel];
        Store(*m_lines, slot, power);
        m_orders.Add(slice, power);
        const OctaveBands bands = GatherBands(spectra, m_channel, m_document.recording().measured.facts.sampleRate);
        if (bands.power.empty()) return;
        if (m_bands == nullptr) MakeBands(bands);
        Store(*m_bands, slot, bands.power);
        double sum = 0.0;
        for (const double linePower : power) sum += linePower;
        m_bands->SetGlobalLevelByIndex(0, slot, Amplitude(sum / NoiseBandwidth(spectra.window)));
        m_bands->SetGlobalLevelPondByIndex(0, slot, Amplitude(bands.aWeighted));
    }

    [[nodiscard]] const OrderTracker& orders() const { return m_orders; }
    void Finish()
    {
        Finish(
            std::move(m_lines), ResultKind::kAutospectrum, "Autospectra of a run-up",
            fmt::format("per slice and line the RMS value of a sine, mean removed; {} window, blocks overlap by half",
                        WindowName(m_document.recording().measured.runUp.window)));
        if (m_bands != nullptr)
            Finish(std::move(m_bands), ResultKind::kAveragedOctaves, "1/3-octave spectra of a run-up",
                   "RMS value per band, summed from the lines of a slice; global levels: of all lines, and the A "
                   "weighted sum of the bands");
    }

private:
    template <class Waterfall, class... Allocate>
    std::unique_ptr<Waterfall> Make(std::uint32_t kind, std::size_t points, SignalType type, Allocate... allocate)
    {
        const auto slices = static_cast<std::int32_t>(m_document.recording().measured.runUp.slices.size());
        auto waterfall = std::make_unique<Waterfall>(kind, kind, static_cast<std::int32_t>(points), slices, m_list,
                                                     type, allocate...);
        PrepareSlices(*waterfall, m_document, m_channel);
        return waterfall;
    }

    void MakeBands(const OctaveBands& bands)
    {
        m_bands = Make<CWtfOctave>(ResultKind::kAveragedOctaves, bands.power.size(), SignalType::Octave);
        m_bands->SetXnOctave(kThirdOctaves);
        m_bands->SetXMin(static_cast<float>(BandCentre(bands.first)));
        m_bands->SetXMax(static_cast<float>(BandCentre(bands.first + static_cast<int>(bands.power.size()) - 1)));
    }

    [[nodiscard]] float Amplitude(double power) const { return Stored(std::sqrt(power) * m_factor, m_channel); }

    void Store(CWaterfall& waterfall, std::int32_t slot, const std::vector<double>& powers)
    {
        m_values.resize(powers.size());
        std::transform(powers.begin(), powers.end(), m_values.begin(),
                       [this](double power) { return Amplitude(power); });
        waterfall.GetTabData(0, slot).CopySliceFrom(m_values.data(), static_cast<std::int32_t>(m_values.size()));
        const auto [least, most] = std::minmax_element(m_values.begin(), m_values.end());
        waterfall.SetYMin(slot == 0 ? *least : std::min(*least, waterfall.GetRealMin()));
        waterfall.SetYMax(slot == 0 ? *most : std::max(*most, waterfall.GetRealMax()));
    }

    void Finish(std::unique_ptr<CWaterfall> waterfall, std::uint32_t kind, const std::string& name,
                const std::string& formula)
    {
        if (waterfall->HasLostSlices())
            throw Failure("the slices of {} did not fit {}", ChannelName(m_channel), m_document.Storage());
        auto header = m_document.HeaderOf(m_channel, kind, name, formula);
        header->SetWaterfallDimension(WaterfallDimension::kWaterfall);
        header->setChosenReference(kSpeed);
        header->SetOpUniteAffichage(kShownAsRms);
        m_document.Add(std::move(header), std::move(waterfall));
    }

    MeasuredDocument& m_document;
    CListVectorRef* m_list;
    std::size_t m_channel;
    double m_factor;
    OrderTracker m_orders;
    std::unique_ptr<CWaterfall> m_lines;
    std::unique_ptr<CWtfOctave> m_bands; // made with the first slice, which says how many there are; may stay null
    std::vector<float> m_values;
};

} // namespace

void AddRunUp(MeasuredDocument& document)
{
    const CalibratedRecording& recording = document.recording();
    RunUpReferences references(document);
    AddReferences(document, references);
    std::vector<ChannelWaterfalls> channels;
    for (std::size_t channel = 0; channel < recording.calibrations.size(); ++channel)
        channels.emplace_back(document, references.list(), channel);
    const auto addSlice = [&channels](std::size_t slice, const Spectra& spectra) {
        for (ChannelWaterfalls& channel : channels) channel.Add(slice, spectra);
    };
    {
        Progress progress(fmt::format("cutting {} into slices", Printable(recording.path())));
        ForEachSlice(*recording.reader, recording.measured, addSlice, std::ref(progress));
    }
    references.Finish();
    for (ChannelWaterfalls& channel : channels) channel.Finish();
    for (std::size_t channel = 0; channel < channels.size(); ++channel)
        AddOrderTracks(document, channel, channels[channel].orders());
}

} // namespace zmxf
