// SPDX-License-Identifier: Apache-2.0
#include "framework/Screens.h"

#include <QFile>

namespace {
TScreenHost *theHost = nullptr;
}

void SetScreenHost(TScreenHost *host)
{
    theHost = host;
}

TScreenHost *ScreenHost()
{
    return theHost;
}

QIcon ScreenIcon(const QString &name)
{
    const QString file = QStringLiteral(":/icons/%1.svg").arg(name);
    return QFile::exists(file) ? QIcon(file) : QIcon();
}
