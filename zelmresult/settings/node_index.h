#pragma once

#include "zelmresult/support/idn.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace ZelmResult {

// The identifier of a node of the settings. A change is reported to the index that finds the node by it; a copy copies
// the identifier only.
class NodeIdn {
public:
    NodeIdn() = default;
    explicit NodeIdn(const idn::Idn& idn) : m_idn(idn) {}
    NodeIdn(const NodeIdn& other) : m_idn(other.m_idn) {}
    NodeIdn& operator=(const NodeIdn& other)
    {
        if (this != &other) Set(other.m_idn);
        return *this;
    }

    [[nodiscard]] const idn::Idn& Get() const { return m_idn; }
    void Set(const idn::Idn& idn)
    {
        m_idn = idn;
        if (m_renamed != nullptr) *m_renamed = true;
    }

private:
    template <class Node, class Part>
    friend class NodeIndex;

    idn::Idn m_idn;
    bool* m_renamed = nullptr; // of the index
};

// The places of the nodes in a list that only grows, by kind and instance of a part of their identifiers, so that the
// time to add one doesn't depend on their number. Each look-up brings the index up to date first.
template <class Node, class Part>
class NodeIndex {
public:
    explicit NodeIndex(const Part& (idn::Idn::*part)() const) : m_part(part) {}

    // The first of the nodes with that part, null without one.
    Node* Find(const std::vector<Node*>& nodes, const idn::Idn& idn)
    {
        if (m_renamed == nullptr) m_renamed = std::make_unique<bool>(false);
        if (*m_renamed) Clear();
        for (; m_known < nodes.size(); ++m_known) {
            NodeIdn& known = nodes[m_known]->m_idn;
            known.m_renamed = m_renamed.get();
            m_first.emplace(Key(known.Get()), m_known);
        }
        const auto found = m_first.find(Key(idn));
        return found != m_first.end() ? nodes[found->second] : nullptr;
    }
    // Forgets all nodes; for a list that is emptied.
    void Clear()
    {
        m_first.clear();
        m_known = 0;
        if (m_renamed != nullptr) *m_renamed = false;
    }

private:
    [[nodiscard]] std::uint64_t Key(const idn::Idn& idn) const
    {
        const Part& part = (idn.*m_part)();
        return std::uint64_t{part.kind} << 32U | part.instance;
    }

    const Part& (idn::Idn::*m_part)() const;
    std::unordered_map<std::uint64_t, std::size_t> m_first;
    std::size_t m_known = 0;
    std::unique_ptr<bool> m_renamed; // the identifier of a node has changed
};

} // namespace ZelmResult
