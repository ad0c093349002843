// SPDX-License-Identifier: GPL-3.0-or-later
// The practice view's listening session: Listen / Stop, the worker's messages, the clock.
#include "app/CTonwerkView.h"

void CTonwerkView::OnListen() {}
