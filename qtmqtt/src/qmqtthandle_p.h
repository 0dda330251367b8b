// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "qmqttsettings_p.h"

#include <QtMqtt/qmqttclient.h>

#include <memory>

struct mosquitto;

/** A handle of the library, made ready to connect with an application's settings. */
class QMqttHandle {
public:
    /**
     * Makes the handle; NoError if that went well.  Settings that cannot be sent as they are give
     * an error that says which: without them it would be another connection.  @p owner is what the
     * library's callbacks get.
     */
    QMqttClient::ClientError create(const QMqttSettings &settings, void *owner);

    /** For a call of the library; null before create(). */
    operator mosquitto *() const { return m_handle.get(); }

    /** Keeps a descriptor from programs that the application starts; the library does not. */
    static void keepFromChildren(int descriptor);

private:
    struct Deleter {
        void operator()(mosquitto *handle) const;
    };

    std::unique_ptr<mosquitto, Deleter> m_handle;
};
