#include "tools/signal_processing/octave_bands.h"
#include "tools/signal_processing/peaks.h"
#include "tools/signal_processing/spectra.h"

#include <cmath>
#include <gmock/gmock.h>
#include <numbers>
#include <numeric>
#include <random>

namespace zmxf {

namespace {

using ::testing::ElementsAre;
using Signal = std::vector<double>;
using Complex = std::complex<double>;

Signal noise(std::size_t count, unsigned seed)
{
    std::mt19937 random(seed);
    std::normal_distribution<double> normal(0.3, 1.0);
    Signal samples(count);
    for (double& x : samples) x = normal(random);
    return samples;
}

double mean(const Signal& x) { return std::accumulate(x.begin(), x.end(), 0.0) / static_cast<double>(x.size()); }

Spectra measure(const std::vector<Signal>& channels, std::size_t size, std::int64_t most, std::size_t reference)
{
    std::vector<double> means;
    for (const Signal& channel : channels) means.push_back(mean(channel));
    SpectrumMeter meter(means, size, Window::Hann, most, reference);
    for (std::size_t i = 0; i < channels.front().size(); ++i)
        for (std::size_t c = 0; c < channels.size(); ++c) meter.Add(c, channels[c][i]);
    return std::move(meter).Result();
}

// One line of the transform of a windowed block, by its definition.
Complex line(const Signal& x, std::size_t start, std::size_t size, std::size_t k)
{
    Complex sum;
    for (std::size_t n = 0; n < size; ++n) {
        const double turn = 2.0 * std::numbers::pi * static_cast<double>(n) / static_cast<double>(size);
        const double window = 0.5 * (1.0 - std::cos(turn));
        sum += window * (x[start + n] - mean(x)) * std::polar(1.0, -turn * static_cast<double>(k));
    }
    return sum;
}

// The averaged cross power of two channels, by its definition; with itself the power of a channel.
Complex crossPower(const Signal& x, const Signal& y, std::size_t size, std::size_t blocks, std::size_t k)
{
    Complex sum;
    for (std::size_t b = 0; b < blocks; ++b)
        sum += std::conj(line(x, b * size / 2, size, k)) * line(y, b * size / 2, size, k);
    const double gain = static_cast<double>(size) / 2.0;
    return sum * (k == 0 || k == size / 2 ? 1.0 : 2.0) / (gain * gain * static_cast<double>(blocks));
}

} // namespace

TEST(Spectra, AgreeWithTheDefinition)
{
    constexpr std::size_t size = 90;
    const std::vector<Signal> channels{noise(500, 1), noise(500, 2)};
    for (const std::int64_t most : {std::int64_t{3}, SpectrumMeter::kAllBlocks}) {
        const Spectra spectra = measure(channels, size, most, 1);
        const std::size_t blocks = most == 3 ? 3 : 10; // the last one starts at 405
        ASSERT_EQ(spectra.blocks, static_cast<std::int64_t>(blocks));
        ASSERT_EQ(spectra.power[0].size(), size / 2 + 1);
        for (std::size_t k = 0; k <= size / 2; ++k) {
            for (std::size_t c = 0; c < 2; ++c) {
                const double power = crossPower(channels[c], channels[c], size, blocks, k).real();
                EXPECT_NEAR(spectra.power[c][k], power, 1e-12) << "line " << k;
            }
            const Complex cross = crossPower(channels[1], channels[0], size, blocks, k);
            EXPECT_LT(std::abs(spectra.cross[0][k] - cross), 1e-12) << "line " << k;
        }
    }
    EXPECT_EQ(measure(channels, 512, SpectrumMeter::kAllBlocks, 0).blocks, 0) << "shorter than a block";
}

TEST(Spectra, TellWhatAChannelOwesToTheReference)
{
    const Signal input = noise(200000, 3);
    const Signal disturbance = noise(200000, 4);
    Signal output(input.size());
    for (std::size_t i = 1; i < output.size(); ++i) output[i] = 2.0 * input[i - 1] + disturbance[i];
    const Signal silence(input.size(), 0.25);
    const Spectra spectra = measure({output, input, silence}, 64, SpectrumMeter::kAllBlocks, 1);
    const auto transfer = H1(spectra, 0);
    const auto coherence = Coherence(spectra, 0);
    for (std::size_t k = 2; k < 31; ++k) {
        const Complex expected = std::polar(2.0, -2.0 * std::numbers::pi * static_cast<double>(k) / 64.0);
        EXPECT_LT(std::abs(transfer[k] - expected), 0.1) << "line " << k;
        EXPECT_NEAR(coherence[k], 0.8, 0.03) << "line " << k;
    }
    EXPECT_EQ(Coherence(spectra, 2)[5], 0.0);
    EXPECT_EQ(H1(measure({output, silence}, 64, SpectrumMeter::kAllBlocks, 1), 0)[5], 0.0) << "a silent reference";
}

TEST(Spectra, BlockSizesAreEvenAndFast)
{
    for (const std::size_t size : {16U, 18U, 8192U, 48000U, 1048576U}) EXPECT_TRUE(IsBlockSize(size)) << size;
    for (const std::size_t size : {0U, 8U, 15U, 125U, 22U, 44100U, 2097152U}) EXPECT_FALSE(IsBlockSize(size)) << size;
    EXPECT_EQ(BlockSizeAtLeast(44100), 45000U);
    EXPECT_EQ(BlockSizeAtMost(44100), 43740U);
    EXPECT_EQ(BlockSizeAtMost(15), 0U);
    EXPECT_EQ(BlockSizeAtLeast(1048577), 0U);
}

TEST(OctaveBands, GatherLinesBetweenTheirEdges)
{
    Spectra spectra;
    spectra.blockSize = 8000;
    spectra.power.assign(1, std::vector<double>(4001)); // 1 Hz apart
    spectra.power[0][1122] = 1.5;                       // the edge between 1 kHz and 1.25 kHz is 1122.02 Hz
    spectra.power[0][1123] = 3.0;
    spectra.power[0][100] = 6.0;
    const OctaveBands bands = GatherBands(spectra, 0, 8000.0);
    EXPECT_EQ(bands.first, -18);        // 16 Hz: 15, 16 and 17 Hz
    ASSERT_EQ(bands.power.size(), 24U); // 3.15 kHz ends at 3548 Hz, 4 kHz past the half of the sample rate
    EXPECT_DOUBLE_EQ(bands.power[18], 1.0);
    EXPECT_DOUBLE_EQ(bands.power[19], 2.0);
    EXPECT_DOUBLE_EQ(bands.power[8], 4.0);
    EXPECT_NEAR(bands.aWeighted, 1.0 + 2.0 * std::pow(10.0, 0.06) + 4.0 * std::pow(10.0, -1.914), 0.02);
    EXPECT_TRUE(GatherBands(spectra, 0, 8e9).power.empty() || GatherBands(spectra, 0, 8e9).first > 40);
}

TEST(Peaks, RiseAboveTheirNeighbours)
{
    const Signal lines{9.0, 1.0, 3.0, 3.0, 2.0, 5.0, 4.0, 4.5, 8.0};
    EXPECT_THAT(HighestPeaks(lines, 5), ElementsAre(5, 2)); // the ends are no peaks, nor the second of two equal lines
    EXPECT_THAT(HighestPeaks(lines, 1), ElementsAre(5));
    EXPECT_THAT(HighestBands(lines, 3), ElementsAre(0, 8, 5));
    EXPECT_TRUE(HighestPeaks({}, 3).empty());
}

// A blow near the beginning, of which a Hann window leaves nothing and a uniform one all.
TEST(Spectra, OfABlowNeedAUniformWindow)
{
    const auto measured = [](Window window, std::size_t at) {
        SpectrumMeter meter({0.0}, 1000, window);
        for (std::size_t i = 0; i < 1400; ++i) meter.Add(0, i == at ? 100.0 : 0.0);
        return std::move(meter).Result();
    };
    const Spectra uniform = measured(Window::Uniform, 20);
    EXPECT_EQ(uniform.kept[0], 1.0);
    // Each line holds the same share, those at both ends half of it; together they are the mean square of the block.
    EXPECT_NEAR(uniform.power[0][100], 2.0 * 100.0 * 100.0 / (1000.0 * 1000.0), 1e-12);
    EXPECT_NEAR(std::accumulate(uniform.power[0].begin(), uniform.power[0].end(), 0.0) /
                    NoiseBandwidth(Window::Uniform),
                10.0, 1e-9);
    EXPECT_LT(measured(Window::Hann, 20).kept[0], 1e-4);
    EXPECT_NEAR(measured(Window::Hann, 500).kept[0], 1.0, 1e-9);
    EXPECT_EQ(measured(Window::Uniform, 1200).kept[0], 0.0) << "after the last whole block";
}

} // namespace zmxf
