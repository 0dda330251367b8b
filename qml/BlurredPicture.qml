// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtGraphicalEffects 1.15

/** A dim, blurred copy of a picture.  It is computed once per picture, not on every frame in which anything moves. */
GaussianBlur {
    opacity: 0.2
    deviation: 9
    radius: 32
    samples: 16
    cached: true
}
