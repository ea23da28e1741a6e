#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <gmock/gmock.h>

// The tests run in the locale of their environment, as a host may. Where a comma is expected, a machine that lacks the
// locale must not pass for one that has it.
int main(int argc, char** argv)
{
    std::setlocale(LC_ALL, "");
    const bool expectComma = std::getenv("ZELMRESULT_EXPECT_COMMA") != nullptr;
    if (expectComma && std::strcmp(std::localeconv()->decimal_point, ",") != 0) {
        std::fputs("the decimal separator is no comma: is the locale of LC_ALL installed?\n", stderr);
        return 1;
    }
    ::testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
