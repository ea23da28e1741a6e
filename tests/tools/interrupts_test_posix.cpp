#include "tests/tools/program.h"

#include <csignal>
#include <cstdio>
#include <sys/wait.h>
#include <unistd.h>

namespace zmxf::test {

namespace {

using ::testing::UnorderedElementsAre;
using ZelmResult::test::readDiskFile;

using Measuring = Program;

} // namespace

// The old file stays until the new one is whole, whenever the program is ended.
TEST_F(Measuring, InterruptsLeaveAWholeDocument)
{
    ASSERT_EQ(zmxf({"demo", folder.path()}).status, 0);
    document = folder.file("demo.zmxf");
    recording = folder.file("demo.wav");
    const std::string former = readDiskFile(document);
    for (const bool isWriting : {false, true}) {
        const pid_t process = ::fork();
        ASSERT_GE(process, 0);
        if (process == 0) {
            (void)std::freopen("/dev/null", "w", stdout);
            ::execl(ZMXF_PROGRAM, "zmxf", "analyze", recording.c_str(), "--tacho", "3", "-o", document.c_str(),
                    nullptr);
            ::_exit(127);
        }
        int status = 0;
        pid_t ended = 0;
        while (isWriting && ended == 0 && namesIn(folder).size() < 3) ended = ::waitpid(process, &status, WNOHANG);
        if (ended == 0) {
            EXPECT_EQ(::kill(process, SIGINT), 0);
            EXPECT_EQ(::waitpid(process, &status, 0), process);
            EXPECT_TRUE(WIFSIGNALED(status)) << "it didn't end by the signal";
        }
        EXPECT_THAT(namesIn(folder), UnorderedElementsAre("demo.wav", "demo.zmxf"));
        EXPECT_TRUE(isWriting || readDiskFile(document) == former);
        EXPECT_EQ(zmxf({"verify", document}).status, 0);
    }
}

} // namespace zmxf::test
