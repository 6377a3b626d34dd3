#pragma once

#include <QList>
#include <QtGlobal>

#include <vector>

namespace TestSupport {

/// Numbers that follow from a seed alone, the same with every compiler and library.
class RandomNumbers
{
public:
    explicit RandomNumbers(quint64 seed) : m_state(seed) {}

    /// The next 64 bits.
    quint64 bits()
    {
        // SplitMix64 of Steele, Lea and Flood: one addition, then two multiplications that mix.
        quint64 mixed = m_state += 0x9e3779b97f4a7c15U;
        mixed = (mixed ^ (mixed >> 30)) * 0xbf58476d1ce4e5b9U;
        mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111ebU;
        return mixed ^ (mixed >> 31);
    }
    /// From \a low to \a high, both included.
    int between(int low, int high) { return low + int(bits() % quint64(qint64(high) - low + 1)); }
    /// True in \a percent of a hundred calls.
    bool chance(int percent) { return between(0, 99) < percent; }
    /// One of \a choices, which must not be empty.
    template<class Value>
    Value oneOf(const QList<Value> &choices)
    {
        return choices.at(between(0, int(choices.size()) - 1));
    }

private:
    quint64 m_state;
};

} // namespace TestSupport
