#include "zelmresult/document/result_header.h"

#include "zelmresult/results/kinds.h"
#include "zelmresult/results/result.h"
#include "zelmresult/results/result_mask.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"

namespace ZelmResult {

namespace {

constexpr std::uint16_t kFormerInputNumber = 1; // first numbers of the short identifiers of versions 16 to 22
constexpr std::uint16_t kFormerTrackNumber = 3;
constexpr std::size_t kTypicalTexts = 256; // characters of all texts of a header

std::uint32_t Limited(std::uint32_t waterfallDimension)
{
    return waterfallDimension > WaterfallDimension::kLast ? 0 : waterfallDimension;
}

wstring Text(const idn::Idn& idn) { return idn::IdnString::idnToStringT(idn); }

} // namespace

otype::ElementaryResultProcess CResultHeader::processType() const
{
    return otype::ElementaryResultProcess::fromInteger(static_cast<std::int32_t>(m_processType));
}

template <class Io, class Self>
bool CResultHeader::fields(Io& io, Self& h)
{
    (void)io.record(kRecordName, newest{23}, first{0}); // version 0 has no field, but each is asked for
    io.u32("ProcessType", h.m_processType, since{1});
    io.idn("IdnResultGenerator", h.m_idnResultGenerator, since{1});
    io.idn("IdnResponse", h.m_idnResponse, since{1});
    io.idn("IdnReference", h.m_idnReference, since{1});
    io.text("comment", h.m_texts[kComment], since{1});
    io.text("responseName", h.m_texts[kResponseName], since{1});
    io.text("referenceName", h.m_texts[kReferenceName], since{1});
    io.i32("NumReponse", h.m_numReponse, since{1});
    io.i32("NumReference", h.m_numReference, since{1});
    io.text("filename", h.m_texts[kFilename], since{1});
    io.u32("ChunkId", h.m_chunkId, since{1});
    io.u32("Opere", h.m_opere, since{1});
    io.u32("TypeResultatOpere", h.m_typeResultatOpere, since{1});
    io.u32("Ponderation", h.m_ponderation, since{1});
    io.u32("Temporel", h.m_temporel, since{1});
    io.i32("OpUniteAffichage", h.m_opUniteAffichage, since{1});
    io.time("date", h.m_date, since{1}, shortBefore{17});
    io.flag("External", h.m_external, since{1});
    io.flag("ToBeDisplayed", h.m_toBeDisplayed, since{1});
    io.text("caption", h.m_texts[kCaption], since{1});
    io.text("processCaption", h.m_texts[kProcessCaption], since{2}, absent{u""});
    io.text("analyzerCaption", h.m_texts[kAnalyzerCaption], since{3}, absent{u""});
    io.u32("WaterfallDimension", h.m_waterfallDimension, since{4}, absent{0});
    io.i32("IndexListe", h.m_indexListe, since{4}, absent{0});
    io.text("chosenReference", h.m_texts[kChosenReference], since{5});
    io.i32("NumWindow", h.m_numWindow, since{5});
    io.text("identificationName", h.m_texts[kIdentificationName], since{6}, absent{u""});
    io.flag("FlagV7", h.m_flagV7, since{7}, absent{false});
    io.text("coupeCaption", h.m_texts[kCoupeCaption], since{8}, absent{u""});
    io.u32("PonderationTemporelle", h.m_ponderationTemporelle, since{9}, absent{0});
    if (io.version() < 16)
        io.onRead(h, [](auto& self) { self.m_inputEnregistre = self.m_trackDuRecorder = idn::Idn::s_null; });
    io.formerIdn("InputEnregistre", h.m_inputEnregistre, kFormerInputNumber, since{16}, until{22});
    io.formerIdn("TrackDuRecorder", h.m_trackDuRecorder, kFormerTrackNumber, since{16}, until{21});
    io.flag("FlagV18", h.m_flagV18, since{18}, absent{true});
    io.i32("TripleV19[0]", h.m_tripleV19[0], since{19}, absent{-1});
    io.i32("TripleV19[1]", h.m_tripleV19[1], since{19}, absent{-1});
    io.i32("TripleV19[2]", h.m_tripleV19[2], since{19}, absent{-1});
    io.unusedU32("fourth of TripleV19", since{19}, until{19});
    io.idn("IdnFrontEndSource", h.m_idnFrontEndSource, since{21}, absent{idn::Idn::s_null});
    io.idn("TrackDuRecorder", h.m_trackDuRecorder, since{22});
    io.idn("InputEnregistre", h.m_inputEnregistre, since{23});
    return io.ok();
}

bool CResultHeader::Load(CMmioFile* file)
{
    m_texts.Reserve(kTypicalTexts);
    const bool whole = ReadFields(*file, *this);
    m_texts.ShrinkToFit();
    m_waterfallDimension = Limited(m_waterfallDimension);
    const bool peakDisplay = m_opUniteAffichage == 2 || m_opUniteAffichage == 3;
    if (whole && peakDisplay && !CResult::IsRmsPeakPossible(m_processType)) m_opUniteAffichage = 1;
    return whole;
}

bool CResultHeader::Save(CMmioFile* file)
{
    OMMCKINFO chunk;
    if (!file->CreateChunkResultHeader(chunk)) return false;
    if (file->GenerateInfoFile()) file->AddStringToDebugFile(u"CResultHeader");
    m_waterfallDimension = Limited(m_waterfallDimension);
    if (!WriteFields(*file, *this)) return false;
    if (file->GenerateInfoFile()) dumpLines(*file);
    return file->ExitChunk(chunk);
}

void CResultHeader::dumpLines(CMmioFile& file) const
{
    if (ResultMask::isMask(processType())) {
        file.AddStringToDebugFile(Concat(u"GABARIT Process type: ", m_processType, u", Name: ", text(kCaption),
                                         u", Process name: ", text(kProcessCaption), u", Generator ",
                                         text(kAnalyzerCaption), u", IdName: ", text(kIdentificationName)));
        return;
    }
    file.AddStringToDebugFile(Concat(u"Process type: ", m_processType, u", Process name: ", text(kProcessCaption),
                                     u", Generator ", Text(m_idnResultGenerator),
                                     u",Response,Reference, FrontEndSource", Text(m_idnResponse), u",",
                                     Text(m_idnReference), u",", Text(m_idnFrontEndSource)));
    file.AddStringToDebugFile(Concat(u"Caption: ", text(kCaption), u",NumReponse ", m_numReponse, u" ,Response: ",
                                     text(kResponseName), u", NumReference ", m_numReference, u", Reference :",
                                     text(kReferenceName)));
    file.AddStringToDebugFile(
        Concat(u"FileName: ", text(kFilename), u", Chunk: ", m_chunkId, u", IdName: ", text(kIdentificationName)));
    file.AddStringToDebugFile(Concat(u"Opere: ", m_opere, u", Type resultat opere: ", m_typeResultatOpere,
                                     u",Ponderation: ", m_ponderation, u",Ponderation temporelle: ",
                                     m_ponderationTemporelle, u", Temporel: ", m_temporel, u",Affichage: ",
                                     m_opUniteAffichage, u",Window: ", m_numWindow));
    file.AddStringToDebugFile(Concat(u"Date: ", FromUtf8(OTimeToDateString(m_date)), u", External: ", m_external,
                                     u", To be displayed: ", m_toBeDisplayed));
    file.AddStringToDebugFile(Concat(u"WaterfallDimension: ", m_waterfallDimension, u", Index de la liste: ",
                                     m_indexListe, u", Nom de la reference: ", text(kChosenReference)));
    if (m_trackDuRecorder.isNull()) return;
    file.AddStringToDebugFile(Concat(u"Input enregistre: ", Text(m_inputEnregistre), u",Track du recorder: ",
                                     Text(m_trackDuRecorder), u" Track du player: ", m_numReponse));
}

template class StoredFields<CResultHeader>;

// The fields of all three comparisons.
bool CResultHeader::HasSameSource(const CResultHeader& o) const
{
    return m_processType == o.m_processType && m_idnResultGenerator == o.m_idnResultGenerator &&
           m_idnFrontEndSource == o.m_idnFrontEndSource && m_idnResponse == o.m_idnResponse &&
           m_idnReference == o.m_idnReference && m_waterfallDimension == o.m_waterfallDimension &&
           m_indexListe == o.m_indexListe && text(kIdentificationName) == o.text(kIdentificationName) &&
           text(kCoupeCaption) == o.text(kCoupeCaption) && m_ponderationTemporelle == o.m_ponderationTemporelle &&
           m_trackDuRecorder == o.m_trackDuRecorder && m_inputEnregistre == o.m_inputEnregistre &&
           m_ponderation == o.m_ponderation && m_temporel == o.m_temporel && m_flagV18 == o.m_flagV18 &&
           m_numWindow == o.m_numWindow;
}

// The further fields of == and CorrespondA. Masks differ by caption and flag.
bool CResultHeader::HasSameOptions(const CResultHeader& o) const
{
    const bool captionCounts = ResultMask::isMaskSingle(processType());
    const bool flagCounts = ResultMask::isMaskDouble(processType());
    return m_opere == o.m_opere && m_typeResultatOpere == o.m_typeResultatOpere &&
           m_opUniteAffichage == o.m_opUniteAffichage && m_external == o.m_external &&
           m_toBeDisplayed == o.m_toBeDisplayed && text(kChosenReference) == o.text(kChosenReference) &&
           (!captionCounts || text(kCaption) == o.text(kCaption)) && (!flagCounts || m_flagV7 == o.m_flagV7);
}

bool CResultHeader::CorrespondA(const CResultHeader& other) const
{
    return HasSameSource(other) && HasSameOptions(other);
}

bool CResultHeader::operator==(const CResultHeader& o) const
{
    return CorrespondA(o) && text(kComment) == o.text(kComment) && text(kResponseName) == o.text(kResponseName) &&
           text(kReferenceName) == o.text(kReferenceName) && m_numReponse == o.m_numReponse &&
           m_numReference == o.m_numReference && m_chunkId == o.m_chunkId && m_date == o.m_date &&
           text(kProcessCaption) == o.text(kProcessCaption) && text(kAnalyzerCaption) == o.text(kAnalyzerCaption);
}

bool CResultHeader::IsOperatedResultOf(const CResultHeader& o) const
{
    return m_opere != 0 && HasSameSource(o) && m_numReponse == o.m_numReponse && m_numReference == o.m_numReference &&
           text(kComment) == o.text(kComment) && text(kResponseName) == o.text(kResponseName) &&
           text(kReferenceName) == o.text(kReferenceName);
}

} // namespace ZelmResult
