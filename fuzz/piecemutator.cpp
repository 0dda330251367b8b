// SPDX-License-Identifier: GPL-3.0-or-later
#include "piecemutator.h"

#include <QByteArrayList>

#include <algorithm>
#include <cstring>
#include <utility>

// libFuzzer's own way to change bytes.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t *data, std::size_t size, std::size_t maxSize);

namespace {

QByteArray withChangedBytes(QByteArray piece)
{
    const int size = piece.size();
    const int maxSize = size + 64;
    piece.resize(maxSize);
    piece.resize(int(LLVMFuzzerMutate(
        reinterpret_cast<std::uint8_t *>(piece.data()), std::size_t(size), std::size_t(maxSize))));
    return piece;
}

} // namespace

PieceMutator::PieceMutator(std::function<QVector<QByteArray>(const QByteArray &)> split,
    std::function<QByteArray(Random &)> make)
    : m_split(std::move(split))
    , m_make(std::move(make))
{
}

std::size_t PieceMutator::mutate(
    std::uint8_t *data, std::size_t size, std::size_t maxSize, unsigned int seed) const
{
    enum Change { Insert, Drop, Repeat, Swap, Replace, Bytes, AllBytes, Changes };
    Random random(seed);
    QVector<QByteArray> pieces
        = m_split(QByteArray(reinterpret_cast<const char *>(data), int(size)));
    const auto change = pieces.isEmpty() ? Insert : Change(random() % Changes);
    const auto place = [&] { return int(random() % unsigned(pieces.size())); };
    switch (change) {
    case Insert:
        pieces.insert(int(random() % unsigned(pieces.size() + 1)), m_make(random));
        break;
    case Drop:
        pieces.removeAt(place());
        break;
    case Repeat:
        pieces.insert(place(), QByteArray(pieces.at(place())));
        break;
    case Swap:
        std::swap(pieces[place()], pieces[place()]);
        break;
    case Replace:
        pieces[place()] = m_make(random);
        break;
    case Bytes: {
        const int which = place();
        pieces[which] = withChangedBytes(pieces.at(which));
        break;
    }
    default:
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    const QByteArray changed = QByteArrayList(pieces.begin(), pieces.end()).join();
    const std::size_t newSize = std::min(maxSize, std::size_t(changed.size()));
    std::memcpy(data, changed.constData(), newSize);
    return newSize;
}

QVector<QByteArray> PieceMutator::lines(const QByteArray &input)
{
    QVector<QByteArray> result;
    for (int begin = 0; begin < input.size();) {
        const int end = input.indexOf('\n', begin);
        const int next = end < 0 ? input.size() : end + 1;
        result.append(input.mid(begin, next - begin));
        begin = next;
    }
    return result;
}
