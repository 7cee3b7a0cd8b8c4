// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QApplication>

// The application object: whatever goes wrong in answer to an event is shown to the user instead of ending the program.
class THostApplication final : public QApplication
{
    Q_OBJECT
public:
    THostApplication(int &argc, char **argv);
    bool notify(QObject *receiver, QEvent *event) override;
};
