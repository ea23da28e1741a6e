#include "zelmresult/waterfalls/temp_file.h"

#include "zelmresult/storage/temporary_files.h"
#include "zelmresult/support/path_bytes.h"
#include "zelmresult/support/text.h"

namespace ZelmResult {

namespace {

// Paths that mean a failure. On some platforms they are ordinary file names, so nothing may open them.
constexpr char kInvalid[] = R"(Z:\_invalid\_path\)";
constexpr std::size_t kLongestDirectory = 1039;
constexpr int kMostNames = 65000;

// The first free one of many names; none where files can't be made.
template <class NameOf>
std::string Reserve(NameOf nameOf)
{
    for (int i = 0; i < kMostNames; ++i) {
        std::string name = nameOf(i);
        const Creation creation = CreateExclusively(name);
        if (creation == Creation::Made) return name;
        if (creation == Creation::Failed) break;
    }
    return {};
}

std::string FourDigits(int number)
{
    const std::string digits = ToUtf8(ToHex8(static_cast<std::uint32_t>(number)));
    return digits.substr(digits.size() - 4);
}

} // namespace

CTempFile::CTempFile(const std::string& extension, const std::string& prefix)
{
    const std::string directory = TemporaryDirectory();
    if (directory.empty() || directory.size() > kLongestDirectory) {
        m_isReserved = false;
        m_path = std::string(kInvalid) + "_GetTempPathA_failed.tmp";
    } else if (extension.empty()) {
        m_path = Reserve([&](int i) { return directory + prefix.substr(0, 3) + FourDigits(i + 1) + ".tmp"; });
        m_isReserved = !m_path.empty();
        if (!m_isReserved) m_path = std::string(kInvalid) + "_GetTempFileNameA_failed.tmp";
    } else {
        m_path = Reserve([&](int i) { return directory + prefix + std::to_string(i) + '.' + extension; });
        m_isReserved = !m_path.empty();
        if (!m_isReserved) m_path = std::string(kInvalid) + "_GetTempFileName_ZELM_failed." + extension;
    }
}

CTempFile::~CTempFile()
{
    if (m_deleteOnDestroy && m_isReserved) (void)RemoveFile(m_path);
}

wstring CTempFile::GetPathNameW() const { return PathFromBytes(m_path); }

wstring CTempFile::GetTempDirectoryW()
{
    const std::string directory = TemporaryDirectory();
    const bool fits = !directory.empty() && directory.size() <= kLongestDirectory;
    return PathFromBytes(fits ? directory : std::string(kInvalid) + "_GetTempPathA_failed");
}

} // namespace ZelmResult
