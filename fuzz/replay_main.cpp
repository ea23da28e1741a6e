#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool replay(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        std::fprintf(stderr, "%s: cannot be read\n", file.string().c_str());
        return false;
    }
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
    const std::vector<std::uint8_t> data(bytes.begin(), bytes.end());
    std::fprintf(stderr, "%s\n", file.string().c_str()); // before the run, so that a crash names its file
    LLVMFuzzerTestOneInput(data.data(), data.size());
    return true;
}

} // namespace

// Hands each file of the arguments, and each file below a folder among them, to the fuzz target.
int main(int argc, char** argv)
{
    bool good = true;
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path path = argv[i];
        if (!std::filesystem::is_directory(path)) {
            good = replay(path) && good;
            ++count;
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
            if (entry.is_regular_file()) {
                good = replay(entry.path()) && good;
                ++count;
            }
        }
    }
    if (count == 0) {
        std::fputs("no file to replay\n", stderr);
    }
    return good && count > 0 ? 0 : 1;
}
