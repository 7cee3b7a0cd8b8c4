// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

class QWidget;

// The help window: the screen's title, its help context number (0: none) and the keys of every screen. Modal.
void ShowHelpWindow(QWidget *parent, int helpContext, const QString &title);
