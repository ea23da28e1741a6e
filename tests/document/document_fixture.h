#pragma once

#include "tests/builders/samples.h"

#include <gtest/gtest.h>
#include <memory>

namespace ZelmResult::test {

// For tests that load documents from memory.
class LoadsDocuments : public ::testing::Test {
protected:
    // Loads a file into a fresh document, which owns what it loads.
    std::unique_ptr<CZMXFFile> Load(const std::vector<char>& bytes, bool good = true,
                                    ZMXFFileLoadScope scope = ZMXFFileLoadScope::all(), bool isLXFFile = false)
    {
        disk[kPath] = bytes;
        auto document = std::make_unique<CZMXFFile>(true, isLXFFile);
        EXPECT_EQ(document->Load(kPath.c_str(), scope), good);
        const std::vector<std::string> messages = Messages(*document); // of a refusal, where a bound was met
        EXPECT_TRUE(messages.empty() || !good || mayReport) << messages.front();
        EXPECT_EQ(document->filename(), good ? kPath : u"");
        document->NeedToRemoveEverything(true);
        return document;
    }

    bool mayReport = false; // a load that succeeds, of what it left out
    const wstring kPath = u"document.zmxf";
    MemoryDisk disk;
    UseBackend use{disk};
};

} // namespace ZelmResult::test
