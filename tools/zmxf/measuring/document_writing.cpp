#include "tools/zmxf/measuring/document_writing.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/measuring/analysis_settings.h"
#include "tools/zmxf/measuring/level_results.h"
#include "tools/zmxf/measuring/overview_results.h"
#include "tools/zmxf/measuring/recording_description.h"
#include "tools/zmxf/measuring/run_up_results.h"
#include "tools/zmxf/measuring/sound_results.h"
#include "tools/zmxf/measuring/spectrum_results.h"
#include "zelmresult/waterfalls/waterfall_buffer_array.h"

#include <fmt/format.h>

namespace zmxf {

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
        throw Failure("a document holds no more than {} results, which {} channels exceed", mostResults, channels);
    if (channels * bytesPerChannel > mostBytes)
        throw Failure("a document holds no more than 2 GiB, which spectra of {} channels exceed with blocks of {}{}",
                      channels, blockSize,
                      slices == 0 ? "" : fmt::format(" and a run-up of {}", Counted(slices, "slice")));
}

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
