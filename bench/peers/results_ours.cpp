#include "bench/peers/result_set.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/zelmresult.h"

namespace peers {

namespace {

using namespace ZelmResult;

wstring Wide(const std::string& text) { return FromUtf8(text); }

std::unique_ptr<CResultHeader> NewHeader(const Header& plain)
{
    auto header = std::make_unique<CResultHeader>();
    const Place& place = plain.places.front();
    const idn::Idn channel = idn::Idn::generateSubmoduleIdn(idn::Analyzer(place[0]), idn::Module(place[1], place[2]),
                                                            idn::Submodule(place[3], place[4]));
    header->SetProcessType(static_cast<std::uint32_t>(plain.numbers.front()));
    header->SetNumReponse(plain.numbers[kResponseChannel]);
    header->setDate(OTime(plain.date));
    header->SetIdnResultGenerator(channel);
    header->SetIdnFrontEndSource(channel);
    header->SetIdnResponse(channel);
    header->SetIdnReference(channel);
    header->SetTrackDuRecorder(channel);
    header->SetInputEnregistre(channel);
    header->setComment(Wide(plain.texts[0]));
    header->setResponseName(Wide(plain.texts[1]));
    header->setReferenceName(Wide(plain.texts[2]));
    header->setFilename(Wide(plain.texts[3]));
    header->setCaption(Wide(plain.texts[4]));
    header->setProcessCaption(Wide(plain.texts[5]));
    header->setAnalyzerCaption(Wide(plain.texts[6]));
    header->setIdentificationName(Wide(plain.texts[7]));
    header->setCoupeCaption(Wide(plain.texts[8]));
    header->setChosenReference(Wide(plain.texts[9]));
    return header;
}

std::unique_ptr<CRegVector> NewSpectrum(CGrandeur* quantity, int number)
{
    auto spectrum = std::make_unique<CRegVector>(2, kPoints, 0, SignalType::Complex, 0, true);
    spectrum->SetMagnitude(quantity);
    for (std::size_t point = 0; point < kPoints; ++point) {
        spectrum->GetRealValue()[point] = ValueAt(number, point).real();
        spectrum->GetImValue()[point] = ValueAt(number, point).imag();
    }
    return spectrum;
}

CGrandeur* AddQuantity(CZMXFFile& document)
{
    auto* quantity = new CGrandeurFichier(u"Acceleration");
    quantity->AjouteUniteDynamique(new CUnite);
    Require(quantity->SetUniteCourante(quantity->GetLstUnit().front()), "a unit");
    document.AjouteGrandeur(quantity, OwnershipOwned);
    return quantity;
}

class Store : public ResultStore {
public:
    ~Store() override { m_document.NeedToRemoveEverything(true); }

    void Make(int n) override
    {
        CGrandeur* quantity = AddQuantity(m_document);
        for (int i = 0; i < n; ++i)
            m_document.AjouteResultat(NewHeader(MakeHeader(i)).release(), NewSpectrum(quantity, i).release(), 0, false);
    }

    void Save(const Path& path) override { Require(m_document.Save(Wide(path.string()).c_str()), "a save"); }

    void Load(const Path& path) override
    {
        Require(m_document.Load(Wide(path.string()).c_str(), ZMXFFileLoadScope::all()), "a load");
    }

    void List(const Path& path) override
    {
        CZMXFFile document(true, false);
        std::vector<CResultHeader*> headers;
        Require(document.GetResultHeaderListe(Wide(path.string()).c_str(), headers), "a listing");
        m_listed.reserve(headers.size());
        for (CResultHeader* header : headers) m_listed.emplace_back(header);
    }

    void Fetch(const Path& path, int number) override
    {
        CZMXFFile document(true, false);
        CResultHeader header;
        header.setFilename(Wide(path.string()));
        header.SetChunkId(StringToFourCC(ToDecimal(number), false));
        m_fetched = std::make_unique<CRegVector>();
        std::int32_t system = -1;
        Require(document.GetResultat(m_fetched.get(), &header, system), "a fetch");
        m_quantity.reset(m_fetched->GetMagnitude());
    }

    [[nodiscard]] Seen Found() const override
    {
        Seen found;
        const auto see = [&found](const CResultHeader& header) {
            ++found.count;
            found.channels += header.GetNumReponse();
        };
        for (const auto& header : m_listed) see(*header);
        if (const CSysteme* system = m_document.getSystem(0); system != nullptr)
            for (const auto& entry : system->getMapResult()) {
                see(*entry.first);
                found.values += dynamic_cast<CRegVector*>(entry.second)->GetRealValue()[kPoints - 1];
            }
        if (m_fetched != nullptr) found.values += m_fetched->GetRealValue()[kPoints - 1];
        return found;
    }

private:
    CZMXFFile m_document{true, false};
    std::vector<std::unique_ptr<CResultHeader>> m_listed;
    std::unique_ptr<CRegVector> m_fetched;
    std::unique_ptr<const CGrandeur> m_quantity;
};

} // namespace

std::unique_ptr<ResultStore> OurResults() { return std::make_unique<Store>(); }

} // namespace peers
