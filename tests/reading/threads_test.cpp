// Documents of their own in several threads at once: what the library makes when it is first asked must not be made
// twice. A build under the thread sanitizer says more than the values.

#include "tests/builders/samples.h"
#include "tests/builders/waterfall_samples.h"
#include "zelmresult/quantities/result_strings.h"
#include "zelmresult/quantities/translation.h"
#include "zelmresult/quantities/user_strings.h"
#include "zelmresult/reading/document_reader.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/weighting_window.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace ZelmResult {
namespace {

using namespace test;

// All that a thread saw of its document.
std::string LoadFormatAndSave(int thread)
{
    ZelmResult_initializeUserStrings();
    const wstring path = FromUtf8(::testing::TempDir() + "threads" + std::to_string(thread) + ".zmxf");
    std::string seen;
    for (int round = 0; round < 3; ++round) {
        CZMXFFile document(true, false);
        FillWhole(document);
        (void)AddTiedWaterfall(document, 0);
        document.NeedToRemoveEverything(true);
        std::vector<wstring> reasons;
        (void)document.CheckSave(reasons);
        if (!document.SaveSafely(path.c_str(), true)) return "not saved";
        CZMXFFile again(true, false);
        const bool isLoaded = again.Load(path.c_str(), ZMXFFileLoadScope::all());
        again.NeedToRemoveEverything(true);
        seen += isLoaded ? Summary(again) : "not loaded";
        for (CGrandeur* quantity : again.GetListeGrandeur()) {
            wstring digits, prefix, label;
            for (const bool dB : {false, true})
                quantity->SI_to_string(digits, 0.0123F, 0.0F, 1e-4F, prefix, label, dB, nullptr);
            seen += ToUtf8(digits + prefix + label);
        }
        auto reader = DocumentReader::Open(path);
        if (!reader) return "not opened";
        for (std::size_t i = 0; i < reader->Results().items.size(); ++i)
            if (const auto read = reader->ReadLabelled(i); read)
                seen += ToUtf8(read->information.kind) + std::to_string(read->data.size());
        seen += ToUtf8(CPonderationUnite::GetFunctionName(1));
    }
    (void)std::remove(ToUtf8(path).c_str());
    return seen;
}

TEST(Threads, WithDocumentsOfTheirOwnDoNotDisturbEachOther)
{
    constexpr int count = 4;
    std::vector<std::string> seen(count);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < count; ++thread)
        threads.emplace_back([&seen, thread] { seen[static_cast<std::size_t>(thread)] = LoadFormatAndSave(thread); });
    for (std::thread& thread : threads) thread.join();
    for (const std::string& one : seen) EXPECT_EQ(one, LoadFormatAndSave(count));
    EXPECT_GT(seen.front().size(), 100U);
}

} // namespace
} // namespace ZelmResult
