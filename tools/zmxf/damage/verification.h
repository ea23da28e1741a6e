#pragma once

#include "tools/zmxf/damage/chunk_tree.h"

#include <span>
#include <string>
#include <vector>

namespace zmxf {

// What is wrong with a document, and what is worth knowing of it.
struct Verification {
    enum class Verdict { Whole, Damaged, NoDocument };

    Verdict verdict = Verdict::Whole;
    std::vector<Damage> damages; // by offset
    std::vector<Damage> notes;   // of what is in order, but isn't read by this version of the library or by any
    std::size_t results = 0;     // headers
    std::size_t readable = 0;    // results whose data can be read
    bool isLoaded = false;       // as a whole
};

const char* NameOf(Verification::Verdict verdict); // "whole"

// Walks the chunks, reads every record, and holds them against each other. Throws Failure for what can't be read at
// all.
Verification Verify(const std::string& path);
// The same of bytes that the library's default backend opens under that name.
Verification VerifyBytes(std::span<const char> bytes, const std::string& path);

} // namespace zmxf
