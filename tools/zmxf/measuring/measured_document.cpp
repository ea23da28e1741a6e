#include "tools/zmxf/measuring/measured_document.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/program_version.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/measuring/warnings.h"
#include "zelmresult/results/kinds.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/temp_file.h"

#include <fmt/format.h>

namespace zmxf {

namespace {

using ZelmResult::CResultHeader;
using ZelmResult::FromUtf8;

constexpr float kShownPrecision = 1e-5F;

ZelmResult::OFILETIME FileTime(std::int64_t seconds)
{
    return ZelmResult::OFileTime::fromOTime(ZelmResult::OTime(seconds)).toFILETIME();
}

// The stretch that was measured, and what the recording says of itself.
std::string Origin(const RecordingFacts& facts)
{
    const std::string stretch = StretchText(facts);
    return fmt::format("{}{}{}{}", stretch.empty() ? "" : "; ", stretch,
                       facts.comment.empty() ? "" : "; the recording says: ", Printable(facts.comment));
}

} // namespace

idn::Idn ChannelIdn(std::size_t channel)
{
    const auto number = static_cast<std::uint32_t>(channel + 1);
    return idn::Idn::generateSubmoduleIdn(idn::Analyzer(0), idn::Module(1, 1), idn::Submodule(number, 1));
}

MeasuredDocument::MeasuredDocument(const CalibratedRecording& recording, std::string path, SliceStorage storage)
    : m_recording(&recording), m_path(std::move(path)), m_storage(storage)
{
    m_document.AddSysteme(std::make_unique<ZelmResult::CSysteme>().release());
    m_document.NeedToRemoveEverything(true);
    m_document.writeHardInfo().addHardInfoData({"zmxf", "", "", ""});
}

ZelmResult::CGrandeur* MeasuredDocument::Share(std::unique_ptr<ZelmResult::CGrandeur> quantity)
{
    for (ZelmResult::CGrandeur* present : m_document.GetListeGrandeur())
        if (present->Compare(quantity.get()) == 0) return present;
    ZelmResult::CGrandeur* added = quantity.release();
    m_document.AjouteGrandeur(added, ZelmResult::OwnershipOwned);
    return added;
}

ZelmResult::CGrandeur* MeasuredDocument::SignalOf(std::size_t channel)
{
    return Share(SignalQuantity(m_recording->calibrations[channel]));
}

std::unique_ptr<CResultHeader> MeasuredDocument::HeaderOf(std::size_t channel, std::uint32_t kind,
                                                          const std::string& formula) const
{
    return HeaderOf(channel, kind, ZelmResult::ResultKind::Of(kind).name, formula);
}

std::unique_ptr<CResultHeader> MeasuredDocument::HeaderOf(std::size_t channel, std::uint32_t kind,
                                                          const std::string& name, const std::string& formula) const
{
    auto header = std::make_unique<CResultHeader>();
    header->SetProcessType(kind);
    header->setProcessCaption(FromUtf8(name));
    header->setDate(ZelmResult::OTime(m_recording->measured.facts.modifiedAt));
    header->setFilename(FromUtf8(m_path));
    header->setCaption(FromUtf8(BaseName(m_recording->path())));
    header->setAnalyzerCaption(FromUtf8(ProgramVersion()));
    header->setComment(
        FromUtf8(fmt::format("{}; {}{}{}", formula, m_recording->calibrations[channel].Text(),
                             Origin(m_recording->measured.facts), AsComment(RecordingWarnings(*m_recording)))));
    header->setResponseName(FromUtf8(ChannelName(*m_recording, channel)));
    header->SetNumReponse(static_cast<std::int32_t>(channel + 1));
    header->SetIdnResponse(ChannelIdn(channel));
    return header;
}

void MeasuredDocument::Add(std::unique_ptr<CResultHeader> header, std::unique_ptr<ZelmResult::CResult> result)
{
    result->SetResultDate(FileTime(m_recording->measured.facts.modifiedAt));
    result->SetAbsPrecisionX(0.0F);
    result->SetRelPrecisionX(kShownPrecision);
    result->SetAbsPrecisionY(0.0F);
    result->SetRelPrecisionY(kShownPrecision);
    m_document.AjouteResultat(header.release(), result.release(), 0, true);
}

std::string MeasuredDocument::Storage() const
{
    if (m_storage == SliceStorage::Memory) return "in memory";
    return fmt::format("in {}", Printable(ZelmResult::CTempFile::GetTempDirectoryW()));
}

void MeasuredDocument::Save()
{
    const SignalsHeld held;
    if (m_document.SaveSafely(LibraryPath(m_path).c_str())) return;
    std::vector<ZelmResult::wstring> reasons;
    m_document.fetchErrors(reasons, true);
    std::string sentences;
    for (const ZelmResult::wstring& reason : reasons) sentences += fmt::format(" {}", ZelmResult::ToUtf8(reason));
    throw Failure("cannot write {}: the document could not be saved.{}", Printable(m_path), sentences);
}

} // namespace zmxf
