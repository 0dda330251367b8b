// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QVector>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>

/**
 * Changes an input that is a sequence of pieces (messages, packets) piece by piece, so that it
 * stays one: puts new ones in, drops, repeats and swaps some, and leaves the bytes of one to
 * libFuzzer.
 */
class PieceMutator {
public:
    using Random = std::minstd_rand;

    /** @p split takes an input apart, so that joining undoes it; @p make invents a piece. */
    PieceMutator(std::function<QVector<QByteArray>(const QByteArray &)> split,
        std::function<QByteArray(Random &)> make);

    /** As LLVMFuzzerCustomMutator() is asked to: changes @p data in place, returns its new size. */
    std::size_t mutate(
        std::uint8_t *data, std::size_t size, std::size_t maxSize, unsigned int seed) const;

    /** Lines, each with its end. */
    static QVector<QByteArray> lines(const QByteArray &input);

    /** One of @p choices, which is not empty. */
    template <typename Choices>
    static const typename Choices::value_type &oneOf(const Choices &choices, Random &random)
    {
        return choices[int(random() % std::size_t(choices.size()))];
    }

private:
    std::function<QVector<QByteArray>(const QByteArray &)> m_split;
    std::function<QByteArray(Random &)> m_make;
};
