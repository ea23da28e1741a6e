#include "tools/signal_processing/recording.h"

#include "tools/signal_processing/recordings/sound_file.h"
#include "tools/signal_processing/recordings/uff_file.h"
#include "zelmresult/support/path_bytes.h"
#include "zelmresult/support/system_error.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <system_error>

namespace zmxf {

namespace {

constexpr std::size_t kSamplesPerBlock = 65536;
constexpr std::int64_t kUnknownLength = std::numeric_limits<std::int64_t>::max();

std::unique_ptr<ZelmResult::FileHandle> OpenFile(const std::string& path)
{
    auto file = ZelmResult::MakePlatformFileHandle();
    if (file->Open(ZelmResult::PathFromBytes(path), ZelmResult::FileHandle::Access::Read)) return file;
    const std::error_code reason = ZelmResult::LastSystemError();
    ThrowUnreadable(path, reason ? reason.message() : "not a regular file");
}

std::unique_ptr<SampleSource> OpenSource(ZelmResult::FileHandle& file, const RecordingSource& source)
{
    auto opened = OpenUffFile(file, source.path);
    if (opened == nullptr) opened = OpenSoundFile(file, source.path);
    if (opened != nullptr && source.csv.IsGiven())
        ThrowUnreadable(source.path, "it is no CSV, and tells its format and rate itself");
    if (opened != nullptr) return opened;
    if (auto csv = OpenCsvFile(file, source.path, source.csv)) return csv;
    ThrowUnreadable(source.path, "Format not recognised: neither a sound file (WAV, FLAC, AIFF and others) nor UFF "
                                 "(datasets 58 and 58b) nor CSV (a line of names or none, then rows of numbers)");
}

} // namespace

void ThrowUnreadable(const std::string& path, const std::string& reason)
{
    throw RecordingError(fmt::format("cannot read {}: {}", path, reason));
}

RecordingReader::RecordingReader(const RecordingSource& source)
    : m_path(source.path), m_file(OpenFile(source.path)), m_source(OpenSource(*m_file, source)),
      m_facts(m_source->facts())
{
    m_facts.modifiedAt = m_file->ModifiedAt().value_or(0);
    m_block.resize(std::max<std::size_t>(kSamplesPerBlock / m_facts.channels, 1) * m_facts.channels);
    ChooseFrames(source);
}

void RecordingReader::ChooseFrames(const RecordingSource& source)
{
    const auto seconds = [this](std::int64_t frames) { return static_cast<double>(frames) / m_facts.sampleRate; };
    m_end = m_facts.frames;
    const std::int64_t whole = m_facts.frames;
    const auto frameAt = [&](double second) {
        const double frame = std::round(second * m_facts.sampleRate);
        if (whole != kUnknownLength && frame > static_cast<double>(whole))
            ThrowUnreadable(m_path, fmt::format("it lasts {:.6g} s, and ends before {:.6g} s", seconds(whole), second));
        return static_cast<std::int64_t>(std::min(frame, 9e18));
    };
    if (source.start > 0.0 || source.end) m_facts.framesInFile = whole;
    m_facts.firstFrame = frameAt(source.start);
    if (source.end) m_end = frameAt(*source.end);
    m_facts.frames = std::max<std::int64_t>(m_end - m_facts.firstFrame, 0);
    if (whole == kUnknownLength && !source.end) m_facts.frames = kUnknownLength;
}

void RecordingReader::Rewind()
{
    m_source->Rewind();
    m_next = 0;
}

std::span<const double> RecordingReader::NextBlock()
{
    const std::size_t channels = m_facts.channels;
    while (m_next < m_end) {
        const auto frames = static_cast<std::int64_t>(m_source->Read(m_block));
        if (frames == 0) break;
        const std::int64_t first = std::max(m_facts.firstFrame - m_next, std::int64_t{0});
        const std::int64_t last = std::min(frames, m_end - m_next);
        m_next += frames;
        if (first < last)
            return {m_block.data() + static_cast<std::size_t>(first) * channels,
                    static_cast<std::size_t>(last - first) * channels};
    }
    return {};
}

} // namespace zmxf
