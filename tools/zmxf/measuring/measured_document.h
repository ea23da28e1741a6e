#pragma once

#include "tools/zmxf/measuring/calibrated_recording.h"
#include "zelmresult/document/zmxf_file.h"

#include <memory>
#include <string>

namespace zmxf {

// Where the slices of a run-up are kept until they are saved.
enum class SliceStorage { Memory, Disk };

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
    // A header with all that results of the channel have in common, under the name of their kind or another one.
    // formula says how the result was made.
    [[nodiscard]] std::unique_ptr<ZelmResult::CResultHeader> HeaderOf(std::size_t channel, std::uint32_t kind,
                                                                      const std::string& formula) const;
    [[nodiscard]] std::unique_ptr<ZelmResult::CResultHeader>
    HeaderOf(std::size_t channel, std::uint32_t kind, const std::string& name, const std::string& formula) const;
    // The document itself, for what isn't a result.
    ZelmResult::CZMXFFile& document() { return m_document; }
    // Dates the result, and lets it show five digits or six.
    void Add(std::unique_ptr<ZelmResult::CResultHeader> header, std::unique_ptr<ZelmResult::CResult> result);
    void Save();
    // Where slices are kept, for a message: "in memory", or the folder.
    [[nodiscard]] std::string Storage() const;

private:
    const CalibratedRecording* m_recording;
    std::string m_path;
    SliceStorage m_storage;
    ZelmResult::CZMXFFile m_document{true, false};
};

// Kinds of results as the analyzer numbers them, and what their headers and axes say of spectra.
inline constexpr std::uint32_t kThirdOctaves = 1; // the fraction of an octave
inline constexpr std::int32_t kShownAsRms = 1;

// References of a run-up.
inline const ZelmResult::wstring kTime = u"Time";
inline const ZelmResult::wstring kSpeed = u"Speed";

// The identifier of a channel: module 1 is the inputs of the recording, its submodules for the channels.
idn::Idn ChannelIdn(std::size_t channel);

} // namespace zmxf
