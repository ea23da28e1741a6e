#include "tools/zmxf/measuring/spectrum_results.h"

#include "zelmresult/results/kinds.h"
#include "zelmresult/results/reg_vector.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace zmxf {

namespace {

using ZelmResult::CRegVector;
using ZelmResult::CResultHeader;
using ZelmResult::FromUtf8;
using ZelmResult::ResultKind;
using ZelmResult::SignalType;

constexpr std::uint32_t kWeightingA = 1;

struct Axis {
    double min;
    double max;
    std::uint32_t xnOctave = 0;
};

std::unique_ptr<CRegVector> MakeVector(MeasuredDocument& document, std::uint32_t kind, SignalType type,
                                       std::size_t size, const Axis& axis)
{
    auto vector = std::make_unique<CRegVector>(kind, static_cast<std::int32_t>(size), axis.xnOctave, type, 0, true);
    vector->SetXMagnitude(document.Share(FrequencyQuantity()));
    vector->SetXMin(static_cast<float>(axis.min));
    vector->SetXMax(static_cast<float>(axis.max));
    vector->SetXnOctave(axis.xnOctave);
    return vector;
}

// Puts the values into the array and gives the limits of their display.
std::pair<float, float> Fill(float* target, const std::vector<double>& values, std::size_t channel)
{
    std::transform(values.begin(), values.end(), target, [&](double value) { return Stored(value, channel); });
    const auto [least, most] = std::minmax_element(target, target + values.size());
    return {*least, *most};
}

void FillReal(CRegVector& vector, const std::vector<double>& values, std::size_t channel)
{
    const auto [least, most] = Fill(vector.GetRealValue(), values, channel);
    vector.SetRealMin(least);
    vector.SetRealMax(most);
}

void FillImaginary(CRegVector& vector, const std::vector<double>& values, std::size_t channel)
{
    const auto [least, most] = Fill(vector.GetImValue(), values, channel);
    vector.SetImMin(least);
    vector.SetImMax(most);
}

// The RMS values of powers, in SI units.
std::vector<double> Amplitudes(const std::vector<double>& powers, double factorToSI)
{
    std::vector<double> amplitudes(powers.size());
    std::transform(powers.begin(), powers.end(), amplitudes.begin(),
                   [&](double power) { return std::sqrt(power) * factorToSI; });
    return amplitudes;
}

double Factor(const MeasuredDocument& document, std::size_t channel)
{
    return document.recording().calibrations[channel].FactorToSI();
}

Axis LineAxis(const CalibratedRecording& recording) { return {0.0, recording.measured.facts.sampleRate / 2.0}; }

std::string Averaging(const CalibratedRecording& recording)
{
    const Spectra& spectra = recording.measured.spectra;
    return fmt::format("{} window, {} samples, 50 % overlap, {} blocks", WindowName(spectra.window), spectra.blockSize,
                       spectra.blocks);
}

void AddAutospectrum(MeasuredDocument& document, std::size_t channel)
{
    const CalibratedRecording& recording = document.recording();
    const std::vector<double>& power = recording.measured.spectra.power[channel];
    auto spectrum =
        MakeVector(document, ResultKind::kAutospectrum, SignalType::Real, power.size(), LineAxis(recording));
    spectrum->SetMagnitude(document.SignalOf(channel));
    FillReal(*spectrum, Amplitudes(power, Factor(document, channel)), channel);
    auto header =
        document.HeaderOf(channel, ResultKind::kAutospectrum,
                          fmt::format("RMS value of a sine on the line, mean removed; {}", Averaging(recording)));
    header->SetOpUniteAffichage(kShownAsRms);
    document.Add(std::move(header), std::move(spectrum));
}

void AddOctaves(MeasuredDocument& document, std::size_t channel)
{
    const OctaveBands& bands = document.recording().measured.octaves[channel];
    if (bands.power.empty()) return;
    const int last = bands.first + static_cast<int>(bands.power.size()) - 1;
    const double factor = Factor(document, channel);
    auto spectrum = MakeVector(document, ResultKind::kAveragedOctaves, SignalType::Octave, bands.power.size(),
                               {BandCentre(bands.first), BandCentre(last), kThirdOctaves});
    spectrum->SetMagnitude(document.SignalOf(channel));
    FillReal(*spectrum, Amplitudes(bands.power, factor), channel);
    constexpr auto averaged = ZelmResult::AvgOctaveTarget::Averaged;
    const MeasuredRecording& measured = document.recording().measured;
    spectrum->SetGlobLevel(averaged, Stored(measured.levels[channel].acRms * factor, channel));
    spectrum->SetGlobPondLevel(averaged, Stored(std::sqrt(measured.sound[channel].a.whole) * factor, channel));
    spectrum->SetPonderationGlob(kWeightingA);
    auto header = document.HeaderOf(channel, ResultKind::kAveragedOctaves, "1/3-octave spectrum",
                                    "RMS value per band, from spectra of the whole recording; exact base-ten bands, "
                                    "rectangular edges; global levels: AC RMS of the recording, plain and A weighted");
    header->SetOpUniteAffichage(kShownAsRms);
    document.Add(std::move(header), std::move(spectrum));
}

std::unique_ptr<CResultHeader> HeaderOfPair(const MeasuredDocument& document, std::size_t channel, std::uint32_t kind,
                                            const std::string& name, const std::string& formula)
{
    const std::size_t reference = document.recording().measured.spectra.reference;
    auto header =
        document.HeaderOf(channel, kind, name, fmt::format("{}; {}", formula, Averaging(document.recording())));
    header->setReferenceName(FromUtf8(ChannelName(document.recording(), reference)));
    header->SetNumReference(static_cast<std::int32_t>(reference + 1));
    header->SetIdnReference(ChannelIdn(reference));
    return header;
}

void AddCoherence(MeasuredDocument& document, std::size_t channel)
{
    const CalibratedRecording& recording = document.recording();
    const std::vector<double> coherence = Coherence(recording.measured.spectra, channel);
    auto vector = MakeVector(document, ResultKind::kCoherence, SignalType::Real, coherence.size(), LineAxis(recording));
    vector->SetMagnitude(document.Share(NumberQuantity(u"Coherence")));
    FillReal(*vector, coherence, channel);
    document.Add(HeaderOfPair(document, channel, ResultKind::kCoherence, ResultKind::Of(ResultKind::kCoherence).name,
                              "|Gxy|^2 / (Gxx Gyy), x being the reference; 1 by its nature for a single block"),
                 std::move(vector));
}

void AddTransferFunction(MeasuredDocument& document, std::size_t channel)
{
    const CalibratedRecording& recording = document.recording();
    const std::size_t reference = recording.measured.spectra.reference;
    const auto transfer = H1(recording.measured.spectra, channel);
    const double factor = Factor(document, channel) / Factor(document, reference);
    std::vector<double> real(transfer.size());
    std::vector<double> imaginary(transfer.size());
    std::transform(transfer.begin(), transfer.end(), real.begin(), [&](const auto& h) { return h.real() * factor; });
    std::transform(transfer.begin(), transfer.end(), imaginary.begin(),
                   [&](const auto& h) { return h.imag() * factor; });
    auto vector =
        MakeVector(document, ResultKind::kTransferFunction, SignalType::Complex, transfer.size(), LineAxis(recording));
    vector->SetMagnitude(document.Share(QuotientQuantity(*document.SignalOf(channel), *document.SignalOf(reference))));
    FillReal(*vector, real, channel);
    FillImaginary(*vector, imaginary, channel);
    document.Add(HeaderOfPair(document, channel, ResultKind::kTransferFunction, "H1 transfer function",
                              "Gxy / Gxx, x being the reference"),
                 std::move(vector));
}

} // namespace

void AddSpectra(MeasuredDocument& document, std::size_t channel)
{
    const Spectra& spectra = document.recording().measured.spectra;
    AddAutospectrum(document, channel);
    AddOctaves(document, channel);
    if (spectra.cross.empty() || channel == spectra.reference) return;
    AddCoherence(document, channel);
    AddTransferFunction(document, channel);
}

} // namespace zmxf
