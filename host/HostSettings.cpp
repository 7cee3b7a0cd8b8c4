// SPDX-License-Identifier: Apache-2.0
#include "host/HostSettings.h"

#include <memory>

namespace {

std::unique_ptr<QSettings> &Settings()
{
    static std::unique_ptr<QSettings> settings;
    return settings;
}

} // namespace

void OpenHostSettings(const QString &file)
{
    const QString chosen = file.isEmpty() ? qEnvironmentVariable("CORVEX_SETTINGS") : file;
    if (chosen.isEmpty())
        Settings() = std::make_unique<QSettings>(QStringLiteral("Corvex"), QStringLiteral("corvexhost"));
    else
        Settings() = std::make_unique<QSettings>(chosen, QSettings::IniFormat);
}

QSettings &HostSettings()
{
    if (!Settings())
        OpenHostSettings({});
    return *Settings();
}
