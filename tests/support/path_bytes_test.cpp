// The names of files are restored byte for byte, whatever they are made of.

#include "zelmresult/support/path_bytes.h"

#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

TEST(PathBytes, ComeBackAsTheyWere)
{
    const std::string whole = "/tmp/\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80.zmxf";
    EXPECT_EQ(PathFromBytes(whole), u"/tmp/\u00E9\u20AC\U0001F600.zmxf");
    std::string all;
    for (int byte = 1; byte < 256; ++byte) all += static_cast<char>(byte);
    for (const std::string& path : {whole, all, std::string("a\xFF"), std::string("\xC3"), std::string("\xE2\x82"),
                                    std::string("\xED\xB2\x80"), std::string("\xC0\x80")})
        EXPECT_EQ(PathToBytes(PathFromBytes(path)), path);
    EXPECT_EQ(PathFromBytes("a\xFFz"), (wstring{u'a', 0xDCFF, u'z'}));
}

} // namespace
} // namespace ZelmResult
