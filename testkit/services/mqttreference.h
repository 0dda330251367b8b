// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayList>
#include <QJsonArray>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <QStringList>

/** What docs/mqtt-api.yaml says of the messages that the program receives and sends. */
class MqttReference {
public:
    struct Entry {
        QString message; ///< its name in the document
        QString topic;   ///< with "{zoneId}" where a zone's id stands
        bool received;   ///< by the program; otherwise sent by it
        int qos;
        bool retain;
        QJsonArray examples; ///< as values
        QByteArrayList sent; ///< the same as payloads
        QStringList pages;   ///< on which it is seen, or which it leads to
        QString object;      ///< the class it is stored in; empty where it is not stored
        QString property;    ///< and the property's name, type and value before the first message
        QString type;
        QJsonValue initial;
        QJsonValue becomes;    ///< what each example becomes; undefined where it is stored as it is
        QByteArray oddPayload; ///< of a received message
        QJsonValue oddBecomes; ///< undefined where the message is not stored

        /** The topic for the zone of this id. */
        QString topicOf(const QString &zoneId) const;
    };

    /** Reads the document; one that cannot be read ends the process. */
    static const MqttReference &instance();

    const QList<Entry> &entries() const { return m_entries; }
    /** The message of this name; an unknown one ends the process. */
    const Entry &entry(const QString &message) const;

    /**
     * What the document does not say of a message that was published so, in words; empty for one
     * that is as it says. Publishers may use any QoS for what the program receives.
     */
    QString objection(const QString &topic, int qos, bool retain) const;

private:
    MqttReference();

    QList<Entry> m_entries;
};
