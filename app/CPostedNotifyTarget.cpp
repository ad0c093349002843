// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CPostedNotifyTarget.h"

#include <QCoreApplication>

#include "app/CAppMessageEvent.h"

void CPostedNotifyTarget::PostMessage(unsigned message, std::uintptr_t wParam,
                                      std::intptr_t lParam) {
    // postEvent is thread-safe and takes ownership; it never waits for the receiver.
    QCoreApplication::postEvent(m_receiver, new CAppMessageEvent(message, wParam, lParam));
}
