// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/coverart.h"

#include <QCryptographicHash>
#include <QPainter>
#include <QPainterPath>
#include <QRandomGenerator>
#include <QtMath>

#include <array>
#include <utility>

namespace {

/** Four colours that go together, from dark to light. */
struct Palette {
    QColor ground;
    QColor middle;
    QColor accent;
    QColor light;
};

Palette palette(QRgb ground, QRgb middle, QRgb accent, QRgb light)
{
    return { QColor(ground), QColor(middle), QColor(accent), QColor(light) };
}

const std::array<Palette, 10> Palettes {
    palette(0x14213d, 0x31527a, 0xfca311, 0xf4ead5),
    palette(0x1b3a2f, 0x4a7c59, 0xf2b872, 0xfaf3dd),
    palette(0x3b1c32, 0x8a3b5c, 0xf08a5d, 0xf9ed69),
    palette(0x0b3954, 0x087e8b, 0xff5a5f, 0xf5efe6),
    palette(0x2d1e2f, 0x5f4b66, 0xa7d0cd, 0xffeee2),
    palette(0x33261d, 0x8c5a3c, 0xe0a96d, 0xf6ead7),
    palette(0x10002b, 0x5a189a, 0xe0608f, 0xffd6e8),
    palette(0x1d3557, 0x457b9d, 0xe63946, 0xf1faee),
    palette(0x223127, 0x6a8d73, 0xe4ffe1, 0xffe8c2),
    palette(0x232b2b, 0x53868b, 0xeec643, 0xeef0f2),
};

/** Draws one cover in the unit square. */
class Painter {
public:
    /** @p isReversed: with the palette's light and dark exchanged, where the motif allows it. */
    Painter(QPainter *painter, quint32 seed, bool isReversed)
        : m_painter(*painter)
        , m_random(seed)
        , m_palette(Palettes.at(m_random.bounded(int(Palettes.size()))))
        , m_isReversed(isReversed)
    {
        m_painter.setPen(Qt::NoPen);
    }

    void draw()
    {
        const int motif = m_random.bounded(8);
        // Those that look alike in one palette, whatever their details.
        if (m_isReversed && (motif == 3 || motif == 5 || motif == 6)) {
            std::swap(m_palette.ground, m_palette.light);
            std::swap(m_palette.middle, m_palette.accent);
        }
        switch (motif) {
        case 0:
            hills();
            break;
        case 1:
            rings();
            break;
        case 2:
            tiles();
            break;
        case 3:
            waves();
            break;
        case 4:
            rays();
            break;
        case 5:
            facets();
            break;
        case 6:
            bars();
            break;
        case 7:
            orbits();
            break;
        }
    }

private:
    double between(double low, double high)
    {
        return low + (high - low) * m_random.generateDouble();
    }

    static QColor mixed(const QColor &a, const QColor &b, double share)
    {
        const auto part = [share](double from, double to) { return from + (to - from) * share; };
        return QColor::fromRgbF(
            part(a.redF(), b.redF()), part(a.greenF(), b.greenF()), part(a.blueF(), b.blueF()));
    }

    void sky(const QColor &top, const QColor &bottom)
    {
        QLinearGradient gradient(between(0, 0.4), 0, between(0.6, 1), 1);
        gradient.setColorAt(0, top);
        gradient.setColorAt(1, bottom);
        m_painter.fillRect(QRectF(0, 0, 1, 1), gradient);
    }

    void disc(const QPointF &centre, double radius, const QBrush &brush)
    {
        m_painter.setBrush(brush);
        m_painter.drawEllipse(centre, radius, radius);
    }

    /** A sun or a moon over ranges of hills that get darker towards the front. */
    void hills()
    {
        sky(mixed(m_palette.middle, m_palette.light, 0.25), m_palette.light);
        const QPointF sun(between(0.25, 0.75), between(0.25, 0.45));
        QRadialGradient glow(sun, 0.45);
        QColor shine = m_palette.accent;
        shine.setAlphaF(0.55);
        glow.setColorAt(0, shine);
        shine.setAlphaF(0);
        glow.setColorAt(1, shine);
        disc(sun, 0.45, glow);
        disc(sun, between(0.09, 0.16), m_palette.accent);
        for (int range = 0; range < 5; ++range) {
            const double base = 0.5 + 0.11 * range;
            const double phase = between(0, 6.28);
            const double slope = between(3, 7);
            QPainterPath path(QPointF(0, 1));
            for (int i = 0; i <= 60; ++i) {
                const double x = i / 60.0;
                path.lineTo(x,
                    base + 0.05 * qSin(slope * x + phase) + 0.022 * qSin(2.7 * slope * x - phase));
            }
            path.lineTo(1, 1);
            m_painter.fillPath(
                path, mixed(m_palette.middle, m_palette.ground, (range + 0.6) / 4.6));
        }
    }

    /** Rings like those of a tree, around a point off the middle. */
    void rings()
    {
        sky(m_palette.ground, mixed(m_palette.ground, m_palette.middle, 0.7));
        const QPointF centre(between(0.3, 0.7), between(0.3, 0.7));
        const int count = m_random.bounded(7, 12);
        for (int ring = count; ring > 0; --ring) {
            const double share = double(ring) / count;
            const QColor colour = ring % 3 == 0 ? m_palette.accent
                                                : mixed(m_palette.light, m_palette.middle, share);
            disc(centre, 0.46 * share, colour);
            disc(centre + QPointF(0.012 * share, -0.012 * share), 0.46 * share - 0.018,
                mixed(m_palette.ground, m_palette.middle, 0.65 * (1 - share)));
        }
        disc(centre, 0.035, m_palette.accent);
    }

    /** Quarter discs, half discs and discs on a grid. */
    void tiles()
    {
        const int count = m_random.bounded(3, 6);
        const double side = 1.0 / count;
        const std::array<QColor, 4> colours { m_palette.ground, m_palette.middle, m_palette.accent,
            m_palette.light };
        for (int row = 0; row < count; ++row) {
            for (int column = 0; column < count; ++column) {
                const int back = m_random.bounded(4);
                const int front = (back + m_random.bounded(1, 4)) % 4;
                const QRectF cell(column * side, row * side, side, side);
                m_painter.fillRect(cell.adjusted(0, 0, 0.002, 0.002), colours.at(back));
                m_painter.setBrush(colours.at(front));
                const int quarter = m_random.bounded(4);
                m_painter.save();
                m_painter.translate(cell.center());
                m_painter.rotate(90 * quarter);
                switch (m_random.bounded(4)) {
                case 0: // a quarter of a large disc, in one corner
                    m_painter.drawPie(
                        QRectF(-1.5 * side, -1.5 * side, 2 * side, 2 * side), 270 * 16, 90 * 16);
                    break;
                case 1: // half a disc at one edge
                    m_painter.drawPie(QRectF(-side / 2, -side, side, side), 180 * 16, 180 * 16);
                    break;
                case 2:
                    m_painter.drawEllipse(QPointF(0, 0), 0.34 * side, 0.34 * side);
                    break;
                case 3: {
                    const QPointF half[] = { { -side / 2, -side / 2 }, { side / 2, -side / 2 },
                        { -side / 2, side / 2 } };
                    m_painter.drawPolygon(half, 3);
                    break;
                }
                }
                m_painter.restore();
            }
        }
    }

    /** A swell under a moon. */
    void waves()
    {
        sky(m_palette.ground, m_palette.middle);
        const QPointF moon(between(0.2, 0.8), between(0.16, 0.32));
        disc(moon, between(0.08, 0.13), m_palette.light);
        const int count = 9;
        for (int wave = 0; wave < count; ++wave) {
            const double share = double(wave) / (count - 1);
            const double base = 0.42 + 0.075 * wave;
            const double phase = between(0, 6.28);
            QPainterPath path(QPointF(0, 1));
            for (int i = 0; i <= 80; ++i) {
                const double x = i / 80.0;
                path.lineTo(x, base + (0.012 + 0.02 * share) * qSin((16 - 8 * share) * x + phase));
            }
            path.lineTo(1, 1);
            const QColor colour = wave % 3 == 1
                ? mixed(m_palette.accent, m_palette.middle, 0.35 + 0.4 * share)
                : mixed(m_palette.light, m_palette.ground, 0.3 + 0.65 * share);
            m_painter.fillPath(path, colour);
        }
    }

    /** Beams from below the horizon. */
    void rays()
    {
        sky(m_palette.light, mixed(m_palette.light, m_palette.accent, 0.4));
        const QPointF centre(between(0.35, 0.65), between(0.72, 0.85));
        const int count = 2 * m_random.bounded(8, 15);
        for (int ray = 0; ray < count; ray += 2) {
            const double from = 2 * M_PI * ray / count;
            const double to = 2 * M_PI * (ray + 1) / count;
            const QPointF beam[] = { centre, centre + 2 * QPointF(qCos(from), qSin(from)),
                centre + 2 * QPointF(qCos(to), qSin(to)) };
            m_painter.setBrush(
                mixed(m_palette.accent, m_palette.middle, ray % 4 == 0 ? 0.1 : 0.75));
            m_painter.drawPolygon(beam, 3);
        }
        disc(centre, 0.2, m_palette.light);
        disc(centre, 0.165, m_palette.ground);
        m_painter.fillRect(QRectF(0, centre.y() + 0.02, 1, 1), m_palette.ground);
    }

    /** A crystal: triangles in shades that change along a diagonal. */
    void facets()
    {
        constexpr int Count = 7;
        std::array<std::array<QPointF, Count + 1>, Count + 1> corners;
        for (int row = 0; row <= Count; ++row) {
            for (int column = 0; column <= Count; ++column) {
                const auto jitter = [this](int place) {
                    return place == 0 || place == Count ? 0.0 : between(-0.045, 0.045);
                };
                corners[size_t(row)][size_t(column)] = QPointF(
                    double(column) / Count + jitter(column), double(row) / Count + jitter(row));
            }
        }
        const auto facet = [this](const QPointF &a, const QPointF &b, const QPointF &c) {
            const double place = (a.x() + b.x() + c.x() + a.y() + b.y() + c.y()) / 6;
            QColor colour = place < 0.5 ? mixed(m_palette.ground, m_palette.middle, 2 * place)
                                        : mixed(m_palette.middle, m_palette.accent, 2 * place - 1);
            colour = mixed(colour, m_palette.light, between(0, 0.28));
            m_painter.setBrush(colour);
            m_painter.setPen(QPen(colour, 0.003)); // closes the seams
            const QPointF points[] = { a, b, c };
            m_painter.drawPolygon(points, 3);
        };
        for (size_t row = 0; row < Count; ++row) {
            for (size_t column = 0; column < Count; ++column) {
                const QPointF a = corners[row][column];
                const QPointF b = corners[row][column + 1];
                const QPointF c = corners[row + 1][column];
                const QPointF d = corners[row + 1][column + 1];
                if (m_random.bounded(2) == 0) {
                    facet(a, b, c);
                    facet(b, c, d);
                } else {
                    facet(a, b, d);
                    facet(a, c, d);
                }
            }
        }
        m_painter.setPen(Qt::NoPen);
    }

    /** Stripes of different heights, as if a sound had been caught. */
    void bars()
    {
        sky(m_palette.light, mixed(m_palette.light, m_palette.middle, 0.25));
        const int count = m_random.bounded(13, 22);
        const double width = 0.8 / count;
        const double phase = between(0, 6.28);
        for (int bar = 0; bar < count; ++bar) {
            const double x = 0.1 + bar * width;
            const double share = double(bar) / (count - 1);
            const double height
                = 0.1 + 0.5 * qSin(M_PI * share) * (0.55 + 0.45 * qSin(9 * share + phase));
            m_painter.setBrush(
                bar % 5 == 2 ? m_palette.accent : mixed(m_palette.ground, m_palette.middle, share));
            m_painter.drawRoundedRect(
                QRectF(x + 0.12 * width, 0.5 - height / 2, 0.76 * width, height), 0.38 * width,
                0.38 * width);
        }
    }

    /** Planets on thin paths. */
    void orbits()
    {
        sky(mixed(m_palette.ground, Qt::black, 0.35), m_palette.ground);
        for (int star = 0; star < 90; ++star) {
            QColor colour = m_palette.light;
            colour.setAlphaF(between(0.15, 0.7));
            disc(QPointF(between(0, 1), between(0, 1)), between(0.001, 0.0035), colour);
        }
        const QPointF centre(between(0.4, 0.6), between(0.4, 0.6));
        disc(centre, 0.075, m_palette.accent);
        for (int orbit = 0; orbit < 5; ++orbit) {
            const double radius = 0.14 + 0.075 * orbit;
            QColor line = m_palette.light;
            line.setAlphaF(0.4);
            m_painter.setPen(QPen(line, 0.003));
            m_painter.setBrush(Qt::NoBrush);
            m_painter.drawEllipse(centre, radius, radius);
            m_painter.setPen(Qt::NoPen);
            const double angle = between(0, 6.28);
            disc(centre + radius * QPointF(qCos(angle), qSin(angle)), between(0.012, 0.034),
                mixed(m_palette.middle, m_palette.light, between(0.1, 0.9)));
        }
    }

    QPainter &m_painter;
    QRandomGenerator m_random;
    Palette m_palette;
    bool m_isReversed;
};

} // namespace

QImage CoverArt::draw(const QByteArray &key, const QSize &size)
{
    const QByteArray hash = QCryptographicHash::hash(key, QCryptographicHash::Sha1);
    quint32 seed = 0;
    for (int i = 0; i < 4; ++i)
        seed = seed << 8 | quint8(hash.at(i));

    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const int side = qMax(size.width(), size.height());
    painter.translate((size.width() - side) / 2.0, (size.height() - side) / 2.0);
    painter.scale(side, side);
    const bool isReversed = hash.at(4) & 1;
    Painter(&painter, seed, isReversed).draw();
    return image;
}
