#include "web/binding/bytes_document.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/selection.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/showing/recording_json.h"
#include "tools/zmxf/showing/settings_json.h"
#include "tools/zmxf/showing/verification_json.h"

#include "zelmresult/storage/memory_backend.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/support/text.h"

namespace zmxf::web {

namespace {

using ZelmResult::CMmioFile;
using ZelmResult::LabelledQuantity;
using ZelmResult::LabelledResult;
using ZelmResult::ReadError;

std::string TextOf(const ReadError& error) { return Printable(error.Text()); }

// All files are those bytes for as long as this lives.
class EveryFileIs {
public:
    explicit EveryFileIs(std::span<const char> bytes) : m_former(CMmioFile::DefaultBackend())
    {
        CMmioFile::SetDefaultBackend(ZelmResult::ReadMemory(bytes));
    }
    EveryFileIs(const EveryFileIs&) = delete;
    EveryFileIs& operator=(const EveryFileIs&) = delete;
    ~EveryFileIs() { CMmioFile::SetDefaultBackend(m_former); }

private:
    ZelmResult::BackendFactory m_former;
};

LabelledResult Checked(ZelmResult::Outcome<LabelledResult> read)
{
    if (!read) throw Failure(TextOf(read.error()));
    return *std::move(read);
}

Json SystemsJson(const ZelmResult::FileHeader& head, const std::vector<ZelmResult::ListedResult>& results)
{
    std::map<std::int32_t, std::size_t> counts;
    for (const ZelmResult::ListedResult& listed : results) ++counts[listed.system];
    for (std::int32_t system = 0; system < std::min<std::int32_t>(head.GetSystemeNumber(), 1000); ++system)
        counts.try_emplace(system);
    Json json = Json::array();
    for (const auto& [system, count] : counts) json.push_back({{"number", system}, {"results", count}});
    return json;
}

} // namespace

BytesDocument::BytesDocument(std::span<char> bytes, std::string name)
    : m_bytes(bytes.data()), m_size(bytes.size()), m_name(std::move(name))
{
    if (m_size == 0) throw Failure("{} is empty", Printable(m_name));
    auto reader = ZelmResult::DocumentReader::OpenBytes(this->bytes(), ZelmResult::FromUtf8(m_name));
    if (!reader && reader.error().kind == ReadError::Kind::NotADocument)
        throw Failure("{} is no result document", Printable(m_name));
    if (!reader) throw Failure("{} cannot be read: {}", Printable(m_name), TextOf(reader.error()));
    m_reader = *std::move(reader);
}

Json BytesDocument::InfoJson(KnownQuantities& quantities)
{
    Json json{{"name", Printable(m_name)}, {"damages", Json::array()}, {"quantities", Json::array()}};
    const auto note = [&json](const std::optional<ReadError>& damage) {
        if (damage) json["damages"].push_back(TextOf(*damage));
    };
    note(m_reader->CutOff());
    const auto version = m_reader->version();
    json["version"] = version ? Json(*version) : Json(nullptr);
    if (!version) json["damages"].push_back("its version cannot be read");
    json["type"] = m_reader->head().GetType();
    json["contents"] = ContentNames(m_reader->head().GetType());
    const auto& results = m_reader->Results();
    note(results.damage);
    json["systems"] = SystemsJson(m_reader->head(), results.items);
    const auto hardware = m_reader->ReadHardware();
    note(hardware.damage);
    json["hardware"] = HardwareJson(hardware.items);
    const auto& stored = m_reader->Quantities();
    note(stored.damage);
    for (const auto& one : stored.items) {
        Json quantity = quantities.Describe(LabelledQuantity::Of(one.quantity.get()));
        quantity["code"] = CodeText(one);
        json["quantities"].push_back(std::move(quantity));
    }
    const auto comments = m_reader->ReadComments();
    note(comments.damage);
    json["comments"] = Json::array();
    for (const auto& comment : comments.items) json["comments"].push_back(JsonText(comment));
    return json;
}

Json BytesDocument::HeaderOf(std::size_t number)
{
    const auto& listed = m_reader->Results().items.at(number);
    Json json = HeaderJson(listed, number);
    json["kind"] = KindName(*listed.header);
    return json;
}

Json BytesDocument::HeadersJson()
{
    Json json = Json::array();
    for (std::size_t number = 0; number < m_reader->Results().items.size(); ++number) json.push_back(HeaderOf(number));
    return json;
}

LabelledResult BytesDocument::Read(std::size_t number) { return Checked(m_reader->ReadLabelled(number)); }

LabelledResult BytesDocument::ReadSlices(std::size_t number) { return Checked(m_reader->ReadSlices(number)); }

LabelledResult BytesDocument::ReadSlice(std::size_t number, std::int64_t slice)
{
    return Checked(m_reader->ReadSlice(number, {ZelmResult::SliceChoice::By::Index, slice}));
}

Json BytesDocument::SettingsJson()
{
    Json json = Json::array();
    for (const auto& stored : m_reader->ReadSettings()) json.push_back(zmxf::SettingsJson(stored, ValueTexts::With));
    return json;
}

Json BytesDocument::RecordingsJson()
{
    Json json = Json::array();
    for (const auto& stored : m_reader->ReadRecordings()) json.push_back(RecordingJson(stored, ValueTexts::With));
    return json;
}

Json BytesDocument::VerifyJson() const
{
    const EveryFileIs these(bytes());
    return VerificationJson(VerifyBytes(bytes(), m_name));
}

} // namespace zmxf::web
