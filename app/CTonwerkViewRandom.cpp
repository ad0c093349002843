// SPDX-License-Identifier: GPL-3.0-or-later
// The practice view's random practice text: the Random menu, the selection and the generators.
#include "app/CTonwerkView.h"

void CTonwerkView::OnAllOn() {}
void CTonwerkView::OnAllOff() {}
void CTonwerkView::OnDitCharacters() {}
void CTonwerkView::OnDahCharacters() {}
void CTonwerkView::OnToneCharacters(int) {}
void CTonwerkView::OnNumbersToggle() {}
void CTonwerkView::OnProSignsToggle() {}
void CTonwerkView::OnDoubleSpace() {}
void CTonwerkView::OnRandom() {}
void CTonwerkView::OnCallSigns() {}
