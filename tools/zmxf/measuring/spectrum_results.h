#pragma once

#include "tools/zmxf/measuring/measured_document.h"

namespace zmxf {

// Adds the spectra of a channel: its autospectrum, 1/3-octave bands, and coherence and transfer function where it is
// compared with another.
void AddSpectra(MeasuredDocument& document, std::size_t channel);

} // namespace zmxf
