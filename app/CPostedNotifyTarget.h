// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/INotifyTarget.h"

class QObject;

/// Turns the sound classes' posted messages into posted Qt events for one receiver, so their
/// handlers run on the receiver's thread. The receiver must outlive every poster (the view owns
/// the workers that post to it).
class CPostedNotifyTarget final : public INotifyTarget {
public:
    explicit CPostedNotifyTarget(QObject* receiver) : m_receiver(receiver) {}

    void PostMessage(unsigned message, std::uintptr_t wParam, std::intptr_t lParam) override;

private:
    QObject* m_receiver;
};
