#include "fuzz/recorded.h"

#include <algorithm>
#include <cmath>
#include <sys/mman.h>
#include <unistd.h>

namespace ZelmResult::fuzz {

namespace {

// A file in memory that lasts as long as the object.
class MemoryDescriptor {
public:
    explicit MemoryDescriptor(const Data& bytes) : m_descriptor(::memfd_create("recording", MFD_CLOEXEC))
    {
        Require(::write(m_descriptor, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()),
                "the machine has room for the input");
    }
    MemoryDescriptor(const MemoryDescriptor&) = delete;
    MemoryDescriptor& operator=(const MemoryDescriptor&) = delete;
    ~MemoryDescriptor() { (void)::close(m_descriptor); }
    [[nodiscard]] int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

std::vector<double> AllSamples(zmxf::SampleSource& source)
{
    constexpr std::size_t framesAtOnce = 7;
    std::vector<double> samples;
    std::vector<double> block(framesAtOnce * source.facts().channels);
    for (std::size_t frames = source.Read(block); frames != 0; frames = source.Read(block)) {
        Require(frames <= framesAtOnce, "a block holds the frames that are read");
        samples.insert(samples.end(), block.begin(),
                       block.begin() + static_cast<std::ptrdiff_t>(frames * source.facts().channels));
    }
    return samples;
}

bool AreAlike(const std::vector<double>& a, const std::vector<double>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](double x, double y) { return x == y || (std::isnan(x) && std::isnan(y)); });
}

void Read(zmxf::SampleSource& source)
{
    const zmxf::RecordingFacts& facts = source.facts();
    Require(facts.channels > 0 && facts.said.size() == facts.channels, "a recording has channels");
    Require(facts.sampleRate >= zmxf::kLowestRate && facts.sampleRate <= zmxf::kHighestRate, "a rate is one");
    const std::vector<double> samples = AllSamples(source);
    Require(samples.size() == static_cast<std::size_t>(facts.frames) * facts.channels, "all samples come");
    source.Rewind();
    Require(AreAlike(AllSamples(source), samples), "the same samples come again");
}

} // namespace

void CheckRecording(const Data& bytes, const OpenSource& open)
{
    const MemoryDescriptor file(bytes);
    Bounded(bytes.size(), [&] {
        try {
            if (const auto source = open(file.get(), "it")) Read(*source);
        } catch (const zmxf::RecordingError& error) {
            Require(std::string_view(error.what()).starts_with("cannot read it: "), "a refusal has a reason");
        }
    });
}

} // namespace ZelmResult::fuzz
