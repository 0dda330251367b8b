// SPDX-License-Identifier: GPL-3.0-or-later
#include "ordeal.h"
#include "testkit/coverview.h"
#include "testkit/likeness.h"

#include <QBuffer>
#include <QImage>
#include <QMarginsF>
#include <QtEndian>

using namespace PageNames;
using Behaviour = ImageServer::Behaviour;

namespace {

/** What is to be seen in the cover's place. */
enum Seen {
    Logo,    ///< nothing came that could be a picture
    Nothing, ///< what came is no picture
    Part     ///< as much of the picture as has come
};

constexpr int MiB = 1 << 20;

QByteArray response(const QByteArray &status, const QByteArray &fields, const QByteArray &body)
{
    return "HTTP/1.1 " + status + "\r\n" + fields + "\r\n" + body;
}

QByteArray jpeg(const QByteArray &body, int announced)
{
    return response("200 OK",
        "Content-Type: image/jpeg\r\nContent-Length: " + QByteArray::number(announced) + "\r\n",
        body);
}

QByteArray jpeg(const QByteArray &body)
{
    return jpeg(body, body.size());
}

QByteArray cover()
{
    QImage image(402, 402, QImage::Format_RGB32);
    image.fill(Qt::red);
    QBuffer buffer;
    image.save(&buffer, "JPEG");
    return buffer.data();
}

QByteArray pngChunk(const QByteArray &type, const QByteArray &data)
{
    quint32 sum = 0xffffffff;
    for (const char byte : type + data) {
        sum ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum >> 1) ^ (sum & 1 ? 0xedb88320 : 0);
    }
    QByteArray length(4, '\0');
    QByteArray check(4, '\0');
    qToBigEndian(quint32(data.size()), length.data());
    qToBigEndian(~sum, check.data());
    return length + type + data + check;
}

/** A flawless black picture of one bit a pixel, small on the wire. */
QByteArray png(int side)
{
    QByteArray header(8, '\0');
    qToBigEndian(quint32(side), header.data());
    qToBigEndian(quint32(side), header.data() + 4);
    header += QByteArray::fromHex("0100000000");
    const int row = 1 + (side + 7) / 8;
    return QByteArray::fromHex("89504e470d0a1a0a") + pngChunk("IHDR", header)
        + pngChunk("IDAT", qCompress(QByteArray(row * side, '\0')).mid(4)) + pngChunk("IEND", {});
}

Behaviour raw(const QByteArray &file)
{
    Behaviour behaviour;
    behaviour.kind = Behaviour::Raw;
    behaviour.file = file;
    return behaviour;
}

} // namespace

Q_DECLARE_METATYPE(ImageServer::Behaviour)

/** An image service that is slow, talks for ever, lies, or sends what nobody can show. */
class TestBadImages : public Ordeal {
    Q_OBJECT

private slots:
    void doesNoHarm_data();
    void doesNoHarm();

private:
    void play(const QByteArray &key) { house().publishZone("nowPlaying/imageKey", key); }
    bool isSeen(Seen what);
};

void TestBadImages::doesNoHarm_data()
{
    QTest::addColumn<Behaviour>("behaviour");
    QTest::addColumn<int>("seen");
    QTest::addColumn<int>("peakMiB");
    const auto row = [](const char *name, const Behaviour &behaviour, Seen seen, int peakMiB) {
        QTest::newRow(name) << behaviour << int(seen) << peakMiB;
    };
    // Reading stops at 32 MB, and what was freed stays with the allocator for a while.
    constexpr int Full = 96;
    row("a byte at a time", Behaviour::of(Behaviour::Trickle), Logo, 16);
    row("endless", Behaviour::of(Behaviour::Endless), Nothing, Full);
    row("100 MB", raw(jpeg(QByteArray(100 * MiB, 'x'))), Nothing, Full);
    row("half a picture", raw(jpeg(cover().left(cover().size() / 2))), Part, 16);
    row("garbage", raw(jpeg("this is no picture")), Nothing, 16);
    row("redirecting in a circle",
        raw(response("302 Found", "Location: /image/bad\r\nContent-Length: 0\r\n", {})), Nothing,
        16);
    row("closing early", raw(jpeg(cover().left(1000), 100000)), Logo, 16);
    row("closing within the head", raw("HTTP/1.1 200 OK\r\nContent-Ty"), Logo, 16);
    row("30,000 x 30,000 pixels", raw(jpeg(png(30000))), Nothing, 16);
    row("a gigabyte, compressed",
        raw(response("200 OK",
            "Content-Type: image/jpeg\r\nContent-Encoding: deflate\r\nConnection: close\r\n",
            qCompress(QByteArray(1024 * MiB, 'x'), 9).mid(4))),
        Nothing, Full);
}

void TestBadImages::doesNoHarm()
{
    QFETCH(Behaviour, behaviour);
    QFETCH(int, seen);
    QFETCH(int, peakMiB);
    house().images.setBehaviour("first", {});
    house().images.setBehaviour("bad", behaviour);
    Behaviour good;
    good.colour = Qt::green;
    house().images.setBehaviour("good", good);
    QVERIFY(startPlayer());
    play("first");
    QVERIFY(waitUntil([&] { return CoverView::shows(probe(), Qt::white); }));
    begin();

    // A picture of the page is answered only after a fetch that begins while it is being taken.
    const auto isAskedFor = [&](int times) {
        return behaviour.kind != Behaviour::Trickle
            || waitUntil([&] { return house().images.requestsFor("bad") >= times; });
    };
    play("bad");
    QVERIFY(isAskedFor(1));
    QVERIFY(waitUntil([&] { return isSeen(Seen(seen)); }));
    QVERIFY(answersTouches(Player)); // and the page asks again
    QVERIFY(isAskedFor(2));
    QVERIFY(waitUntil([&] { return isSeen(Seen(seen)); }));
    play("good");
    QVERIFY(waitUntil([&] { return CoverView::shows(probe(), Qt::green); }));
    QVERIFY(comesThrough(Player, { peakMiB, peakMiB / 2 }));
}

bool TestBadImages::isSeen(Seen what)
{
    switch (what) {
    case Logo:
        return CoverView::showsLogo(probe());
    case Nothing:
        return isBlank(probe().picture(), CoverView::area(probe()) - QMarginsF(2, 2, 2, 2));
    case Part:
        return CoverView::shows(probe(), Qt::red);
    }
    return false;
}

QTEST_GUILESS_MAIN(TestBadImages)
#include "tst_badimages.moc"
