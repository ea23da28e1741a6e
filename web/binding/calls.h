#pragma once

#include "web/binding/bytes_document.h"

#include <map>
#include <optional>
#include <string_view>

namespace zmxf::web {

// What the page asks of the library. A request is {"name": ..., "parameters": {...}}, an answer {"result": ...}, or
// {"failure": a sentence for the user}. Arrays stay in memory: a request and its answer name their places. Those of an
// answer live until the next call.
class Calls {
public:
    std::string Answer(std::string_view request);

private:
    Json Result(const std::string& name, const Json& parameters);
    Json Open(const Json& parameters);
    Json Read(const std::string& name, const Json& parameters);
    void Scale(const Json& parameters) const;
    Json Texts(const Json& parameters) const;
    BytesDocument& DocumentOf(const Json& parameters);

    KnownQuantities m_quantities;
    std::map<int, BytesDocument> m_documents;
    int m_lastDocument = 0;
    std::optional<ToldResult> m_told; // by the last call
};

} // namespace zmxf::web
