// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QJsonArray>
#include <QString>
#include <QVector>

class Probe;

/** Something that one scene shows otherwise than another. */
struct Difference {
    QString where; ///< an item and what of it, as in "songTitle/marquee/label text"
    QString first;
    QString second;
};

/** All that a program shows at one moment, or one pop-up of it. */
class Scene {
public:
    Scene() = default;

    /** The whole window, and the covers as they are without the effects that hide them. */
    static Scene ofWindow(Probe *probe);
    /** What lies above the pages. */
    static Scene ofPopup(Probe *probe);

    QVector<Difference> differencesFrom(const Scene &other) const;

private:
    struct Picture {
        QString name;
        QImage image;
    };

    void hideMovingItems();

    QJsonArray m_items; // see SceneDescription
    QVector<Picture> m_pictures;
};
