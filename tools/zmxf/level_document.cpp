#include "tools/zmxf/level_document.h"

#include "tools/zmxf/failure.h"
#include "tools/zmxf/files.h"
#include "tools/zmxf/program.h"
#include "tools/zmxf/text.h"
#include "zelmresult/document/zmxf_file.h"
#include "zelmresult/results/scalar.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zmxf {

namespace {

using ZelmResult::CResultHeader;
using ZelmResult::CScalar;
using ZelmResult::CZMXFFile;
using ZelmResult::FromUtf8;

enum class Measure { Signal, AboutMean, Ratio };

// The levels as results. What the process types mean is the analyzer's affair and isn't told to readers of its files;
// those that hold one level are 9 to 15 among others, and the processCaption of each header names the level.
struct LevelKind {
    std::uint32_t processType;
    const char* name;
    double Levels::*value;
    Measure measure;
    const char* formula;
};

constexpr std::array kLevelKinds = std::to_array<LevelKind>({
    {9, "Mean", &Levels::mean, Measure::Signal, "mean(x)"},
    {10, "RMS", &Levels::rms, Measure::Signal, "sqrt(mean(x^2))"},
    {11, "AC RMS", &Levels::acRms, Measure::AboutMean, "sqrt(mean((x - mean)^2))"},
    {12, "Peak", &Levels::peak, Measure::Signal, "max|x|"},
    {13, "AC peak", &Levels::acPeak, Measure::AboutMean, "max|x - mean|"},
    {14, "Crest factor", &Levels::crest, Measure::Ratio, "peak / RMS"},
    {15, "Kurtosis", &Levels::kurtosis, Measure::Ratio,
     "mean((x - mean)^4) / mean((x - mean)^2)^2, not reduced by 3: Gaussian noise gives 3"},
});

bool IsOfSignal(const LevelKind& kind) { return kind.measure != Measure::Ratio; }

std::string ChannelName(std::size_t channel) { return "Channel " + std::to_string(channel + 1); }

std::string BaseName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

// Lends the quantity of a level, which the document owns. Channels with the same unit share one.
ZelmResult::CGrandeur* QuantityOf(CZMXFFile& document, const LevelKind& kind, const Calibration& calibration)
{
    auto quantity = IsOfSignal(kind) ? SignalQuantity(calibration) : NumberQuantity(FromUtf8(kind.name));
    for (ZelmResult::CGrandeur* present : document.GetListeGrandeur())
        if (present->Compare(quantity.get()) == 0) return present;
    ZelmResult::CGrandeur* added = quantity.release();
    document.AjouteGrandeur(added, ZelmResult::OwnershipOwned);
    return added;
}

// A document holds single precision.
float Stored(double value, std::size_t channel)
{
    const auto stored = static_cast<float>(value);
    if (std::isinf(stored)) throw Failure("the values of " + ChannelName(channel) + " are too large");
    return stored;
}

// levels are in SI units.
std::unique_ptr<CScalar> MakeResult(const LevelKind& kind, const Levels& levels, std::size_t channel)
{
    auto result = std::make_unique<CScalar>(kind.processType, 1, ZelmResult::SignalType::Real, false);
    const double value = levels.*kind.value;
    const double offset = kind.measure == Measure::AboutMean ? levels.mean : 0.0;
    result->lastValue(Stored(value, channel));
    // A level of the signal has the extremes of the samples, a ratio has but its own value.
    result->maxValue(Stored(IsOfSignal(kind) ? levels.maximum - offset : value, channel));
    result->minValue(Stored(IsOfSignal(kind) ? levels.minimum - offset : value, channel));
    return result;
}

std::unique_ptr<CResultHeader> MakeHeader(const LevelKind& kind, const CalibratedRecording& recording,
                                          std::size_t channel, const std::string& path)
{
    const Calibration& calibration = recording.calibrations[channel];
    const auto number = static_cast<std::uint32_t>(channel + 1);
    auto header = std::make_unique<CResultHeader>();
    header->SetProcessType(kind.processType);
    header->setProcessCaption(FromUtf8(kind.name));
    header->setDate(ZelmResult::OTime(recording.measured.facts.modifiedAt));
    header->setFilename(FromUtf8(path));
    header->setCaption(FromUtf8(BaseName(recording.path)));
    header->setAnalyzerCaption(FromUtf8(ProgramVersion()));
    header->setComment(FromUtf8(std::string(kind.name) + " = " + kind.formula + "; " + calibration.Text()));
    header->setResponseName(FromUtf8(ChannelName(channel)));
    header->SetNumReponse(static_cast<std::int32_t>(number));
    // Module 1 stands for the inputs of the recording, its submodules for the channels.
    header->SetIdnResponse(
        idn::Idn::generateSubmoduleIdn(idn::Analyzer(0), idn::Module(1, 1), idn::Submodule(number, 1)));
    return header;
}

ZelmResult::FILETIME FileTime(std::int64_t seconds)
{
    return ZelmResult::OFileTime::fromOTime(ZelmResult::OTime(seconds)).toFILETIME();
}

void AddLevels(CZMXFFile& document, const CalibratedRecording& recording, std::size_t channel, const std::string& path)
{
    const Calibration& calibration = recording.calibrations[channel];
    const Levels levels = recording.measured.channels[channel].Scaled(calibration.FactorToSI());
    for (const LevelKind& kind : kLevelKinds) {
        auto result = MakeResult(kind, levels, channel);
        result->SetMagnitude(QuantityOf(document, kind, calibration));
        result->SetResultDate(FileTime(recording.measured.facts.modifiedAt));
        document.AjouteResultat(MakeHeader(kind, recording, channel, path).release(), result.release(), 0, false);
    }
}

std::string Duration(const RecordingFacts& facts)
{
    return NumberText(static_cast<double>(facts.frames) / facts.sampleRate) + " s";
}

std::string FactsLine(const CalibratedRecording& recording)
{
    const RecordingFacts& facts = recording.measured.facts;
    return Printable(recording.path) + ": " + Counted(facts.channels, "channel") + ", " +
           std::to_string(facts.sampleRate) + " Hz, " + Counted(static_cast<std::size_t>(facts.frames), "sample") +
           ", " + Duration(facts) + '\n';
}

// One line when all channels are alike.
std::string CalibrationLines(const std::vector<Calibration>& calibrations)
{
    std::string lines;
    for (std::size_t i = 0; i < calibrations.size(); ++i) {
        const bool alike = std::equal(calibrations.begin() + 1, calibrations.end(), calibrations.begin());
        lines += (alike ? "All channels" : ChannelName(i)) + ": " + calibrations[i].Text() + '\n';
        if (alike) break;
    }
    return lines;
}

} // namespace

void WriteLevelDocument(const CalibratedRecording& recording, const std::string& path)
{
    CZMXFFile document(true, false);
    document.AddSysteme(new ZelmResult::CSysteme);
    document.NeedToRemoveEverything(true);
    document.writeHardInfo().addHardInfoData({"zmxf", "", "", ""});
    for (std::size_t channel = 0; channel < recording.calibrations.size(); ++channel)
        AddLevels(document, recording, channel, path);
    OutputFile output(path);
    if (!document.Save(LibraryPath(output.temporary()).text().c_str()))
        throw Failure("cannot write " + Printable(path) + ": the document could not be saved, maybe for want of space");
    output.Commit();
}

std::string LevelTable(const CalibratedRecording& recording)
{
    using Align = TextTable::Align;
    std::vector<Align> columns(kLevelKinds.size() + 2, Align::Right);
    columns[0] = columns[1] = Align::Left;
    TextTable table(columns);
    std::vector<std::string> names{"", "Unit"};
    for (const LevelKind& kind : kLevelKinds) names.emplace_back(kind.name);
    table.AddRow(names);
    for (std::size_t channel = 0; channel < recording.calibrations.size(); ++channel) {
        const Calibration& calibration = recording.calibrations[channel];
        const Levels levels = recording.measured.channels[channel].Scaled(calibration.fullScale);
        std::vector<std::string> row{ChannelName(channel), calibration.IsKnown() ? calibration.unit : "FS"};
        for (const LevelKind& kind : kLevelKinds) row.push_back(NumberText(levels.*kind.value));
        table.AddRow(row);
    }
    return FactsLine(recording) + CalibrationLines(recording.calibrations) + table.Text("  ") +
           "Crest factor and kurtosis have no unit. The kurtosis is not reduced by 3: Gaussian noise gives 3.\n";
}

} // namespace zmxf
