// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QQuickImageProvider>
#include <QString>
#include <QUrl>
#include <QVector>

#include <memory>
#include <mutex>

class QNetworkAccessManager;
class QNetworkReply;

/**
 * Cover art for the scene, under "image://velunor/": a key of the Roon Core's image service, or one
 * of the reserved ids "__VELUNOR_LOGO__" and "NO_IMAGE", which stand for the product's logo.
 *
 * A picture is fetched over HTTP while the caller waits in a local event loop, in the thread that
 * asks: messages, timers and touches go on meanwhile. The last picture is kept. When the core does
 * not deliver after a second attempt, the logo stands in. Any thread; the cache is guarded.
 */
class ImageProvider : public QQuickImageProvider {
public:
    /** Loads the logo; a missing one is only logged. @p type is QQmlImageProviderBase::Image. */
    explicit ImageProvider(QQmlImageProviderBase::ImageType type);

    /** Where the core offers the picture @p id, at the address that it has now. */
    static QUrl imageUrl(const QString &id);
    /** Whether the picture @p id comes from the core, so that asking for it may have to wait. */
    static bool isFetched(const QString &id);

    /**
     * The picture @p id; the logo for an empty or reserved id, and when the core does not deliver.
     * @p size, unless null, gets the size of a picture that was fetched now, and is otherwise left
     * alone. @p requestedSize is ignored, as covers come in one size. A body that is no picture
     * gives a null image; so does one of more than 32 MB, of which no more is read, and a picture
     * of more than 8192 pixels a side.
     */
    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;

    /**
     * Fetches the picture @p id and keeps it, so that requestImage() can answer at once. Returns
     * false when that failed: the core did not deliver or has moved meanwhile, the wait was
     * abandoned, the program quits, or @p id is one that is not fetched. GUI thread only.
     */
    bool prefetch(const QString &id);

    /** Ends every wait that is going on; whoever waited gets the logo, and nothing is kept. */
    void abandonFetches();

private:
    struct Wait;

    QImage fetchedImage(const QUrl &url, QSize *size);
    QNetworkReply *get(QNetworkAccessManager &manager, const QUrl &url);

    // Guards the next three. The standard one, as the thread sanitizer sees through it.
    std::mutex m_lock;
    QUrl m_lastUrl;
    std::unique_ptr<QImage> m_cachedImage;
    QVector<Wait *> m_waits;

    QImage m_logo; // not changed after construction
};
