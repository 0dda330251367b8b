// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QJsonArray>
#include <QJsonObject>
#include <QLocalSocket>
#include <QMap>
#include <QPointF>
#include <QSize>
#include <QString>

#include <chrono>

/**
 * A test's hand and eye inside the program: the other end of the probe that Program loads into it.
 *
 * An item is described either by its objectName or by a QJsonObject, see Selector in probe/.  Every
 * call waits, with the event loop running, until the program has answered; touches have then been
 * delivered.
 */
class Probe {
public:
    /** What to look for; made from an objectName or from a selector's members. */
    struct Target {
        Target(const char *name);
        Target(const QString &name);
        Target(const QJsonObject &selector);
        /** Items of a C++ or QML type, for example "QQuickText" or "Marquee". */
        static Target type(const QString &name);
        /** Objects written in a QML file, for example "Clock.qml". */
        static Target file(const QString &name);
        /** Texts that read exactly so. */
        static Target text(const QString &text);
        /** The same, but only inside the item or object of this objectName. */
        Target inside(const QString &name) const;

        QJsonObject selector;
    };

    /** The probe of a program that was told to listen on the local socket of this path. */
    explicit Probe(const QString &path);

    QString path() const { return m_path; }
    void disconnectFromProgram();

    /** One request, see ProbeServer; the answer has the member "error" when it failed. */
    QJsonObject request(const QJsonObject &request);

    /**
     * Touch events at a place in pixels of the window.  False, with a message, when there is no
     * window.
     */
    bool press(const QPointF &place, int finger = 0);
    bool move(const QPointF &place, int finger = 0);
    bool release(const QPointF &place, int finger = 0);
    bool tap(const QPointF &place);
    /**
     * A touch on the centre of the first item that matches.  False, with a message, when there is
     * none.
     */
    bool tap(const Target &item);

    /** True when an item that matches is shown. */
    bool shows(const Target &item);
    /** How many items that match are shown. */
    int shown(const Target &item);
    /** A property of the first item that matches; null when there is none. */
    QJsonValue property(const Target &item, const QString &name);
    /** That property of every item that matches. */
    QJsonArray propertyOfAll(const Target &item, const QString &name);
    /**
     * The centre in the window of the first item that matches; a point with negative members when
     * there is none.
     */
    QPointF centre(const Target &item);
    /** The place in the window of the first item that matches; empty when there is none. */
    QRectF area(const Target &item);

    /** How many objects that match are alive, shown or not. */
    int alive(const Target &object);
    /**
     * A property of the first object that matches, for example of the C++ object of type "Player".
     */
    QJsonValue objectProperty(const Target &object, const QString &name);
    /**
     * Writes a property of the first object that matches, for example a timer's interval.  False,
     * with a message, when there is no such object or property.
     */
    bool setObjectProperty(const Target &object, const QString &name, const QJsonValue &value);

    /** Gives the window another size, as a full-screen platform would.  Waits until it has it. */
    bool resize(const QSize &size);
    /** What the window shows; null, with a message, when it cannot be had.  Draws a frame. */
    QImage picture();
    /**
     * What the first item that matches looks like by itself, and if it is hidden as well; null,
     * with a message, when there is none.
     */
    QImage picture(const Target &item);
    /**
     * All that is shown, or only what is shown in the first item that matches; see
     * SceneDescription.
     */
    QJsonArray scene();
    QJsonArray scene(const Target &item);
    /** Puts the clock of the scene's animations and timers forward. */
    bool pass(std::chrono::milliseconds time);
    /** Frames drawn since the last call; the first call begins the counting and gives 0. */
    int frames();
    /**
     * Begins to count the emissions of these signals, which must have no arguments, of the first
     * object of this type.  False, with a message, when there is no such object or signal.
     */
    bool listen(const QString &type, const QJsonArray &signalNames);
    /** The emissions counted since then. */
    int heard();

    /**
     * Begins to record when a property of the first item that matches is shown with which value.
     */
    bool watch(const Target &item, const QString &property);
    /** When each value, as text, was first on the screen: the end of the frame that drew it. */
    QMap<QString, std::chrono::steady_clock::time_point> seen();
    /** When delivery of the last touch began. */
    std::chrono::steady_clock::time_point lastTouch() const { return m_lastTouch; }

    /** A variable of the program's environment as it is now; null when unset. */
    QJsonValue environment(const QString &name);

private:
    bool connectToProgram();
    bool touch(const QString &operation, const QPointF &place, int finger);
    bool carriedOut(const QJsonObject &request);
    QImage grabbed(QJsonObject request);
    QJsonArray items(const Target &item, const QStringList &properties = {});

    QString m_path;
    QLocalSocket m_socket;
    std::chrono::steady_clock::time_point m_lastTouch;
};
