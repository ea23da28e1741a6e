#pragma once

#include "tools/zmxf/base/selection.h"

#include <CLI/CLI.hpp>

namespace zmxf {

// The options that choose results, which are the same for all verbs. Keeps a reference to the selection.
void AddSelectionOptions(CLI::App& verb, Selection& selection);

} // namespace zmxf
