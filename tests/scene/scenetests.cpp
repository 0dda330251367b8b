// SPDX-License-Identifier: GPL-3.0-or-later
#include "coverpictures.h"
#include "messages.h"
#include "pixels.h"

#include <QQmlEngine>
#include <QQmlPropertyMap>
#include <QtQuickTest>

namespace {
/**
 * Two of the fakes are made here: QML itself cannot declare a property whose name begins with a
 * capital letter.
 */
void registerFake(const char *module, const char *name, const QVariantMap &values)
{
    auto *const fake = new QQmlPropertyMap(QCoreApplication::instance());
    for (auto value = values.cbegin(); value != values.cend(); ++value)
        fake->insert(value.key(), value.value());
    qmlRegisterSingletonInstance(module, 1, 0, name, fake);
}
} // namespace

class SceneTests : public QObject {
    Q_OBJECT
public slots:
    void applicationAvailable()
    {
        qmlRegisterSingletonInstance("SceneTest", 1, 0, "Messages", Messages::instance());
        qmlRegisterSingletonInstance("SceneTest", 1, 0, "Pixels", Pixels::instance());
        // The blur is off, unlike in the program: the software backend that most tests use cannot
        // blur.
        registerFake("Velunor.Settings", "Settings",
            { { "brightness", 150 }, { "clockBrightness", 150 }, { "clockColorRGB", "#545050" },
                { "timeFormat", true }, { "scrolling", true }, { "hideOptionsButtons", false },
                { "ShowBlurBackground", false } });
        registerFake("Velunor.VelunorState", "VelunorState",
            { { "UpdateAvailable", false }, { "UpdateInstalling", false } });
    }
    void qmlEngineAvailable(QQmlEngine *engine)
    {
        engine->addImageProvider(QStringLiteral("velunor"), new CoverPictures);
    }
};

QUICK_TEST_MAIN_WITH_SETUP(scene, SceneTests)

#include "scenetests.moc"
