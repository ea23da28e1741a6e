#pragma once

#include "zelmresult/storage/stored_record.h"
#include "zelmresult/support/idn.h"
#include "zelmresult/support/otype.h"
#include "zelmresult/support/packed_texts.h"
#include "zelmresult/support/time.h"
#include "zelmresult/support/wstring.h"
#include "zelmresult/waterfalls/weighting_window.h"

#include <array>
#include <cstdint>

namespace ZelmResult {

// The description of one stored result without its data: what process made it, from which channels, under which names
// and display options, and where its data is. Applications list headers.
//
// Stored   all fields, as version 23, in a chunk "INFO" before the result's data chunk.
// Life     made by the host or by a read. A system owns it after AjouteResultat; those that GetResultHeaderListe reads
//          from a file are the caller's. ChunkId is valid only after a read or a save, which renews it.
// A plain value.
class CResultHeader : public StoredFields<CResultHeader> {
public:
    static constexpr const char* kRecordName = "CResultHeader";

    CResultHeader() = default;
    CResultHeader(const CResultHeader&) = default;
    CResultHeader& operator=(const CResultHeader&) = default;
    virtual ~CResultHeader() = default;

    // ---- Where the data is ----
    [[nodiscard]] std::uint32_t GetChunkId() const { return m_chunkId; }
    void SetChunkId(std::uint32_t code) { m_chunkId = code; }
    [[nodiscard]] wstring filename() const { return wstring(text(kFilename)); }
    void setFilename(const wstring& path) { m_texts.Set(kFilename, path); }

    // ---- What it is ----
    [[nodiscard]] std::uint32_t GetProcessType() const { return m_processType; }
    void SetProcessType(std::uint32_t process) { m_processType = process; }
    [[nodiscard]] otype::ElementaryResultProcess processType() const;
    [[nodiscard]] OTime date() const { return m_date; }
    void setDate(const OTime& date) { m_date = date; }
    [[nodiscard]] bool getExternal() const { return m_external; }
    void setExternal(bool external) { m_external = external; }
    // Made by a certain import; the analyzer caption says so.
    [[nodiscard]] bool IsImported() const { return text(kAnalyzerCaption) == u"AE2"; }
    // 0 not operated; 2 is left out of listings of a file.
    [[nodiscard]] std::uint32_t GetOpere() const { return m_opere; }
    void SetOpere(std::uint32_t style) { m_opere = style; }
    [[nodiscard]] std::uint32_t GetTypeResultatOpere() const { return m_typeResultatOpere; }
    void SetTypeResultatOpere(std::uint32_t type) { m_typeResultatOpere = type; }
    [[nodiscard]] std::uint32_t GetTemporel() const { return m_temporel; } // time-domain selection
    void SetTemporel(std::uint32_t selection) { m_temporel = selection; }
    [[nodiscard]] std::uint32_t GetPonderation() const { return m_ponderation; } // frequency weighting
    void SetPonderation(std::uint32_t weighting) { m_ponderation = weighting; }
    [[nodiscard]] std::uint32_t GetPonderationTemporelle() const { return m_ponderationTemporelle; } // time weighting
    void SetPonderationTemporelle(std::uint32_t weighting) { m_ponderationTemporelle = weighting; }
    // The weighting window, -1 at first. A number from a file is kept, legal or not.
    [[nodiscard]] WeightingWindow GetNumWindow() const { return static_cast<EWeightingWindow>(m_numWindow); }
    void SetNumWindow(const WeightingWindow& window) { m_numWindow = window.toInt(); }
    // 0 to 5, see ResultFactory::create; a larger value is stored and loaded as 0.
    [[nodiscard]] std::uint32_t GetWaterfallDimension() const { return m_waterfallDimension; }
    void SetWaterfallDimension(std::uint32_t dimension) { m_waterfallDimension = dimension; }
    // The reference list of the system that a waterfall uses, and the name of the reference chosen in it.
    [[nodiscard]] std::int32_t GetIndexListe() const { return m_indexListe; }
    void SetIndexListe(std::int32_t index) { m_indexListe = index; }
    [[nodiscard]] wstring chosenReference() const { return wstring(text(kChosenReference)); }
    void setChosenReference(const wstring& name) { m_texts.Set(kChosenReference, name); }

    // ---- Where it comes from ----
    [[nodiscard]] const idn::Idn& GetIdnResultGenerator() const { return m_idnResultGenerator; }
    void SetIdnResultGenerator(const idn::Idn& idn) { m_idnResultGenerator = idn; }
    [[nodiscard]] const idn::Idn& GetIdnFrontEndSource() const { return m_idnFrontEndSource; }
    void SetIdnFrontEndSource(const idn::Idn& idn) { m_idnFrontEndSource = idn; }
    [[nodiscard]] const idn::Idn& GetIdnResponse() const { return m_idnResponse; }
    void SetIdnResponse(const idn::Idn& idn) { m_idnResponse = idn; }
    [[nodiscard]] const idn::Idn& GetIdnReference() const { return m_idnReference; }
    void SetIdnReference(const idn::Idn& idn) { m_idnReference = idn; }
    [[nodiscard]] const idn::Idn& GetTrackDuRecorder() const { return m_trackDuRecorder; }
    void SetTrackDuRecorder(const idn::Idn& idn) { m_trackDuRecorder = idn; }
    [[nodiscard]] const idn::Idn& GetInputEnregistre() const { return m_inputEnregistre; }
    void SetInputEnregistre(const idn::Idn& idn) { m_inputEnregistre = idn; }
    // Channel numbers; of a replayed signal the response is the player's track.
    [[nodiscard]] std::int32_t GetNumReponse() const { return m_numReponse; }
    void SetNumReponse(std::int32_t channel) { m_numReponse = channel; }
    [[nodiscard]] std::int32_t GetNumReference() const { return m_numReference; }
    void SetNumReference(std::int32_t channel) { m_numReference = channel; }

    // ---- Names and texts ----
    [[nodiscard]] wstring responseName() const { return wstring(text(kResponseName)); }
    void setResponseName(const wstring& name) { m_texts.Set(kResponseName, name); }
    [[nodiscard]] wstring referenceName() const { return wstring(text(kReferenceName)); }
    void setReferenceName(const wstring& name) { m_texts.Set(kReferenceName, name); }
    [[nodiscard]] wstring comment() const { return wstring(text(kComment)); }
    void setComment(const wstring& text) { m_texts.Set(kComment, text); }
    [[nodiscard]] wstring caption() const { return wstring(text(kCaption)); }
    void setCaption(const wstring& text) { m_texts.Set(kCaption, text); }
    [[nodiscard]] wstring processCaption() const { return wstring(text(kProcessCaption)); }
    void setProcessCaption(const wstring& text) { m_texts.Set(kProcessCaption, text); }
    [[nodiscard]] wstring analyzerCaption() const { return wstring(text(kAnalyzerCaption)); }
    void setAnalyzerCaption(const wstring& text) { m_texts.Set(kAnalyzerCaption, text); }
    [[nodiscard]] wstring identificationName() const { return wstring(text(kIdentificationName)); }
    void setIdentificationName(const wstring& name) { m_texts.Set(kIdentificationName, name); }
    [[nodiscard]] wstring coupeCaption() const { return wstring(text(kCoupeCaption)); } // of a cut
    void setCoupeCaption(const wstring& text) { m_texts.Set(kCoupeCaption, text); }

    // ---- Display ----
    // A read turns 2 and 3, the peak displays, into 1 for a kind of result that has no peak.
    [[nodiscard]] std::int32_t GetOpUniteAffichage() const { return m_opUniteAffichage; }
    void SetOpUniteAffichage(std::int32_t option) { m_opUniteAffichage = option; }
    [[nodiscard]] bool GetToBeDisplayed() const { return m_toBeDisplayed; }
    void SetToBeDisplayed(bool displayed) { m_toBeDisplayed = displayed; }

    // Makes and leaves the chunk. A WaterfallDimension above 5 becomes 0 in this object too. False at the first field
    // that fails.
    [[nodiscard]] bool Save(CMmioFile* file);
    // Called with the file at the chunk's data; doesn't leave the chunk. False at the first field that fails, with the
    // fields before it read.
    [[nodiscard]] bool Load(CMmioFile* file);

    // The same description: all fields except the file and three numbers kept for others; the caption and one flag
    // count only for masks.
    bool operator==(const CResultHeader& other) const;
    // The same result for a caller's purposes: without names, numbers, date, chunk and file.
    [[nodiscard]] bool CorrespondA(const CResultHeader& other) const;
    // Whether this result was calculated from the other.
    [[nodiscard]] bool IsOperatedResultOf(const CResultHeader& other) const;

private:
    // In the order in which they are stored.
    enum TextNumber : std::uint8_t {
        kComment,
        kResponseName,
        kReferenceName,
        kFilename,
        kCaption,
        kProcessCaption,
        kAnalyzerCaption,
        kChosenReference,
        kIdentificationName,
        kCoupeCaption,
        kTextCount
    };

    [[nodiscard]] wstring_view text(TextNumber number) const { return m_texts[number]; }
    friend StoredFields;
    template <class Io, class Self>
    static bool fields(Io& io, Self& h);
    void dumpLines(CMmioFile& file) const;
    [[nodiscard]] bool HasSameSource(const CResultHeader& other) const;
    [[nodiscard]] bool HasSameOptions(const CResultHeader& other) const;

    std::uint32_t m_chunkId = 0;
    std::int32_t m_opUniteAffichage = 0;
    OTime m_date;
    PackedTexts<kTextCount> m_texts;
    idn::Idn m_idnResultGenerator;
    idn::Idn m_idnFrontEndSource;
    idn::Idn m_idnResponse;
    idn::Idn m_idnReference;
    bool m_external = false;
    std::uint32_t m_processType = 0;
    std::int32_t m_numReponse = 0;
    std::int32_t m_numReference = 0;
    std::uint32_t m_typeResultatOpere = 0;
    std::uint32_t m_opere = 0;
    std::uint32_t m_temporel = 0;
    std::uint32_t m_ponderation = 0;
    bool m_toBeDisplayed = false;
    std::uint32_t m_ponderationTemporelle = 0;
    std::uint32_t m_waterfallDimension = 0;
    std::int32_t m_indexListe = 0;
    std::int32_t m_numWindow = -1;
    // Kept and written back for other readers of the format; only the comparisons use them here.
    bool m_flagV7 = false;
    idn::Idn m_trackDuRecorder;
    idn::Idn m_inputEnregistre;
    bool m_flagV18 = false;
    std::array<std::int32_t, 3> m_tripleV19{};
};
extern template class StoredFields<CResultHeader>;

} // namespace ZelmResult
