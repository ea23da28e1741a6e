#pragma once

#include "tools/zmxf/base/selection.h"

#include <CLI/CLI.hpp>

namespace zmxf {

// The options that choose results, which are the same for all verbs. Keeps a reference to the selection.
CLI::Option_group* AddSelectionOptions(CLI::App& verb, Selection& selection);

} // namespace zmxf
