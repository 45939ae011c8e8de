#include "Thread/HeightIndex.h"

#include <algorithm>
#include <bit>

namespace nubble {

namespace {

using Size = std::vector<int>::size_type;

constexpr Size lowBit(Size number)
{
    return number & (~number + 1);
}

} // namespace

int HeightIndex::start(int index) const
{
    int sum = 0;
    for (auto i = static_cast<Size>(index); i > 0; i -= lowBit(i))
        sum += m_sums[i - 1];
    return sum;
}

int HeightIndex::at(int position) const
{
    Size passed = 0;
    for (Size step = std::bit_floor(m_sums.size()); step > 0; step /= 2) {
        if (passed + step <= m_sums.size() && m_sums[passed + step - 1] <= position) {
            passed += step;
            position -= m_sums[passed - 1];
        }
    }
    return std::min(static_cast<int>(passed), count() - 1);
}

void HeightIndex::append(int height)
{
    m_heights.push_back(height);
    const Size number = m_heights.size();
    int sum = height;
    for (Size i = number - 1; i > number - lowBit(number); i -= lowBit(i))
        sum += m_sums[i - 1];
    m_sums.push_back(sum);
}

void HeightIndex::set(int index, int height)
{
    int &stored = m_heights.at(static_cast<Size>(index));
    const int change = height - stored;
    stored = height;
    if (change == 0)
        return;
    for (auto i = static_cast<Size>(index) + 1; i <= m_sums.size(); i += lowBit(i))
        m_sums[i - 1] += change;
}

void HeightIndex::truncate(int count)
{
    m_heights.resize(static_cast<Size>(count));
    m_sums.resize(static_cast<Size>(count));
}

} // namespace nubble
