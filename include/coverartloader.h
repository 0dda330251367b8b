// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QTimer>
#include <QUrl>

class ImageProvider;

/**
 * Decides when the scene's pictures change to the cover that is wanted now.
 *
 * A picture item that is given a cover which has to be fetched waits for it in a local event loop,
 * with the item on the stack. If its page goes away meanwhile, the program crashes; if another
 * cover is wanted meanwhile, the late one wins. So a page binds its pictures to source() and never
 * to the key that is wanted: the loader has the provider fetch the picture first, from the event
 * loop, one at a time, and offers it when it can be had at once.
 *
 * A fetch that is no longer wanted is abandoned after one second. While one that is still wanted
 * takes longer than that, the logo is shown, so that no cover stays under another track's title. A
 * fetch is also abandoned when another loader has waited a second for it to end, as only one page
 * is on view at a time. A loader whose page is in no window starts none, nor does it end another's.
 * When a fetch fails, the logo is shown. When the core moves, the wanted picture is fetched from
 * its new address at once, even if it is already on view. Lives in the GUI thread, may be destroyed
 * at any moment.
 */
class CoverArtLoader : public QObject {
    Q_OBJECT
    Q_PROPERTY(QUrl wanted READ wanted WRITE setWanted NOTIFY wantedChanged)
    Q_PROPERTY(QUrl source READ source NOTIFY sourceChanged)
    Q_PROPERTY(bool waiting READ isWaiting NOTIFY waitingChanged)

public:
    /** @p parent is the page, if that is an item; its window decides whether a fetch may start. */
    explicit CoverArtLoader(QObject *parent = nullptr);
    /** Abandons its own fetch, if one is going on. */
    ~CoverArtLoader() override;

    /**
     * The picture that belongs on the screen, an address under "image://velunor/"; empty at first.
     * A new one takes effect from the event loop, not at once.
     */
    QUrl wanted() const { return m_wanted; }
    void setWanted(const QUrl &url);

    /**
     * The picture to show; empty until the first one is there, and for a moment before the same
     * picture comes from another address of the core.
     */
    QUrl source() const { return m_source; }

    /** Whether a picture is being fetched for this loader. */
    bool isWaiting() const { return m_waitingFor; }

signals:
    // Emitted after the change, and not for an equal value.
    void wantedChanged();
    void sourceChanged();
    void waitingChanged();

private:
    void schedule();
    void load();
    void patienceEnded();
    void serverMoved();
    bool isOutOfWindow() const;
    void setSource(const QUrl &url);

    QUrl m_wanted;
    QUrl m_loading; // what is being fetched, while waiting
    QUrl m_source;
    QUrl m_sourceAddress; // where the picture on view was fetched; empty if it was not
    bool m_scheduled = false;
    ImageProvider *m_waitingFor = nullptr; // null unless a fetch is going on
    QTimer m_patience; // runs for the first second of a fetch, or of the wait for another loader's
};
