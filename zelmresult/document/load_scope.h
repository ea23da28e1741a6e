#pragma once

#include <cstdint>

namespace ZelmResult {

// How much of a file a load reads. A plain value.
class ZMXFFileLoadScope {
public:
    enum EScope : std::int32_t {
        ScopeAll = 0,
        ScopeNoConfig = 1,    // settings are not loaded
        ScopeSingleResult = 2 // only results whose ChunkId is the id
    };

    ZMXFFileLoadScope() = default;
    ZMXFFileLoadScope(EScope scope, std::int32_t resultId) : m_scope(scope), m_resultId(resultId) {}
    static ZMXFFileLoadScope all() { return {}; }
    static ZMXFFileLoadScope noconfig() { return {ScopeNoConfig, -1}; }
    static ZMXFFileLoadScope singleResult(std::int32_t id) { return {ScopeSingleResult, id}; }

    [[nodiscard]] EScope scope() const { return m_scope; }
    [[nodiscard]] std::int32_t resultId() const { return m_resultId; }
    [[nodiscard]] bool SkipsConfig() const { return m_scope == ScopeNoConfig; }
    // Whether a result with that ChunkId is to be loaded.
    [[nodiscard]] bool Takes(std::uint32_t chunkId) const
    {
        return m_scope != ScopeSingleResult || static_cast<std::uint32_t>(m_resultId) == chunkId;
    }
    bool operator==(const ZMXFFileLoadScope&) const = default;

private:
    EScope m_scope = ScopeAll;
    std::int32_t m_resultId = -1;
};

} // namespace ZelmResult
