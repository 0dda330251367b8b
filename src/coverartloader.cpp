// SPDX-License-Identifier: GPL-3.0-or-later
#include "coverartloader.h"

#include "changenotifier.h"
#include "imageprovider.h"
#include "roon.h"
#include "storeifchanged.h"

#include <QPointer>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QVector>

namespace {

constexpr int PatienceMs = 1000;

// One fetch at a time for the whole scene: a page that is being left may still be inside its fetch
// when the next page asks for a picture. A loader that asks meanwhile is remembered here and looks
// again when the fetch has returned.
bool fetching = false;
QVector<QPointer<CoverArtLoader>> waitingLoaders;

QUrl logo()
{
    return QUrl(QStringLiteral("image://velunor/__VELUNOR_LOGO__"));
}

ImageProvider *providerFor(const QObject *object)
{
    const QQmlEngine *const engine = qmlEngine(object);
    return engine ? dynamic_cast<ImageProvider *>(engine->imageProvider(QStringLiteral("velunor")))
                  : nullptr;
}

/** The id that an image provider is given for @p url. */
QString imageId(const QUrl &url)
{
    return url.toString(QUrl::RemoveScheme | QUrl::RemoveAuthority).mid(1);
}

} // namespace

CoverArtLoader::CoverArtLoader(QObject *parent)
    : QObject(parent)
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(PatienceMs);
    connect(&m_patience, &QTimer::timeout, this, &CoverArtLoader::patienceEnded);
    connect(Roon::instance()->serverUrlNotifier(), &ChangeNotifier::changed, this,
        &CoverArtLoader::serverMoved);
}

CoverArtLoader::~CoverArtLoader()
{
    if (m_waitingFor)
        m_waitingFor->abandonFetches();
}

void CoverArtLoader::setWanted(const QUrl &url)
{
    if (!storeIfChanged(m_wanted, url))
        return;
    emit wantedChanged();
    if (m_waitingFor && !m_patience.isActive())
        patienceEnded();
    schedule();
}

void CoverArtLoader::schedule()
{
    if (m_scheduled)
        return;
    m_scheduled = true;
    QMetaObject::invokeMethod(this, &CoverArtLoader::load, Qt::QueuedConnection);
}

void CoverArtLoader::load()
{
    m_scheduled = false;
    if (isOutOfWindow()) {
        connect(qobject_cast<QQuickItem *>(parent()), &QQuickItem::windowChanged, this,
            &CoverArtLoader::schedule, Qt::UniqueConnection);
    }
    if (fetching) {
        if (!waitingLoaders.contains(this))
            waitingLoaders.append(this);
        if (!m_waitingFor && !m_patience.isActive() && !isOutOfWindow())
            m_patience.start();
        return;
    }
    m_patience.stop();
    ImageProvider *const provider = providerFor(this);
    const QUrl url = m_wanted;
    const QString id = imageId(url);
    if (!provider || !ImageProvider::isFetched(id)) {
        setSource(url);
        return;
    }
    if (isOutOfWindow())
        return;

    const QPointer<CoverArtLoader> self(this);
    const QUrl address = ImageProvider::imageUrl(id);
    fetching = true;
    m_loading = url;
    m_waitingFor = provider;
    m_patience.start();
    emit waitingChanged();
    // Anything may happen in here, our own end included.
    const bool available = provider->prefetch(id);
    fetching = false;
    for (const QPointer<CoverArtLoader> &loader : qAsConst(waitingLoaders)) {
        if (loader)
            loader->schedule();
    }
    waitingLoaders.clear();
    if (!self)
        return;

    m_patience.stop();
    m_waitingFor = nullptr;
    emit waitingChanged();
    if (m_wanted != url || ImageProvider::imageUrl(id) != address) {
        schedule(); // by now another picture is wanted, or the core has moved
    } else if (!available) {
        setSource(logo());
    } else {
        // A picture item loads again only when its address changes.
        if (m_source == url && m_sourceAddress != address)
            setSource(QUrl());
        setSource(url);
        m_sourceAddress = address;
    }
}

void CoverArtLoader::patienceEnded()
{
    ImageProvider *const provider = m_waitingFor ? m_waitingFor : providerFor(this);
    if (m_waitingFor && m_wanted == m_loading)
        setSource(logo());
    else if (provider && (m_waitingFor || !isOutOfWindow()))
        provider->abandonFetches(); // ours, which is no longer wanted, or another loader's
}

// A page in no window is still being made, or has been left; a fetch would delay its destruction.
bool CoverArtLoader::isOutOfWindow() const
{
    const auto *const page = qobject_cast<const QQuickItem *>(parent());
    return page && !page->window();
}

void CoverArtLoader::serverMoved()
{
    if (m_waitingFor) // for a picture from an address that is no longer right
        m_waitingFor->abandonFetches();
    schedule();
}

void CoverArtLoader::setSource(const QUrl &url)
{
    if (storeIfChanged(m_source, url))
        emit sourceChanged();
}
