// Times the reader beside plain reads, for scripts/bench-python: reading FILE NUMBER ROUNDS prints the least
// milliseconds to open the document and read that result, to read it once more, and to read the bytes of its data into
// fresh memory.

#include "zelmresult/reading/document_reader.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

using namespace ZelmResult;

namespace {

template <class Work>
double LeastMilliseconds(int rounds, const Work& work)
{
    double least = 1e300;
    for (int round = 0; round < rounds; ++round) {
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
        least = std::min(least, taken.count());
    }
    return least;
}

struct FileCloser {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
};

void ReadPlainly(const char* path, const ChunkPlace& place)
{
    const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path, "rb"));
    const std::unique_ptr<char[]> fresh(new char[place.size]);
    (void)std::setvbuf(file.get(), nullptr, _IONBF, 0);
    if (std::fseek(file.get(), place.offset + 8, SEEK_SET) != 0 ||
        std::fread(fresh.get(), 1, place.size, file.get()) != place.size)
        std::abort();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4) return 2;
    const std::size_t number = std::stoul(argv[2]);
    const int rounds = std::stoi(argv[3]);
    auto kept = DocumentReader::Open(FromUtf8(argv[1]));
    if (!kept || kept->Results().items.size() <= number) return 1;
    const ChunkPlace place = kept->Results().items[number].data;
    const auto read = [number](DocumentReader& reader) {
        if (!reader.ReadLabelled(number)) std::abort();
    };
    const double opened = LeastMilliseconds(rounds, [&] {
        auto fresh = DocumentReader::Open(FromUtf8(argv[1]));
        read(*fresh);
    });
    const double again = LeastMilliseconds(rounds, [&] { read(*kept); });
    const double plain = LeastMilliseconds(rounds, [&] { ReadPlainly(argv[1], place); });
    std::printf("%.4f %.4f %.4f\n", opened, again, plain);
}
