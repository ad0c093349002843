// SPDX-License-Identifier: GPL-3.0-or-later
// The practice view's spoken read-back and the Enter key as a straight key.
#include "app/CTonwerkView.h"

void CTonwerkView::SpeakLetter(const QString&) {}
void CTonwerkView::OnReadBack() {}
