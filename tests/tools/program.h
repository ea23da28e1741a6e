#pragma once

#include "tests/builders/memory_file.h"
#include "tests/tools/run_zmxf.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <numbers>
#include <sndfile.h>

// The program as a user runs it, on a recording and a document in a folder of their own.

namespace zmxf::test {

inline constexpr int kWav16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
inline constexpr int kWavDouble = SF_FORMAT_WAV | SF_FORMAT_DOUBLE;
inline constexpr int kFlac = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;

// A second of a sine of half of full scale beside a constant of a quarter.
inline std::vector<double> sineAndConstant()
{
    std::vector<double> samples;
    for (int i = 0; i < 48000; ++i) {
        samples.push_back(0.5 * std::sin(2.0 * std::numbers::pi * 100.0 * i / 48000.0));
        samples.push_back(0.25);
    }
    return samples;
}

inline std::vector<std::string> namesIn(const ZelmResult::test::TempFolder& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        names.push_back(entry.path().filename().string());
    return names;
}

inline void write(const std::string& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

class Program : public ::testing::Test {
protected:
    Outcome Show(const std::string& number, const std::vector<std::string>& options = {}) const
    {
        std::vector<std::string> arguments{"show", document, number};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return zmxf(arguments);
    }
    nlohmann::json Shown(int number) const { return Show(std::to_string(number), {"--json"}).json(); }
    nlohmann::json Json(const std::string& verb) const { return zmxf({verb, document, "--json"}).json(); }
    // Of what is in the recording, unless samples are given.
    Outcome Analyze(std::vector<std::string> options, std::span<const double> samples = {}, int channels = 1,
                    int format = kWavDouble, int sampleRate = 48000) const
    {
        if (!samples.empty()) writeSound(recording, samples, channels, format, sampleRate);
        options.insert(options.begin(), {"analyze", recording, "-o", document});
        return zmxf(options);
    }

    const ZelmResult::test::TempFolder folder;
    std::string recording = folder.file("sine.wav");
    std::string document = folder.file("sine.zmxf");
};

} // namespace zmxf::test
