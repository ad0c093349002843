// SPDX-License-Identifier: GPL-3.0-or-later
#include "res/TonwerkResources.h"

#include <QtGlobal>

// Q_INIT_RESOURCE must be used outside any namespace.
static void InitTonwerkArt() {
    Q_INIT_RESOURCE(tonwerk_art);
    Q_INIT_RESOURCE(tonwerk_speech);
}

namespace tonwerk::res {

void InitResources() {
    // Registering twice is harmless for Qt, but a flag keeps it to one call anyway.
    static const bool s_done = (InitTonwerkArt(), true);
    (void)s_done;
}

}  // namespace tonwerk::res
