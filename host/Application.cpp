// SPDX-License-Identifier: Apache-2.0
#include "host/Application.h"

#include "framework/Kvutils.h"

THostApplication::THostApplication(int &argc, char **argv)
    : QApplication(argc, argv)
{
    setOrganizationName(QStringLiteral("Corvex"));
    setApplicationName(QStringLiteral("corvexhost"));
    setApplicationDisplayName(QStringLiteral("Corvex Payroll Maintenance"));
    setApplicationVersion(QStringLiteral(CORVEX_VERSION));
}

bool THostApplication::notify(QObject *receiver, QEvent *event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::exception &error) {
        ShowException(error);
        return true;
    }
}
