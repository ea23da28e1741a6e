#include "tools/zmxf/measuring/measured_document.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/measuring/warnings.h"
#include "tools/zmxf/verbs/program.h"
#include "zelmresult/results/kinds.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/temp_file.h"
#include "zelmresult/waterfalls/waterfall_buffer_array.h"

#include <cmath>

namespace zmxf {

namespace {

using ZelmResult::CResultHeader;
using ZelmResult::FromUtf8;

constexpr float kShownPrecision = 1e-5F;

ZelmResult::FILETIME FileTime(std::int64_t seconds)
{
    return ZelmResult::OFileTime::fromOTime(ZelmResult::OTime(seconds)).toFILETIME();
}

} // namespace

std::string BaseName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string ChannelName(std::size_t channel) { return "Channel " + std::to_string(channel + 1); }

idn::Idn ChannelIdn(std::size_t channel)
{
    const auto number = static_cast<std::uint32_t>(channel + 1);
    return idn::Idn::generateSubmoduleIdn(idn::Analyzer(0), idn::Module(1, 1), idn::Submodule(number, 1));
}

float Stored(double value, std::size_t channel)
{
    const auto stored = static_cast<float>(value);
    if (!std::isfinite(stored) && !std::isnan(value))
        throw Failure("the values of " + ChannelName(channel) + " are too large");
    return stored;
}

bool IsOverloaded(const CalibratedRecording& recording, std::size_t channel)
{
    const bool isGiven = recording.calibrations[channel].hasFullScale;
    const std::optional<double> end = recording.measured.facts.fullScale;
    return (end || isGiven) && recording.measured.levels[channel].peak >= end.value_or(1.0);
}

double AboveFloor(double weighted, const MeasuredRecording& measured, std::size_t channel)
{
    constexpr double floor = 1e-10;
    return weighted < floor * measured.levels[channel].peak ? 0.0 : weighted;
}

MeasuredDocument::MeasuredDocument(const CalibratedRecording& recording, std::string path, SliceStorage storage)
    : m_recording(&recording), m_path(std::move(path)), m_storage(storage)
{
    m_document.AddSysteme(std::make_unique<ZelmResult::CSysteme>().release());
    m_document.NeedToRemoveEverything(true);
    m_document.writeHardInfo().addHardInfoData({"zmxf", "", "", ""});
}

ZelmResult::CGrandeur* MeasuredDocument::Share(std::unique_ptr<ZelmResult::CGrandeur> quantity)
{
    for (ZelmResult::CGrandeur* present : m_document.GetListeGrandeur())
        if (present->Compare(quantity.get()) == 0) return present;
    ZelmResult::CGrandeur* added = quantity.release();
    m_document.AjouteGrandeur(added, ZelmResult::OwnershipOwned);
    return added;
}

ZelmResult::CGrandeur* MeasuredDocument::SignalOf(std::size_t channel)
{
    return Share(SignalQuantity(m_recording->calibrations[channel]));
}

std::unique_ptr<CResultHeader> MeasuredDocument::HeaderOf(std::size_t channel, std::uint32_t kind,
                                                          const std::string& formula) const
{
    return HeaderOf(channel, kind, ZelmResult::ResultKind::Of(kind).name, formula);
}

std::unique_ptr<CResultHeader> MeasuredDocument::HeaderOf(std::size_t channel, std::uint32_t kind,
                                                          const std::string& name, const std::string& formula) const
{
    auto header = std::make_unique<CResultHeader>();
    header->SetProcessType(kind);
    header->setProcessCaption(FromUtf8(name));
    header->setDate(ZelmResult::OTime(m_recording->measured.facts.modifiedAt));
    header->setFilename(FromUtf8(m_path));
    header->setCaption(FromUtf8(BaseName(m_recording->path)));
    header->setAnalyzerCaption(FromUtf8(ProgramVersion()));
    header->setComment(FromUtf8(formula + "; " + m_recording->calibrations[channel].Text() +
                                AsComment(RecordingWarnings(*m_recording))));
    header->setResponseName(FromUtf8(ChannelName(channel)));
    header->SetNumReponse(static_cast<std::int32_t>(channel + 1));
    header->SetIdnResponse(ChannelIdn(channel));
    return header;
}

void MeasuredDocument::Add(std::unique_ptr<CResultHeader> header, std::unique_ptr<ZelmResult::CResult> result)
{
    result->SetResultDate(FileTime(m_recording->measured.facts.modifiedAt));
    result->SetAbsPrecisionX(0.0F);
    result->SetRelPrecisionX(kShownPrecision);
    result->SetAbsPrecisionY(0.0F);
    result->SetRelPrecisionY(kShownPrecision);
    m_document.AjouteResultat(header.release(), result.release(), 0, true);
}

std::string MeasuredDocument::Storage() const
{
    if (m_storage == SliceStorage::Memory) return " in memory";
    return " in " + Printable(ZelmResult::CTempFile::GetTempDirectoryW());
}

void MeasuredDocument::Save()
{
    const SignalsHeld held;
    if (m_document.SaveSafely(LibraryPath(m_path).c_str())) return;
    std::vector<ZelmResult::wstring> reasons;
    m_document.fetchErrors(reasons, true);
    std::string text = "cannot write " + Printable(m_path) + ": the document could not be saved.";
    for (const ZelmResult::wstring& reason : reasons) text += ' ' + ZelmResult::ToUtf8(reason);
    throw Failure(text);
}

void CheckDocumentHolds(std::size_t channels, std::size_t blockSize, std::size_t slices)
{
    constexpr std::size_t mostResults = 10000; // beyond, two results have the same code
    constexpr std::size_t mostBytes = 2147483647;
    constexpr std::size_t levels = 7 + 2; // and those that gather many
    constexpr std::size_t spectra = 4;
    constexpr std::size_t overviews = 2;
    constexpr std::size_t alongRunUp = 3;
    constexpr std::size_t overviewBytes = Overview::kMostPoints * (2 + 6) * sizeof(float);
    constexpr std::size_t arrays = 5; // of a line each: the transfer function is complex
    constexpr std::size_t bytesBeside = 2000;
    constexpr std::size_t bytesBesideSlice = 400; // the records around it, and its bands
    const std::size_t lines = blockSize / 2 + 1;
    const std::size_t results = levels + spectra + overviews + (slices == 0 ? 0 : alongRunUp);
    const std::size_t bytesPerChannel = lines * arrays * sizeof(float) + results * bytesBeside + overviewBytes +
                                        slices * (lines * sizeof(float) + bytesBesideSlice);
    if (channels * results > mostResults)
        throw Failure("a document holds no more than " + std::to_string(mostResults) + " results, which " +
                      std::to_string(channels) + " channels exceed");
    if (channels * bytesPerChannel > mostBytes)
        throw Failure("a document holds no more than 2 GiB, which spectra of " + std::to_string(channels) +
                      " channels exceed with blocks of " + std::to_string(blockSize) +
                      (slices == 0 ? "" : " and a run-up of " + Counted(slices, "slice")));
}

namespace {

// As long as it lives, the library keeps new slices there.
class StorageScope {
public:
    using Factory = ZelmResult::CWaterfallBufferFactory;

    explicit StorageScope(SliceStorage storage)
        : m_former(Factory::SetStrategy(storage == SliceStorage::Disk ? ZelmResult::EStrategy::StrategyDisk
                                                                      : ZelmResult::EStrategy::StrategyAuto))
    {
    }
    StorageScope(const StorageScope&) = delete;
    StorageScope& operator=(const StorageScope&) = delete;
    ~StorageScope() { (void)Factory::SetStrategy(m_former); }

private:
    ZelmResult::EStrategy m_former;
};

} // namespace

void WriteMeasuredDocument(const CalibratedRecording& recording, const std::string& path, SliceStorage storage)
{
    const StorageScope scope(storage);
    MeasuredDocument document(recording, path, storage);
    for (std::size_t channel = 0; channel < recording.calibrations.size(); ++channel) AddLevels(document, channel);
    for (std::size_t channel = 0; channel < recording.measured.octaves.size(); ++channel) AddSpectra(document, channel);
    if (!recording.measured.runUp.slices.empty()) AddRunUp(document);
    for (std::size_t channel = 0; channel < recording.calibrations.size(); ++channel) {
        AddGlobalLevel(document, channel);
        AddBroadBand(document, channel);
        AddOverviews(document, channel);
    }
    AddRecording(document);
    AddSettings(document);
    document.Save();
}

} // namespace zmxf
