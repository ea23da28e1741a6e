// The small records of a document: header, project, hardware, comments, and the messages.

#include "tests/builders/record_check.h"
#include "tests/document/samples.h"
#include "zelmresult/document/error_message.h"
#include "zelmresult/support/text.h"

#include <functional>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;

// A record's reader-writer within a file that holds nothing else.
template <class ReaderWriter, class Record>
RecordCheck<Record> CheckInFile(std::uint16_t newest, std::function<void(Record&, std::uint16_t)> expect)
{
    return {.name = ReaderWriter::kRecordName,
            .lowest = 0x100,
            .newest = newest,
            .write =
                [](CMmioFile& file, Record& record) {
                    OMMCKINFO form;
                    return file.CreateChunkRIFF(form) && ReaderWriter().Write(file, record) && file.ExitChunk(form);
                },
            .read = [](CMmioFile& file, Record& record) { return ReaderWriter().Read(file, record); },
            .expect = expect,
            .silentReads = -1};
}

template <class ReaderWriter, class Record>
bool ReadRecord(Record& record, const Bytes& chunk)
{
    return readFrom(fileOf(chunk).data(), [&](CMmioFile& file) { return ReaderWriter().Read(file, record); });
}

template <class ReaderWriter, class Record>
std::vector<char> RecordBytes(const Record& record)
{
    return written([&](CMmioFile& file) { return ReaderWriter().Write(file, record); });
}

TEST(Records, FileHeader)
{
    FileHeader header;
    header.SetSystemeNumber(0x0102);
    header.SetType(4);
    header.AddType(0x80000001);
    const Bytes stored = head(0x0102, 0x80000005);
    expectBytes(RecordBytes<FileHeaderMmioReaderWriter>(header), stored);
    auto check = CheckInFile<FileHeaderMmioReaderWriter, FileHeader>(0x100, [](FileHeader& read, std::uint16_t) {
        EXPECT_EQ(read.GetSystemeNumber(), 0x0102);
        EXPECT_EQ(read.GetType(), 0x80000005U);
        EXPECT_TRUE(read.HasType(6) && !read.HasType(8));
    });
    check.silentReads = 0;
    checkRecord<FileHeader>(header, check);

    FileHeader older;
    EXPECT_TRUE((ReadRecord<FileHeaderMmioReaderWriter>(
        older, Bytes{}.chunk("JUNK", stored).chunk("HEAD", Bytes{}.u16(0xFF).u16(3).u32(4)))));
    EXPECT_TRUE(older.GetSystemeNumber() == 0 && older.GetType() == 0);
    EXPECT_FALSE((ReadRecord<FileHeaderMmioReaderWriter>(older, Bytes{}.list("JUNK", stored))));
}

TEST(Records, ProjectInfo)
{
    ProjectInfo info;
    info.setProjectName(u"project");
    info.setUserName(u"user");
    info.setMeasurementName(u"measurement");
    const Bytes data = Bytes{}.u16(0x100).text(u"measurement").text(u"project").text(u"user");
    expectBytes(RecordBytes<ProjectInfoMmioReaderWriter>(info), Bytes{}.chunk("PRJI", data));
    checkRecord<ProjectInfo>(
        info, CheckInFile<ProjectInfoMmioReaderWriter, ProjectInfo>(0x100, [](ProjectInfo& read, std::uint16_t) {
            EXPECT_EQ(read.projectName(), u"project");
            EXPECT_EQ(read.userName(), u"user");
            EXPECT_EQ(read.measurementName(), u"measurement");
        }));
    ProjectInfo older;
    EXPECT_TRUE((ReadRecord<ProjectInfoMmioReaderWriter>(older, Bytes{}.chunk("PRJI", Bytes{}.u16(0xFF).text(u"x")))));
    EXPECT_EQ(older.measurementName(), u"");
}

TEST(Records, HardwareOfEveryVersion)
{
    CHardInfo info;
    info.addHardInfoData({"name", "SN", "disk SN", "disk \xC3\xA9"});
    info.addHardInfoData({"\xE9", "", "3", "4"}); // no UTF-8: the character of the byte
    expectBytes(RecordBytes<CHardInfoMmioReaderWriter>(info),
                hardware({u"name", u"SN", u"disk SN", u"disk \u00E9", u"\u00E9", u"", u"3", u"4"}));
    checkRecord<CHardInfo>(
        info, CheckInFile<CHardInfoMmioReaderWriter, CHardInfo>(0x200, [](CHardInfo& read, std::uint16_t version) {
            strHardInfo entry;
            ASSERT_EQ(read.getNbHardInfo(), 2);
            ASSERT_TRUE(read.getHardInfoData(0, entry));
            EXPECT_EQ(entry, (strHardInfo{"name", "SN", "disk SN", version < 0x200 ? "" : "disk \xC3\xA9"}));
            ASSERT_TRUE(read.getHardInfoData(1, entry));
            EXPECT_EQ(entry, (strHardInfo{"\xC3\xA9", "", "3", version < 0x200 ? "" : "4"}));
            for (const std::int32_t outside : {-1, 2, INT32_MAX}) EXPECT_FALSE(read.getHardInfoData(outside, entry));
            EXPECT_EQ(entry.DiskSN, "3") << "left alone";
        }));
}

TEST(Records, HardwareOfAnyCount)
{
    const Bytes entry = Bytes{}.narrow("a").narrow("b").narrow("c").narrow("d");
    const auto stored = [&](std::uint16_t version, std::int32_t count, int entries) {
        Bytes data = Bytes{}.u16(version).i32(count);
        for (int i = 0; i < entries; ++i) data.append(entry);
        return Bytes{}.chunk("HRDI", data);
    };
    struct Row {
        const char* name;
        Bytes chunk;
        bool read;
        std::int32_t entries;
    };
    const Row rows[] = {{"whole", stored(0x200, 2, 2), true, 2},
                        {"newer", stored(0xFFFF, 2, 2), true, 2},
                        {"older", stored(0xFF, 2, 2), true, 0},
                        {"none", stored(0x200, 0, 2), true, 0},
                        {"negative", stored(0x200, -1, 2), true, 0},
                        {"least", stored(0x200, INT32_MIN, 2), true, 0},
                        {"fewer than counted", stored(0x200, 3, 2), false, 2},
                        {"huge", stored(0x200, INT32_MAX, 2), false, 2},
                        {"huge over nothing", stored(0x200, INT32_MAX, 0), false, 0},
                        {"missing", Bytes{}.chunk("HRDJ", entry), false, 0}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        CHardInfo info;
        info.addHardInfoData({"former", "", "", ""});
        EXPECT_EQ((ReadRecord<CHardInfoMmioReaderWriter>(info, row.chunk)), row.read);
        EXPECT_EQ(info.getNbHardInfo(), row.entries);
    }
}

TEST(Records, CommentsAreWrittenInCapitalsAndReadInSmallLetters)
{
    CComment comment;
    comment.setComment(u"text");
    const auto save = [&](CMmioFile& file) { return comment.Save(&file); };
    expectBytes(written(save), Bytes{}.chunk("CMTS", Bytes{}.text(u"text")));
    EXPECT_EQ(dumpOf(save), "CComment(53544d43)\n Size : 0000000c\nComment : text\n");
    EXPECT_FALSE(readFrom(written(save), [&](CMmioFile& file) { return comment.Load(&file); }));

    const Bytes stored = Bytes{}.chunk("cmts", Bytes{}.narrow("odd")).chunk("CMTS", Bytes{}.text(u"never"));
    std::string read;
    readInto(
        [&](CMmioFile& file) {
            while (comment.Load(&file)) read += ToUtf8(comment.comment()) + ";";
            return file.mmioSeek(0, OMMIO_SEEK_END);
        },
        Bytes{stored}.chunk("cmts", Bytes{}.text(u"zwei")));
    EXPECT_EQ(read, "odd;zwei;");
}

TEST(Records, MessagesHaveTheirExactTexts)
{
    const wstring path = u"C:\\%2\\%1.zmxf"; // what is put in is not filled in again
    const std::string shown = "C:\\%2\\%1.zmxf";
    const std::pair<wstring, std::string> rows[] = {
        {ErrorMessage::RIFF_CreateFile(path), "The file " + shown + " could not be created"},
        {ErrorMessage::RIFF_OpenFile(path), "The file " + shown + " could not be opened"},
        {ErrorMessage::RIFF_CreateChunkRIFF(path), "The RIFF chunck in file " + shown + " could not be created"},
        {ErrorMessage::RIFF_CreateChunkUnit(path), "The UNIT chunk in file " + shown + " could not be created"},
        {ErrorMessage::RIFF_SaveHeader(path), "An error occured saving file header in file " + shown},
        {ErrorMessage::RIFF_SaveProjectInfo(path), "An error occured saving project information in file " + shown},
        {ErrorMessage::RIFF_SaveMagnitude(path, u"%1"), "The magnitude %1 could not be saved in file " + shown},
        {ErrorMessage::RIFF_ExitChunkUnit(path), "An error occured exiting UNIT chunk in file " + shown},
        {ErrorMessage::RIFF_SaveSystem(path, u"16"), "An error occured saving system 16 in file " + shown},
        {ErrorMessage::RIFF_SaveComment(path), "An error occured saving comment in file " + shown},
        {ErrorMessage::RIFF_SaveHardInfo(path), "An error occured saving analyzer information in file " + shown},
        {ErrorMessage::RIFF_ExitChunk(path), "An error ocuured exiting RIFF chunk in file " + shown},
    };
    for (const auto& [message, text] : rows) EXPECT_EQ(ToUtf8(message), text);
}

} // namespace
} // namespace ZelmResult
