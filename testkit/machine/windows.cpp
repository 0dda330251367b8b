// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/machine/windows.h"

#include <QString>

#include <X11/Xlib.h>

bool closeWindows(const QString &displayName)
{
    Display *const display = XOpenDisplay(qPrintable(displayName));
    if (!display)
        return false;
    // A window may be gone before it is asked, which would end the whole test.
    XSetErrorHandler([](Display *, XErrorEvent *) { return 0; });
    Window root = 0;
    Window parent = 0;
    Window *windows = nullptr;
    unsigned count = 0;
    XQueryTree(display, DefaultRootWindow(display), &root, &parent, &windows, &count);
    for (unsigned i = 0; i < count; ++i) {
        XEvent event {};
        event.xclient.type = ClientMessage;
        event.xclient.window = windows[i];
        event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
        event.xclient.format = 32;
        event.xclient.data.l[0] = long(XInternAtom(display, "WM_DELETE_WINDOW", False));
        XSendEvent(display, windows[i], False, NoEventMask, &event);
    }
    XFree(windows);
    XCloseDisplay(display);
    return count > 0;
}
