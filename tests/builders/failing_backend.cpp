#include "tests/builders/failing_backend.h"

namespace ZelmResult::test {

namespace {

class FailingBackend final : public CMmio {
public:
    FailingBackend(std::unique_ptr<CMmio> inner, CallPlan& plan) : m_inner(std::move(inner)), m_plan(plan) {}

    bool ommioOpen(const wstring& name, OMMIOINFO* info, std::uint32_t flags) override
    {
        return m_inner->ommioOpen(name, info, flags);
    }
    void ommioClose() override { m_inner->ommioClose(); }
    std::int32_t ommioRead(char* buffer, std::int32_t count) override
    {
        return m_plan.Fails(CallPlan::Read) ? -1 : m_inner->ommioRead(buffer, count);
    }
    std::uint32_t ommioAscend(OMMCKINFO* chunk) override
    {
        return m_plan.Fails(CallPlan::Ascend) ? 1 : m_inner->ommioAscend(chunk);
    }
    std::uint32_t ommioDescend(OMMCKINFO* chunk, OMMCKINFO* parent, OMMIO_DESCEND_FLAG flag) override
    {
        return m_plan.Fails(CallPlan::Descend) ? 1 : m_inner->ommioDescend(chunk, parent, flag);
    }
    std::uint32_t ommioCreateChunk(OMMCKINFO* chunk, OMMIO_CREATE_CHUNK_FLAG flag) override
    {
        return m_plan.Fails(CallPlan::Create) ? 1 : m_inner->ommioCreateChunk(chunk, flag);
    }
    std::int32_t ommioSeek(std::int32_t offset, OMMIO_SEEK_FLAG origin) override
    {
        return m_plan.Fails(CallPlan::Seek) ? -1 : m_inner->ommioSeek(offset, origin);
    }
    std::uint32_t ommioGetInfo(OMMIOINFO* info) override { return m_inner->ommioGetInfo(info); }
    std::int32_t ommioWrite(const char* buffer, std::int32_t count) override
    {
        return m_plan.Fails(CallPlan::Write) ? -1 : m_inner->ommioWrite(buffer, count);
    }
    std::uint32_t ommioStringToFOURCC(const char16_t* text, OMMIO_STRING_TO_FOURCC flag) override
    {
        return m_inner->ommioStringToFOURCC(text, flag);
    }
    std::int64_t BytesLeft() override { return m_inner->BytesLeft(); }

private:
    std::unique_ptr<CMmio> m_inner;
    CallPlan& m_plan;
};

} // namespace

bool CallPlan::Fails(Kind kind)
{
    if ((kinds & kind) == 0) return false;
    ++calls;
    const bool isDue = failAt != 0 && (onwards ? calls >= failAt : calls == failAt);
    if (isDue && event) event();
    return isDue && !event;
}

CMmioFile::BackendFactory failingBackend(CMmioFile::BackendFactory inner, CallPlan& plan)
{
    return [makeInner = std::move(inner), &plan] { return std::make_unique<FailingBackend>(makeInner(), plan); };
}

} // namespace ZelmResult::test
