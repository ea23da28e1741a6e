#pragma once

#include "tools/zmxf/exporting/export_choices.h"
#include "zelmresult/reading/labelled_result.h"

#include <memory>
#include <ostream>
#include <string>

namespace zmxf {

// What an export has to say of its results: what it left out, and what the format changed.
class ExportNotes {
public:
    virtual ~ExportNotes() = default;
    // The format can't hold the result, or one of its arrays: it isn't in the output, and is counted. No failure.
    virtual void LeaveOut(const ZelmResult::LabelledResult& result, const std::string& why) = 0;
    // It is there, but not all of it as it was: a label that was cut.
    virtual void Warn(const ZelmResult::LabelledResult& result, const std::string& what) = 0;
};

// Writes results of one document to one output, in the order in which they come. The output depends on nothing but the
// results and the choices: no clock, no locale, no name of this machine.
class Exporter {
public:
    virtual ~Exporter() = default;
    // Takes one result more, of which the exporter keeps nothing. Throws Failure when it can't be written; what the
    // format can't hold goes to the notes.
    virtual void Add(const ZelmResult::LabelledResult& result) = 0;
    // Ends the output. Nothing is added after it. Throws Failure.
    virtual void Finish() = 0;
};

// About the document as a whole.
struct ExportedDocument {
    std::string name; // of its file, without folder
};

// Each keeps references to what it is given, which lives as long as the exporter. The output is a stream of bytes, or
// the name of an empty file.
std::unique_ptr<Exporter> MakeJsonExporter(std::ostream& output, const ExportedDocument& document,
                                           const ExportChoices& choices, ExportNotes& notes);
std::unique_ptr<Exporter> MakeUffExporter(std::ostream& output, const ExportedDocument& document,
                                          const ExportChoices& choices, ExportNotes& notes);
std::unique_ptr<Exporter> MakeMatExporter(std::ostream& output, const ExportedDocument& document,
                                          const ExportChoices& choices, ExportNotes& notes);
std::unique_ptr<Exporter> MakeHdf5Exporter(const std::string& path, const ExportedDocument& document,
                                           const ExportChoices& choices, ExportNotes& notes);

} // namespace zmxf
