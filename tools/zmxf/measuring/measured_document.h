#pragma once

#include "tools/signal_processing/measured_recording.h"
#include "tools/signal_processing/orders.h"
#include "tools/zmxf/measuring/calibration.h"
#include "zelmresult/document/zmxf_file.h"

#include <memory>
#include <string>
#include <vector>

// From measured channels to a result document.

namespace zmxf {

// A recording whose values have a meaning.
struct CalibratedRecording {
    std::string path;
    MeasuredRecording measured;
    std::vector<Calibration> calibrations; // one per channel
};

// Whether a channel reached full scale: the end of an integer format, or that of a range that was given.
bool IsOverloaded(const CalibratedRecording& recording, std::size_t channel);

// Throws Failure when the results of so many channels are more than a document holds; to be asked before they are
// measured. slices are those of a run-up.
void CheckDocumentHolds(std::size_t channels, std::size_t blockSize, std::size_t slices);

// Where the slices of a run-up are kept until they are saved.
enum class SliceStorage { Memory, Disk };

// Saves the levels of all channels, then the spectra of one channel after the other, a run-up, the level results and
// overviews of one channel after the other, the description of the recording and the settings of the analysis. Throws
// Failure; the document has its name only when it is whole.
void WriteMeasuredDocument(const CalibratedRecording& recording, const std::string& path, SliceStorage storage);

// A document that is being filled with the results of a recording.
class MeasuredDocument {
public:
    // Keeps a pointer to the recording. path is where the document will be saved.
    MeasuredDocument(const CalibratedRecording& recording, std::string path, SliceStorage storage);

    [[nodiscard]] const CalibratedRecording& recording() const { return *m_recording; }
    // Lends the document's quantity that equals the given one, which it takes when it has none.
    ZelmResult::CGrandeur* Share(std::unique_ptr<ZelmResult::CGrandeur> quantity);
    // The quantity of a channel's samples.
    ZelmResult::CGrandeur* SignalOf(std::size_t channel);
    // A header with all that results of the channel have in common. formula tells how the result was made.
    [[nodiscard]] std::unique_ptr<ZelmResult::CResultHeader>
    HeaderOf(std::size_t channel, std::uint32_t processType, const std::string& name, const std::string& formula) const;
    // The document itself, for what isn't a result.
    ZelmResult::CZMXFFile& document() { return m_document; }
    // Dates the result, and lets it show five digits or six.
    void Add(std::unique_ptr<ZelmResult::CResultHeader> header, std::unique_ptr<ZelmResult::CResult> result);
    void Save();
    // Where slices are kept, for a message: " in memory", or the folder.
    [[nodiscard]] std::string Storage() const;

private:
    const CalibratedRecording* m_recording;
    std::string m_path;
    SliceStorage m_storage;
    ZelmResult::CZMXFFile m_document{true, false};
};

// Kinds of results as the analyzer numbers them, and what their headers and axes say of spectra.
inline constexpr std::uint32_t kAutospectrum = 2;
inline constexpr std::uint32_t kAveragedOctaves = 24;
inline constexpr std::uint32_t kThirdOctaves = 1; // the fraction of an octave
inline constexpr std::int32_t kShownAsRms = 1;

// References of a run-up.
inline const ZelmResult::wstring kTime = u"Time";
inline const ZelmResult::wstring kSpeed = u"Speed";

std::string ChannelName(std::size_t channel);
std::string BaseName(const std::string& path);
// The identifier of a channel: module 1 stands for the inputs of the recording, its submodules for the channels.
idn::Idn ChannelIdn(std::size_t channel);

// A value of a channel in the single precision of documents. Throws Failure when it is too large.
float Stored(double value, std::size_t channel);

// A weighted RMS value or peak of a channel, 0 below a floor of 200 dB under its highest sample: what filters leave of
// their decay in digital silence is no level.
double AboveFloor(double weighted, const MeasuredRecording& measured, std::size_t channel);

// What WriteMeasuredDocument adds for a channel.
void AddLevels(MeasuredDocument& document, std::size_t channel);
void AddSpectra(MeasuredDocument& document, std::size_t channel);
void AddGlobalLevel(MeasuredDocument& document, std::size_t channel);
void AddBroadBand(MeasuredDocument& document, std::size_t channel);
void AddOverviews(MeasuredDocument& document, std::size_t channel);
// What it adds for a run-up: the references of the slices, and two waterfalls and the order tracks of each channel.
// Reads the recording again. Throws Failure.
void AddRunUp(MeasuredDocument& document);
void AddOrderTracks(MeasuredDocument& document, std::size_t channel, const OrderTracker& tracker);
// What it adds for the whole: where the samples lie and what they mean, and how they were analyzed.
void AddRecording(MeasuredDocument& document);
void AddSettings(MeasuredDocument& document);

} // namespace zmxf
