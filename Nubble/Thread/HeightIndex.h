#pragma once

#include <vector>

namespace nubble {

// Heights in a row, and where each begins: adding one, changing one and finding one cost the logarithm of
// their number (a Fenwick tree). Pure.
class HeightIndex {
public:
    [[nodiscard]] int count() const { return static_cast<int>(m_heights.size()); }
    [[nodiscard]] int height(int index) const { return m_heights.at(static_cast<std::size_t>(index)); }
    [[nodiscard]] int start(int index) const; // the sum of all before it; `count()` gives the total
    [[nodiscard]] int total() const { return start(count()); }
    [[nodiscard]] int at(int position) const; // the one that covers it, held within them; -1 without any

    void append(int height);
    void set(int index, int height);
    void truncate(int count);

private:
    std::vector<int> m_heights;
    std::vector<int> m_sums; // [i] of the lowbit(i + 1) heights that end at i
};

} // namespace nubble
