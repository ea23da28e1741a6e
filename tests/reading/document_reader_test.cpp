#include "tests/builders/reader_check.h"
#include "tests/builders/samples.h"
#include "tests/builders/waterfall_samples.h"
#include "zelmresult/reading/document_reader.h"

#include <cstring>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;

class Reader : public ::testing::Test {
protected:
    const wstring kPath = u"document.zmxf";
    MemoryDisk disk;
    UseBackend use{disk};
};

} // namespace

TEST_F(Reader, GivesWhatALoadGivesOfFilesCutOrSpoiledAnywhere)
{
    CZMXFFile tied(true, false);
    (void)AddTiedWaterfall(tied);
    tied.NeedToRemoveEverything(true);
    for (const auto& whole : {DataFile("whole.zmxf"), DataFile("whole_branches.zmxf"),
                              DataFile("whole_references.zmxf"), SavedBytes(tied)}) {
        disk[kPath] = whole;
        EXPECT_EQ(DifferenceFromLoad(kPath), "");
        for (std::size_t place = 0; place + 4 <= whole.size() && !HasFailure(); ++place) {
            SCOPED_TRACE(place);
            disk[kPath].assign(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(place));
            EXPECT_EQ(DifferenceFromLoad(kPath), "");
            for (const std::uint32_t word : {0U, 0x7FFFFFFFU, 0xFFFFFFFFU, 0x30303030U}) {
                disk[kPath] = whole;
                std::memcpy(disk[kPath].data() + place, &word, sizeof word);
                EXPECT_EQ(DifferenceFromLoad(kPath), "");
            }
        }
    }
}

} // namespace ZelmResult
