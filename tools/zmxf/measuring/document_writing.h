#pragma once

#include "tools/zmxf/measuring/measured_document.h"

#include <string>

namespace zmxf {

// Throws Failure when the results of so many channels are more than a document holds; to be asked before they are
// measured. slices are those of a run-up.
void CheckDocumentHolds(std::size_t channels, std::size_t blockSize, std::size_t slices);

// Saves the levels of all channels, then the spectra of one channel after the other, a run-up, the level results and
// overviews of one channel after the other, the description of the recording and the settings of the analysis. Throws
// Failure; the document has its name only when it is whole.
void WriteMeasuredDocument(const CalibratedRecording& recording, const std::string& path, SliceStorage storage);

} // namespace zmxf
