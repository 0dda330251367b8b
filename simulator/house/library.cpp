// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/house/library.h"

#include <algorithm>

namespace {

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

Album album(const char *name, const char *artist, const QVector<Track> &tracks)
{
    Album made;
    made.name = text(name);
    made.artist = text(artist);
    made.tracks = tracks;
    return made;
}

Album withoutCover(Album made)
{
    made.hasCover = false;
    return made;
}

Album radio(const char *station, const char *slogan, const QVector<Track> &programmes)
{
    Album made = album(station, slogan, programmes);
    made.radio = true;
    return made;
}

Track track(const char *song, int minutes, int seconds)
{
    return { text(song), 60 * minutes + seconds };
}

QVector<Album> makeAlbums()
{
    return {
        album("Lanterns on the Breakwater", "The Saltmarsh Postmen",
            { track("Harbour Before Six", 3, 42), track("Lanterns on the Breakwater", 4, 18),
                track("A Ferry Full of Accordions", 2, 57), track("Low Tide Telegram", 3, 31),
                track("Grandmother's Barometer", 5, 4), track("The Keeper's Second Cat", 3, 12),
                track("Rope and Tar", 4, 40), track("Goodnight, Foghorn", 6, 2) }),
        album("Concertos for Instruments That Are Rarely Asked, Volume 3: The Alpine Foghorn, the "
              "Glass Bassoon and Other Reluctant Soloists",
            "Philharmonic Society of Lower Quendlbach, Aurelius Pimpernott-Wexley (conductor), "
            "Henrike Vantongelen (glass bassoon)",
            { track("Concerto for Alpine Foghorn, Two Harps and Strings in E-flat minor, Op. 117 "
                    "No. 3: I. Allegro ma non troppo, quasi una passeggiata sotto la pioggia",
                  11, 26),
                track("Concerto for Alpine Foghorn, Two Harps and Strings in E-flat minor, Op. 117 "
                      "No. 3: II. Adagio (revised version of the second manuscript)",
                    9, 8),
                track("Concerto for Alpine Foghorn, Two Harps and Strings in E-flat minor, Op. 117 "
                      "No. 3: III. Rondo pastorale",
                    7, 51),
                track("Sinfonia concertante for Glass Bassoon, WV 9: I. Vivace", 6, 33),
                track("Sinfonia concertante for Glass Bassoon, WV 9: II. Menuet, cautiously", 4,
                    47) }),
        album(
            "I", "Ø", { track("O", 0, 31), track("?", 1, 7), track("…", 2, 0), track("4", 3, 59) }),
        album("Été à Plouzévéneuc", "Zéphyrine Kérouantec",
            { track("Là-bas, où l'écume naît", 3, 20), track("Noël en août", 2, 48),
                track("Le garçon au cœur d'ébène", 4, 5), track("Forêt brûlée, forêt rêvée", 3, 36),
                track("À bientôt, naïveté", 5, 11) }),
        album("Größenwahn im Gänsemarsch", "Jürgen Süßkäs & die Überläufer",
            { track("Äpfel, Öfen, Übermut", 2, 39), track("Straßenbahn nach Irgendwo", 3, 27),
                track("Schöne Grüße vom Bärlauch", 3, 3), track("Fünf vor Zwölfundzwanzig", 4, 22),
                track("Zażółć gęślą jaźń", 2, 15) }),
        album("雨の日の切符", "月見坂電鉄オーケストラ",
            { track("始発を待つ猫", 3, 48), track("雨の日の切符", 4, 26),
                track("各駅停車、夢の終点まで", 5, 33), track("改札口のワルツ", 3, 9),
                track("終電のあとで", 6, 17) }),
        album("云端的邮差", "纸鹤合唱团",
            { track("清晨的第一封信", 3, 14), track("云端的邮差", 4, 2),
                track("没有地址的明信片", 3, 55), track("风筝线", 2, 44) }),
        album("느린 기차의 노래", "푸른 우체통 악단",
            { track("첫 번째 정거장", 3, 21), track("느린 기차의 노래", 4, 37),
                track("창밖의 겨울", 3, 50) }),
        album("ليالي الميناء القديم", "فرقة نسيم المرفأ الأزرق",
            { track("نافذة على الموج", 5, 12), track("ليالي الميناء القديم", 6, 45),
                track("رسالة إلى الفنار", 4, 8), track("قهوة قبل الفجر", 3, 33) }),
        album("אורות על המזח", "תזמורת הרוח המלוחה",
            { track("אורות על המזח", 4, 19), track("השעון שאיחר", 3, 41),
                track("גשם ראשון, כביסה אחרונה", 3, 2) }),
        album("Clockwork Orchard", "Peartree & Sprocket",
            { track("Winding Song", 3, 8), track("Brass Blossom", 3, 45),
                track("The Gardener Counts in Sevens", 4, 27), track("Escapement", 2, 30),
                track("Pollen / Oil", 3, 52),
                track("The Mainspring Rests on Sundays, Though It "
                      "Has Been Heard Humming to Itself",
                    5, 36),
                track("Harvest at Quarter Past", 4, 4) }),
        album("Markup & Other <i>Mishaps</i>", "<b>Tag</b> Soup Kitchen",
            { track("5 < 7 && \"Quoted\"", 3, 1), track("<font size=\"9\">Very Loud</font>", 2, 52),
                track("It's 100% &amp; Rising", 3, 29),
                track("<img src=\"http://127.0.0.1:9/x.png\"> (Instrumental)", 4, 44),
                track("C:\\Songs\\%1\\nothing.wav", 2, 20) }),
        withoutCover(album("Rehearsal Tape, Side B", "Unnamed Garage Band No. 44",
            { track("Take 1 (Breaks Down)", 1, 12), track("Take 2 (Dog)", 2, 3),
                track("Take 7 (Keeper?)", 3, 58) })),
        album("The Long Night of the Lighthouse", "Hollin & the Slow Lamps",
            { track("One Revolution Every Fifteen Minutes", 62, 5),
                track("Dawn, Switched Off", 1, 59) }),
        album("Northern Arithmetic", "Ylva Tröskelin Trio",
            { track("Carry the One", 4, 31), track("Snow Divided by Snow", 5, 20),
                track("Remainder", 3, 16), track("Long Division of the Fjord", 7, 7),
                track("Blåbärsräkning", 4, 49), track("Sum of All Stoves", 5, 58) }),
        album("Velvet Elevator", "Madame Paternoster",
            { track("Going Up?", 3, 5), track("Mezzanine Mambo", 2, 46),
                track("Between Two Floors", 4, 13), track("Ladies' Hats, Umbrellas", 3, 30),
                track("Mind Your Coat-tails", 2, 58), track("Basement (Staff Only)", 4, 56) }),
        radio("Harbour Light FM", "Music for ships that stay in",
            { track("The Breakfast Buoy with Nettie Quill", 6, 0),
                track("Dredger's Choice: an hour of slow brass", 8, 30),
                track("Shipping news, then more music", 3, 15) }),
        radio("Radio Mondschein 99,9", "Musik für alle, die noch wach sind",
            { track("Nachtzug – mit Ännchen Öhrlein", 7, 0),
                track("Der leise Hörerwunsch", 5, 45) }),
    };
}

ZoneDescription zone(const char *id, const char *name, const VolumeRange &volume)
{
    return { QString::fromLatin1(id), text(name), volume };
}

VolumeRange fixedVolume()
{
    VolumeRange volume;
    volume.available = false;
    return volume;
}

VolumeRange numbers(double hardLimitMin, double hardLimitMax, double softLimit, double start)
{
    VolumeRange volume;
    volume.hardLimitMin = hardLimitMin;
    volume.hardLimitMax = hardLimitMax;
    volume.softLimit = softLimit;
    volume.start = start;
    return volume;
}

VolumeRange decibels()
{
    return { true, "db", -80, 0, -80, -5, -10, 0.5, -28.5 };
}

QVector<ZoneDescription> makeZones()
{
    return {
        zone("1601a7c2-hugo2x", "Hugo2X", numbers(0, 95, 85, 42)),
        zone("1601b3d9-kitchen", "Kitchen", numbers(0, 100, 80, 25)),
        zone("1601c4e1-livingroom", "Living Room", decibels()),
        zone("1601d5f8-headphones", "Headphones", fixedVolume()),
        zone("1601e607-atelier", "Atelier d'Été", numbers(5, 60, 50, 18)),
        zone("1601f71a-study", "書斎", numbers(0, 100, 100, 33)),
        zone("1602082b-majlis", "غرفة الجلوس", numbers(0, 100, 90, 20)),
        zone("1602193c-stairs", "The Small Room under the Stairs with the Old Loudspeakers",
            numbers(0, 50, 40, 10)),
        zone("16022a4d-bath", "Bath", numbers(0, 100, 70, 15)),
    };
}

} // namespace

const QVector<Album> &Library::albums()
{
    static const QVector<Album> all = makeAlbums();
    return all;
}

QStringList Library::albumNames()
{
    QStringList names;
    for (const Album &album : albums())
        names.append(album.name);
    return names;
}

const Album *Library::findAlbum(const QString &name)
{
    const QVector<Album> &all = albums();
    const auto found = std::find_if(all.cbegin(), all.cend(),
        [&name](const Album &candidate) { return candidate.name == name; });
    return found == all.cend() ? nullptr : &*found;
}

const QVector<ZoneDescription> &Library::zones()
{
    static const QVector<ZoneDescription> all = makeZones();
    return all;
}
