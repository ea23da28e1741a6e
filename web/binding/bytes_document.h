#pragma once

#include "web/binding/labelled_json.h"

#include "zelmresult/reading/document_reader.h"

#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>

// The calls of the page that are about documents. All throw what went wrong, as a sentence for the user.

namespace zmxf::web {

// A document whose bytes are in memory.
class BytesDocument {
public:
    // Takes the bytes, which malloc gave.
    BytesDocument(std::span<char> bytes, std::string name);

    // All that is known without the data of results; what could not be read is said in it.
    Json InfoJson(KnownQuantities& quantities);
    Json HeadersJson();
    Json HeaderOf(std::size_t number);
    ZelmResult::LabelledResult Read(std::size_t number);
    ZelmResult::LabelledResult ReadSlices(std::size_t number);
    ZelmResult::LabelledResult ReadSlice(std::size_t number, std::int64_t slice);
    Json SettingsJson();
    Json RecordingsJson();
    Json VerifyJson() const;

private:
    struct Free {
        void operator()(char* bytes) const { std::free(bytes); }
    };
    [[nodiscard]] std::span<const char> bytes() const { return {m_bytes.get(), m_size}; }

    std::unique_ptr<char, Free> m_bytes;
    std::size_t m_size;
    std::string m_name;
    std::optional<ZelmResult::DocumentReader> m_reader; // ends before the bytes
};

} // namespace zmxf::web
