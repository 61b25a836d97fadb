#include "guard/parser_table.h"

#include <algorithm>

namespace guard {

Parser* ParserTable::add(unsigned inner) {
    try {
        m_live.emplace_back();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    Parser& parser = m_live.back();
    parser.number = ++m_created;
    parser.handle = kFirst + static_cast<unsigned>(m_created) * kStep;
    parser.inner = inner;
    return &parser;
}

void ParserTable::remove(Parser& parser, unsigned long call) {
    m_released[m_next_released] = {parser.handle, parser.inner, parser.number, call};
    m_next_released = (m_next_released + 1) % m_released.size();
    m_live.remove_if([&parser](const Parser& one) { return &one == &parser; });
}

Parser* ParserTable::find(unsigned handle) {
    const auto found = std::find_if(m_live.begin(), m_live.end(), [handle](const Parser& one) {
        return one.handle == handle && !one.is_released;
    });
    return found != m_live.end() ? &*found : nullptr;
}

const Parser* ParserTable::find_inner(unsigned inner) const {
    const auto found = std::find_if(m_live.begin(), m_live.end(),
                                    [inner](const Parser& one) { return one.inner == inner; });
    return found != m_live.end() ? &*found : nullptr;
}

bool ParserTable::was_given(unsigned handle) const {
    const unsigned steps = (handle - kFirst) / kStep;
    return (handle - kFirst) % kStep == 0 && steps >= 1 && steps <= m_created;
}

const ReleasedHandle* ParserTable::find_released(unsigned handle) const {
    const auto* const found =
        std::find_if(m_released.begin(), m_released.end(),
                     [handle](const ReleasedHandle& one) { return one.handle == handle; });
    return found != m_released.end() && handle != 0 ? found : nullptr;
}

}  // namespace guard
