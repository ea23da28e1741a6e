#include "fuzz/recorded.h"

#include "tests/builders/memory_file.h"

#include <algorithm>
#include <cmath>

namespace ZelmResult::fuzz {

namespace {

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
    test::MemoryDisk disk;
    disk[u"it"].assign(bytes.begin(), bytes.end());
    const auto file = disk.handles()();
    Require(file->Open(u"it", FileHandle::Access::Read), "the machine has room for the input");
    Bounded(bytes.size(), [&] {
        try {
            if (const auto source = open(*file, "it")) Read(*source);
        } catch (const zmxf::RecordingError& error) {
            Require(std::string_view(error.what()).starts_with("cannot read it: "), "a refusal has a reason");
        }
    });
}

} // namespace ZelmResult::fuzz
