// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>

/// The wait cursor for as long as it lives, for work that holds the user-interface thread.
class CWaitCursor {
public:
    CWaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~CWaitCursor() { QApplication::restoreOverrideCursor(); }
    CWaitCursor(const CWaitCursor&) = delete;
    CWaitCursor& operator=(const CWaitCursor&) = delete;
};
