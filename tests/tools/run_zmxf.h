#pragma once

#include <nlohmann/json.hpp>

#include <span>
#include <string>
#include <vector>

namespace zmxf::test {

// What a run of the program gave.
struct Outcome {
    int status = -1; // -1 when it didn't exit by itself
    std::string out;
    std::string err;

    [[nodiscard]] nlohmann::json json() const { return nlohmann::json::parse(out); }
};

// Runs zmxf with the arguments, whatever bytes they hold. fileLimit is the size in blocks of 512 bytes past which no
// file may grow, 0 for none; temporary the folder for its temporary files, empty for the usual one.
Outcome zmxf(const std::vector<std::string>& arguments, int fileLimit = 0, const std::string& temporary = {});

// Fails the running test unless the program ended with that status and one line on standard error that holds what.
void expectFailure(const Outcome& run, int status, const std::string& what, const char* file = __builtin_FILE(),
                   int line = __builtin_LINE());

// Writes samples, channels side by side, in a format of libsndfile.
void writeSound(const std::string& path, std::span<const double> samples, int channels, int format,
                int sampleRate = 48000);

} // namespace zmxf::test
