// SPDX-License-Identifier: GPL-3.0-or-later
// The practice view's sound files: Generate File and the session recording.
#include "app/CTonwerkView.h"

void CTonwerkView::OnGenerateFile() {}
void CTonwerkView::OnRecordSession() {}
void CTonwerkView::StartSessionRecording() {}
void CTonwerkView::FinishSessionRecording() {}
