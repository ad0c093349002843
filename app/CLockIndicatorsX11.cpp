// SPDX-License-Identifier: GPL-3.0-or-later
// The lock keys' state on X11, from the XKB indicators named "Caps Lock", "Num Lock" and
// "Scroll Lock". Only Qt is included before the X11 headers, whose macros clash with its names.
#include <QGuiApplication>

#include "app/CLockIndicators.h"

#include <X11/XKBlib.h>

std::optional<CLockIndicators::State> CLockIndicators::ReadLockKeys() {
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    Display* display = x11 ? x11->display() : nullptr;
    if (!display) {
        return std::nullopt;  // not on X11, or a connection without Xlib
    }
    bool known = false;
    auto lit = [display, &known](const char* name) {
        const Atom atom = XInternAtom(display, name, True);
        Bool on = False;
        if (atom == None || !XkbGetNamedIndicator(display, atom, nullptr, &on, nullptr, nullptr)) {
            return false;
        }
        known = true;
        return on != False;
    };
    const State state{lit("Caps Lock"), lit("Num Lock"), lit("Scroll Lock")};
    if (!known) {
        return std::nullopt;  // a server without XKB or without these indicators
    }
    return state;
}
